#pragma once

#include "host/window_picture.h"

#include <windows.h>

#include <QELAudioVisualization4.h>

namespace av::test {

/// How much of its client area the view gives to its scales, as it is seen.
struct ScaleStrips {
  int clientWidthPx = 0;
  int clientHeightPx = 0;
  int yScaleWidthPx = 0;
  int xScaleHeightPx = 0;
};

/// Makes the view show its strips in a colour of their own, at `place` in `window` (empty: all of it), and looks.
inline ScaleStrips lookAtStrips(IAudioVisualization4Type1* view, HWND window, const RECT& place = {}) {
  OLE_COLOR old = 0;
  view->get_ScaleColor(&old);
  view->put_ScaleColor(RGB(0x7B, 0x3F, 0x9D));
  RedrawWindow(window, nullptr, nullptr, RDW_INVALIDATE | RDW_UPDATENOW | RDW_ALLCHILDREN);
  const WindowPicture picture = IsRectEmpty(&place) ? pictureOf(window) : cutOut(pictureOf(window), place);
  view->put_ScaleColor(old);

  const auto isStrip = [&](int x, int y) { return picture.at(x, y) == 0x7B3F9D; };
  // Texts stand on the strips, but cover less than half of any line.
  const auto isStripColumn = [&](int x) {
    int seen = 0;
    for (int y = 0; y < picture.height / 2; ++y) seen += isStrip(x, y);
    return seen > picture.height / 4;
  };
  const auto isStripRow = [&](int y) {
    int seen = 0;
    for (int x = 0; x < picture.width / 2; ++x) seen += isStrip(x, y);
    return seen > picture.width / 4;
  };
  ScaleStrips strips{picture.width, picture.height};
  // A strip's colour begins one pixel behind its edge.
  for (int x = picture.width - 1; x >= 0 && isStripColumn(x); --x) strips.yScaleWidthPx = picture.width + 1 - x;
  for (int y = picture.height - 1; y >= 0 && isStripRow(y); --y) strips.xScaleHeightPx = picture.height + 1 - y;
  return strips;
}

}  // namespace av::test
