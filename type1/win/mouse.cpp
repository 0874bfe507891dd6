#include "type1/win/control.h"

#include <windowsx.h>

#include <mutex>

namespace av::type1 {

// The left button and the pointer, as messages tell of them, become events of `_IAudioVisualization4Type1Events`.
//
// No lock is held while an event is fired: its sinks may do anything, also put a property, close the control or release
// it. A click is not detected: each release of the button is one, wherever the press was. The mouse is not captured.

namespace {

namespace event {
constexpr DISPID mouseMove = 1;
constexpr DISPID mouseUp = 2;
constexpr DISPID mouseDown = 3;
constexpr DISPID mouseClick = 4;
constexpr DISPID mouseDblClick = 5;
}  // namespace event

}  // namespace

bool CAudioVisualization4Type1::handleMessage(UINT message, WPARAM, LPARAM lParam, LRESULT& result) {
  const Point at{GET_X_LPARAM(lParam), GET_Y_LPARAM(lParam)};
  switch (message) {
    case WM_ERASEBKGND: break;  // the picture covers everything
    case WM_LBUTTONDBLCLK: fireEvent(event::mouseDblClick, {}); break;
    case WM_LBUTTONDOWN: fireAt(event::mouseDown, at, readingAt(at).value); break;
    case WM_LBUTTONUP:
      fireAt(event::mouseUp, at, readingAt(at).value);
      // A control that its host has taken away in between is not there to be clicked.
      if (clientSize()) fireEvent(event::mouseClick, {at.x, at.y});
      break;
    case WM_MOUSEMOVE:
      if (const PointerReading reading = readingAt(at); reading.reportsMove)
        fireAt(event::mouseMove, at, reading.value);
      break;
    default: return false;
  }
  result = 0;
  return true;
}

CAudioVisualization4Type1::PointerReading CAudioVisualization4Type1::readingAt(Point position) {
  const SIZE client = clientSize().value_or(SIZE{});
  const StandardArithmetic arithmetic;
  const std::lock_guard lock(m_drawingLock);
  ViewLayout layout = m_picture.windowLayout();
  const bool reportsMove = reportsMovesAt(layout, position);
  // A client area too small for a layout keeps the strips of the last one.
  layout.client = {0, 0, client.cx, client.cy};
  return {pointerValueAt(m_settings, m_analysis.signal().sampleRateHz, layout, position), reportsMove};
}

void CAudioVisualization4Type1::fireAt(DISPID event, Point position, PointerValue value) {
  fireEvent(event, {position.x, position.y, value.xValue, value.yValue});  // a sink's failure is the sink's
}

}  // namespace av::type1
