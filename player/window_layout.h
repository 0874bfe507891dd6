#pragma once

#include "player/control_kind.h"

#include <array>
#include <vector>

namespace avplayer {

/// A rectangle in pixels.
struct Box {
  int x = 0;
  int y = 0;
  int width = 0;
  int height = 0;

  constexpr int right() const noexcept { return x + width; }
  constexpr int bottom() const noexcept { return y + height; }
  constexpr bool contains(int atX, int atY) const noexcept {
    return atX >= x && atX < right() && atY >= y && atY < bottom();
  }
  friend constexpr bool operator==(const Box&, const Box&) = default;
};

/// A length that is designed for 96 DPI, in pixels of a display of `dpi`; rounded to nearest.
constexpr int scaled(int length96, int dpi) noexcept { return (length96 * dpi + 48) / 96; }

/// The smallest client area, at 96 DPI, in which nothing overlaps.
inline constexpr int smallestWidth96 = 600;
inline constexpr int smallestHeight96 = 400;

struct LayoutWish {
  bool panel = true;        ///< whether the properties are shown
  bool fullScreen = false;  ///< the stage alone, without captions, transport and status line
};

/// Where everything of the main window stands. Boxes of hidden parts are empty.
struct WindowLayout {
  Box stage;                               ///< the dark ground of the three controls
  std::array<Box, controlCount> captions;  ///< the controls' names above them
  std::array<Box, controlCount> controls;
  Box transport;  ///< the bar with the next seven
  Box toStart, play, seek, time, loop, snapshot, fullScreen;
  Box panel;
  Box status;
};

/// Lays out a client area of that size. Sizes below the smallest are treated as the smallest: the edge clips.
WindowLayout layOutWindow(int clientWidthPx, int clientHeightPx, int dpi, LayoutWish wish);

/// Where the fixed parts of the property panel stand, relative to its corner.
struct PanelLayout {
  std::array<Box, controlCount> tabs;
  Box presetName, savePreset, deletePreset;
  Box filter;
  Box rows;  ///< the scrolling list
  Box help;  ///< what the row with the focus means, or why a value was refused
};

PanelLayout layOutPanel(int widthPx, int heightPx, int dpi);

/// A row of the list is a heading or a property.
enum class RowKind { heading, property };

/// One row, relative to the top of the whole list.
struct RowLayout {
  Box row;
  Box label;
  Box editor;  ///< empty in a heading
};

struct RowsLayout {
  std::vector<RowLayout> rows;
  int heightPx = 0;  ///< of the whole list
};

/// `widthPx` is the width that the scroll bar leaves.
RowsLayout layOutRows(const std::vector<RowKind>& kinds, int widthPx, int dpi);

/// How far a list has to be scrolled so that a row can be seen: `scrollPx` itself where it can be seen already.
int scrollToShow(const Box& row, int scrollPx, int visibleHeightPx);

}  // namespace avplayer
