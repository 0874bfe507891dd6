#pragma once

#include "gfx/argb.h"
#include "gfx/geometry.h"
#include "gfx/win/offscreen.h"

#include <array>
#include <cstddef>
#include <span>
#include <vector>

namespace av {

/// What fills columns of a picture, one pixel wide: the platform, which stretches an image to them.
class ColumnSource {
 public:
  /// Draws `column`, which lies inside the picture; false when the platform fails.
  virtual bool drawColumn(OffscreenSurface& surface, const Rect& column) const noexcept = 0;

 protected:
  ColumnSource() = default;
  ColumnSource(const ColumnSource&) = default;
  ColumnSource& operator=(const ColumnSource&) = default;
  ~ColumnSource() = default;
};

/// Draws the columns of a bar spectrum in the platform's own pixels without asking the platform for every one of them:
/// hundreds of stretched images a frame cost more than all the rest.
///
/// How a stretched column comes out depends on its height and, by rounding, on the row where it begins; the rows at its
/// ends may let through what lies below them. So each column is learned from the platform, once:
/// - drawn over black and over white. A row that is the same over both hides what lies below it, whatever that is, since
///   compositing never reverses the order of two backgrounds. Such rows are copied from then on;
/// - drawn at its own place the first time that it is shown. If it differs there from what was learned, or touches the
///   pixels around it, columns of this platform are no matter of height and row alone, and all are left to it;
/// - a row that lets something through is remembered together with the colour below it. Over a colour that it has not met
///   (a grid line, a border) the platform draws once more, and the pair is learned.
///
/// Columns of one source and one bottom row are known at a time, those of the last use; all memory is had when they
/// change, so that drawing itself allocates nothing. It is at most 4 MB for rows that hide (bars are at most 499 rows
/// lower than their plot, so the columns of a plot of 2,300 rows fit in) and 256 KB for rows that do not. Columns beyond
/// that are left to the platform. [control thread, under the drawing lock]
class ColumnCache {
 public:
  /// The next columns are those of `source` that end above row `bottom` of `surface`: 1 to its height. Both have to live
  /// until the last of them is drawn; the surface keeps its size that long.
  void begin(OffscreenSurface& surface, const ColumnSource& source, int bottom) noexcept;

  /// Draws the column at `x` from row `top` (0 to bottom − 1) down. False when the platform fails.
  bool draw(int x, int top) noexcept;

  /// Forgets all columns and frees what GDI+ owns; has to happen before the GDI+ token ends.
  void release() noexcept;

 private:
  /// A row that does not hide what lies below: what it makes of some colours, the one met last in front.
  struct Blend {
    Argb below;
    Argb result;
  };
  using Blends = std::array<Blend, 4>;

  struct Column {
    enum class State : unsigned char {
      unknown,
      learned,  ///< over black and white, not yet seen at its place
      proven,
      left,  ///< to the platform
    };
    State state = State::unknown;
    int hidingTop = 0;  ///< rows that hide what lies below: from here, one after the other
    int hidingBottom = 0;
    std::size_t firstPixel = 0;  ///< theirs in m_pixels
    std::size_t firstBlend = 0;  ///< of the rows above and below them in m_blends
  };

  bool reserve() noexcept;
  bool learn(Column& column, int top) noexcept;
  bool copy(const Column& column, int x, int top) noexcept;
  bool drawAndLearn(Column& column, int x, int top) noexcept;

  int blendCount(const Column& column, int top) const noexcept;
  static int blendRow(const Column& column, int top, int index) noexcept;
  static const Blend* find(const Blends& blends, Argb below) noexcept;
  Argb& at(int x, int row) noexcept;

  OffscreenSurface* m_surface = nullptr;
  const ColumnSource* m_source = nullptr;
  std::span<Argb> m_picture;  // the surface's
  Size m_size;
  int m_bottom = 0;
  bool m_usable = false;  // false: every column is left to the platform
  OffscreenSurface m_trial;
  std::vector<Column> m_columns;  // by their top row
  std::vector<Argb> m_pixels;
  std::vector<Blends> m_blends;
};

}  // namespace av
