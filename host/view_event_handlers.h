#pragma once

// For hosts: the mouse events of the waveform and spectrum view as functions. Copy this file and view_events.h; C++11
// and the Windows headers.
//
//   avhost::ViewEventHandlers pointer;
//   pointer.onMouseDown([&](LONG x, LONG y, LONG xValue, LONG yValue) { show(xValue, yValue); });
//   pointer.connect(view);
//
// docs/events.md says when each event comes and in what units.

#include "host/view_events.h"

#include <functional>
#include <memory>
#include <utility>

namespace avhost {

/// Hears of the view's mouse events and calls what was set for them; an event without a function is ignored. A function
/// may be set before and after connect(), also anew; an empty one takes it away.
///
/// Functions are called on the thread that made the view, as ViewEvents describes it, and must not throw. All that may
/// happen in an event may happen inside them, the end of this object and a change of the running function included: a
/// function lives until it has returned. [control thread]
class ViewEventHandlers final : public ViewEvents {
 public:
  using AtValues = std::function<void(LONG x, LONG y, LONG xValue, LONG yValue)>;
  using AtPixel = std::function<void(LONG x, LONG y)>;
  using Plain = std::function<void()>;

  ViewEventHandlers() = default;
  ~ViewEventHandlers() override { disconnect(); }  // before the functions go

  void onMouseMove(AtValues function) { m_move = shared(std::move(function)); }
  void onMouseUp(AtValues function) { m_up = shared(std::move(function)); }
  void onMouseDown(AtValues function) { m_down = shared(std::move(function)); }
  void onMouseClick(AtPixel function) { m_click = shared(std::move(function)); }
  void onMouseDblClick(Plain function) { m_dblClick = shared(std::move(function)); }

 private:
  void mouseMove(LONG x, LONG y, LONG xValue, LONG yValue) override { call(m_move, x, y, xValue, yValue); }
  void mouseUp(LONG x, LONG y, LONG xValue, LONG yValue) override { call(m_up, x, y, xValue, yValue); }
  void mouseDown(LONG x, LONG y, LONG xValue, LONG yValue) override { call(m_down, x, y, xValue, yValue); }
  void mouseClick(LONG x, LONG y) override { call(m_click, x, y); }
  void mouseDblClick() override { call(m_dblClick); }

  template <class Function>
  static std::shared_ptr<Function> shared(Function function) {
    return function ? std::make_shared<Function>(std::move(function)) : nullptr;
  }
  // Takes its own share: this object, and with it the member, may be gone before the function returns.
  template <class Function, class... Arguments>
  static void call(std::shared_ptr<Function> function, Arguments... arguments) {
    if (function) (*function)(arguments...);
  }

  std::shared_ptr<AtValues> m_move, m_up, m_down;
  std::shared_ptr<AtPixel> m_click;
  std::shared_ptr<Plain> m_dblClick;
};

}  // namespace avhost
