#pragma once

#include "gfx/argb.h"
#include "gfx/geometry.h"

#include <cstddef>
#include <span>
#include <string>
#include <vector>

/// The vocabulary of frames: what a control shows, as plain values. Painters replay them without deciding anything.
namespace av {

/// A rectangle filled with one opaque colour. It may reach beyond the picture, which clips it.
struct FilledRect {
  Rect rect;
  Argb colour = opaqueBlack;

  friend bool operator==(const FilledRect&, const FilledRect&) = default;
};

/// A line one pixel wide; both end points belong to it.
struct LineSegment {
  Point from;
  Point to;
  Argb colour = opaqueBlack;

  friend bool operator==(const LineSegment&, const LineSegment&) = default;
};

/// A text of ASCII characters in the scale font, centred both ways in `rect`, on one line, not clipped by it.
/// Labels are shorter than the short-string buffer, so a reused vector of runs allocates nothing.
struct TextRun {
  std::string text;
  Rect rect;
  Argb colour = opaqueBlack;
  float fractionPx = 0;  // what the centre lies further right than `rect` says, less than a pixel

  friend bool operator==(const TextRun&, const TextRun&) = default;
};

/// One connected line over points of the pool of its `Polylines`.
struct Polyline {
  std::size_t firstPoint = 0;
  std::size_t pointCount = 0;
  Argb colour = opaqueBlack;
  int widthPx = 1;

  friend bool operator==(const Polyline&, const Polyline&) = default;
};

/// Polylines over one pool of points, in draw order. Clearing keeps the memory.
struct Polylines {
  std::vector<Point> points;
  std::vector<Polyline> lines;

  void clear() noexcept {
    points.clear();
    lines.clear();
  }

  /// Adds a line of `pointCount` points and returns them for filling in.
  std::span<Point> add(Argb colour, std::size_t pointCount, int widthPx = 1) {
    const std::size_t first = points.size();
    points.resize(first + pointCount);
    lines.push_back({first, pointCount, colour, widthPx});
    return std::span(points).subspan(first, pointCount);
  }

  std::span<const Point> pointsOf(const Polyline& line) const noexcept {
    return std::span(points).subspan(line.firstPoint, line.pointCount);
  }

  friend bool operator==(const Polylines&, const Polylines&) = default;
};

/// A part of a prepared picture, copied or stretched to a place of the frame.
struct ImageBlit {
  int image = 0;  ///< which of the prepared pictures; the frame's owner numbers them
  Rect from;
  Rect to;
  bool flipped = false;  ///< upside down

  friend bool operator==(const ImageBlit&, const ImageBlit&) = default;
};

/// A rectangle filled from a prepared column of opaque colours: its row i takes the colour `firstRow` + i of the column.
/// It may reach beyond the picture, which clips it, but not beyond the column.
struct ColumnFill {
  int column = 0;  ///< which of the prepared columns; the frame's owner numbers them
  int firstRow = 0;
  Rect rect;

  friend bool operator==(const ColumnFill&, const ColumnFill&) = default;
};

}  // namespace av
