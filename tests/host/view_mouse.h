#pragma once

#include "host/scale_strips.h"
#include "support/pointer_oracle.h"
#include "support/win/event_sink.h"

#include <windows.h>

#include <QELAudioVisualization4.h>
#include <gtest/gtest.h>
#include <ocidl.h>
#include <wrl/client.h>

#include <vector>

namespace av::test {

/// The view's events by their dispatch identifiers.
inline constexpr DISPID mouseMove = 1, mouseUp = 2, mouseDown = 3, mouseClick = 4, mouseDblClick = 5;

/// A sink as compilers make it for the view's event interface.
struct ViewSink : EventSink {
  ViewSink() : EventSink(DIID__IAudioVisualization4Type1Events) {}
};

inline Microsoft::WRL::ComPtr<IConnectionPoint> eventsOf(IUnknown* view) {
  Microsoft::WRL::ComPtr<IConnectionPointContainer> points;
  Microsoft::WRL::ComPtr<IConnectionPoint> events;
  if (SUCCEEDED(view->QueryInterface(IID_PPV_ARGS(&points))))
    points->FindConnectionPoint(DIID__IAudioVisualization4Type1Events, &events);
  return events;
}

/// Returns the connection's cookie; 0 for a failure.
inline DWORD connect(IUnknown* view, EventSink& sink) {
  DWORD cookie = 0;
  const auto events = eventsOf(view);
  EXPECT_TRUE(events && SUCCEEDED(events->Advise(&sink, &cookie)));
  return cookie;
}

inline std::vector<DISPID> idsOf(const std::vector<EventSink::Event>& events) {
  std::vector<DISPID> ids;
  for (const EventSink::Event& event : events) ids.push_back(event.id);
  return ids;
}

/// One of the three events that carry what lies under the pointer at (x, y) of `view`.
inline testing::AssertionResult reads(const PointerOracle& view, DISPID id, int x, int y,
                                      const EventSink::Event& event) {
  if (event.id != id) return testing::AssertionFailure() << "event " << event.id << " instead of " << id;
  if (event.arguments.size() != 4) return testing::AssertionFailure() << event.arguments.size() << " arguments";
  if (event.arguments[0] != x || event.arguments[1] != y)
    return testing::AssertionFailure() << "at " << event.arguments[0] << ", " << event.arguments[1] << " instead of "
                                       << x << ", " << y;
  const testing::AssertionResult xValue = truncatesTo(view.xValue(x), event.arguments[2]);
  const testing::AssertionResult yValue = truncatesTo(view.yValue(y), event.arguments[3]);
  if (xValue && yValue) return testing::AssertionSuccess();
  return testing::AssertionFailure() << "at " << x << ", " << y << ": XValue " << xValue.message() << "; YValue "
                                     << yValue.message();
}

/// What the properties say of the pointer's units, and the strips as they are seen at `place` in `window` (empty: all of
/// it). Sample rate and dynamic range stay at the defaults.
inline PointerOracle oracleOf(IAudioVisualization4Type1* view, HWND window, const RECT& place = {}) {
  PointerOracle oracle;
  LONG value = 0;
  VARIANT_BOOL flag = 0;
  view->get_VisualizationType(&value), oracle.visualizationType = value;
  view->get_FFTViewType(&value), oracle.fftViewType = value;
  view->get_FFTWindowSize(&value), oracle.fftWindowSize = value;
  view->get_ScaleYMin(&value), oracle.scaleYMin = value;
  view->get_ScaleYMax(&value), oracle.scaleYMax = value;
  view->get_ScaleXVisible(&flag), oracle.scaleXVisible = flag != 0;
  view->get_ScaleYVisible(&flag), oracle.scaleYVisible = flag != 0;

  const ScaleStrips strips = lookAtStrips(view, window, place);
  oracle.clientWidthPx = strips.clientWidthPx;
  oracle.clientHeightPx = strips.clientHeightPx;
  oracle.yScaleWidthPx = strips.yScaleWidthPx;
  oracle.xScaleHeightPx = strips.xScaleHeightPx;
  return oracle;
}

}  // namespace av::test
