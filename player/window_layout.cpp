#include "player/window_layout.h"

#include <algorithm>

namespace avplayer {

namespace {

// Lengths at 96 DPI.
constexpr int margin = 12;
constexpr int gap = 8;
constexpr int captionHeight = 22;
constexpr int transportHeight = 48;
constexpr int statusHeight = 26;
constexpr int buttonSize = 32;
constexpr int timeWidth = 104;
constexpr int narrowestPanel = 276;
constexpr int widestPanel = 372;
constexpr int fieldHeight = 25;
constexpr int rowHeight = 30;
constexpr int headingHeight = 34;
constexpr int helpHeight = 76;

/// The view gets the upper part, being the one with most to read.
constexpr int viewSharePercent = 54;

class Scale {
 public:
  explicit constexpr Scale(int dpi) : m_dpi(dpi) {}
  constexpr int operator()(int length96) const { return scaled(length96, m_dpi); }

 private:
  int m_dpi;
};

Box shrunk(const Box& box, int by) {
  return {box.x + by, box.y + by, std::max(0, box.width - 2 * by), std::max(0, box.height - 2 * by)};
}

/// Caption and control within a cell of the stage.
void placeControl(WindowLayout& layout, ControlKind kind, const Box& cell, int captionPx) {
  const std::size_t index = indexOf(kind);
  if (captionPx > 0) layout.captions[index] = {cell.x, cell.y, cell.width, captionPx};
  layout.controls[index] = {cell.x, cell.y + captionPx, cell.width, std::max(1, cell.height - captionPx)};
}

void placeControls(WindowLayout& layout, const Scale& px, bool captions) {
  const Box inner = shrunk(layout.stage, px(margin));
  const int captionPx = captions ? px(captionHeight) : 0;
  const int between = px(captions ? gap : margin);
  const int upper = (inner.height - between) * viewSharePercent / 100;
  const int lowerY = inner.y + upper + between;
  const int left = (inner.width - px(margin)) / 2;
  const int rightX = inner.x + left + px(margin);
  placeControl(layout, ControlKind::view, {inner.x, inner.y, inner.width, upper}, captionPx);
  placeControl(layout, ControlKind::meter, {inner.x, lowerY, left, inner.bottom() - lowerY}, captionPx);
  placeControl(layout, ControlKind::analyser, {rightX, lowerY, inner.right() - rightX, inner.bottom() - lowerY},
               captionPx);
}

/// Buttons at both ends, the seek bar takes what is left. The time goes first where that is little: the status line
/// tells it too.
void placeTransport(WindowLayout& layout, const Scale& px) {
  const Box& bar = layout.transport;
  const int size = px(buttonSize);
  const int top = bar.y + (bar.height - size) / 2;
  int left = bar.x + px(margin);
  int right = bar.right() - px(margin);
  const auto fromLeft = [&](int width) {
    const Box box = {left, top, width, size};
    left += width + px(gap) / 2;
    return box;
  };
  const auto fromRight = [&](int width) {
    right -= width;
    const Box box = {right, top, width, size};
    right -= px(gap) / 2;
    return box;
  };
  layout.toStart = fromLeft(size);
  layout.play = fromLeft(size);
  layout.fullScreen = fromRight(size);
  layout.snapshot = fromRight(size);
  layout.loop = fromRight(size);
  if (right - left > px(timeWidth + 160)) layout.time = fromRight(px(timeWidth));
  left += px(gap) / 2;
  right -= px(gap) / 2;
  layout.seek = {left, top, std::max(0, right - left), size};
}

}  // namespace

WindowLayout layOutWindow(int clientWidthPx, int clientHeightPx, int dpi, LayoutWish wish) {
  const Scale px(dpi);
  const int width = std::max(clientWidthPx, px(smallestWidth96));
  const int height = std::max(clientHeightPx, px(smallestHeight96));
  WindowLayout layout;
  if (wish.fullScreen) {
    layout.stage = {0, 0, width, height};
    placeControls(layout, px, false);
    return layout;
  }
  layout.status = {0, height - px(statusHeight), width, px(statusHeight)};
  const int panelWidth = wish.panel ? std::clamp(width * 36 / 100, px(narrowestPanel), px(widestPanel)) : 0;
  const int left = width - panelWidth;
  if (wish.panel) layout.panel = {left, 0, panelWidth, layout.status.y};
  layout.transport = {0, layout.status.y - px(transportHeight), left, px(transportHeight)};
  layout.stage = {0, 0, left, layout.transport.y};
  placeControls(layout, px, true);
  placeTransport(layout, px);
  return layout;
}

PanelLayout layOutPanel(int widthPx, int heightPx, int dpi) {
  const Scale px(dpi);
  PanelLayout layout;
  const int left = px(margin);
  const int inner = std::max(0, widthPx - 2 * left);
  int y = px(margin);
  const int count = static_cast<int>(controlCount);
  for (int i = 0; i < count; ++i) {
    const int from = inner * i / count;
    layout.tabs[static_cast<std::size_t>(i)] = {left + from, y, inner * (i + 1) / count - from, px(fieldHeight + 2)};
  }
  y += px(fieldHeight + 2 + gap + 2);
  const int button = px(62);
  const int small = px(gap) / 2;
  layout.deletePreset = {left + inner - button, y, button, px(fieldHeight)};
  layout.savePreset = {layout.deletePreset.x - small - button, y, button, px(fieldHeight)};
  layout.presetName = {left, y, std::max(0, layout.savePreset.x - small - left), px(fieldHeight)};
  y += px(fieldHeight + gap);
  layout.filter = {left, y, inner, px(fieldHeight)};
  y += px(fieldHeight + gap);
  const int helpY = std::max(y, heightPx - px(helpHeight));
  layout.rows = {0, y, widthPx, helpY - y};
  layout.help = {left, helpY + px(gap), inner, std::max(0, heightPx - helpY - 2 * px(gap))};
  return layout;
}

RowsLayout layOutRows(const std::vector<RowKind>& kinds, int widthPx, int dpi) {
  const Scale px(dpi);
  RowsLayout layout;
  int y = 0;
  const int left = px(margin);
  const int inner = std::max(0, widthPx - 2 * left);
  const int labelWidth = inner * 50 / 100;
  for (const RowKind kind : kinds) {
    RowLayout row;
    row.row = {0, y, widthPx, px(kind == RowKind::heading ? headingHeight : rowHeight)};
    if (kind == RowKind::heading) {
      row.label = {left, y, inner, row.row.height};
    } else {
      const int fieldY = y + (row.row.height - px(fieldHeight)) / 2;
      row.label = {left, y, labelWidth, row.row.height};
      row.editor = {left + labelWidth, fieldY, inner - labelWidth, px(fieldHeight)};
    }
    y += row.row.height;
    layout.rows.push_back(row);
  }
  layout.heightPx = y + (kinds.empty() ? 0 : px(gap));
  return layout;
}

int scrollToShow(const Box& row, int scrollPx, int visibleHeightPx) {
  if (row.y < scrollPx) return row.y;
  if (row.bottom() > scrollPx + visibleHeightPx) return std::min(row.y, row.bottom() - visibleHeightPx);
  return scrollPx;
}

}  // namespace avplayer
