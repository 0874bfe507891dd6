#include "gfx/win/column_cache.h"

#include <algorithm>
#include <new>

namespace av {
namespace {

constexpr std::size_t mostPixels = std::size_t{1} << 20;
constexpr std::size_t mostBlends = std::size_t{1} << 13;
constexpr int mostBlendsOfAColumn = 32;

// The trial picture: a black half and a white one, each with a column in its middle. All else there is margin.
constexpr Argb black = 0xFF000000;
constexpr Argb white = 0xFFFFFFFF;
constexpr int overBlack = 1;
constexpr int firstWhite = 3;
constexpr int overWhite = 4;
constexpr int trialWidth = 6;

}  // namespace

void ColumnCache::begin(OffscreenSurface& surface, const ColumnSource& source, int bottom) noexcept {
  m_surface = &surface;
  m_picture = surface.pixels();
  if (m_source == &source && m_bottom == bottom && m_size == surface.size()) return;
  m_source = &source;
  m_bottom = bottom;
  m_size = surface.size();
  m_usable = reserve();
}

void ColumnCache::release() noexcept {
  m_source = nullptr;
  m_trial.release();
  m_columns = {};
  m_pixels = {};
  m_blends = {};
}

bool ColumnCache::draw(int x, int top) noexcept {
  if (m_usable) {
    Column& column = m_columns[static_cast<std::size_t>(top)];
    if (column.state == Column::State::unknown && !learn(column, top)) return false;
    if (column.state == Column::State::proven && copy(column, x, top)) return true;
    if (m_usable && column.state != Column::State::left) return drawAndLearn(column, x, top);
  }
  return m_source->drawColumn(*m_surface, {x, top, x + 1, m_bottom});
}

bool ColumnCache::reserve() noexcept {
  const auto rows = static_cast<std::size_t>(m_bottom);
  m_columns.clear();
  m_pixels.clear();
  m_blends.clear();
  try {
    m_columns.resize(rows);
    m_pixels.reserve(std::min(rows * (rows + 1) / 2, mostPixels));
    m_blends.reserve(mostBlends);
  } catch (const std::bad_alloc&) {
    return false;
  }
  return m_trial.resize({trialWidth, m_bottom + 1});
}

/// What the trial picture shows of the column that begins at `top`. Clears m_usable if its margin was touched.
bool ColumnCache::learn(Column& column, int top) noexcept {
  m_trial.fill({0, 0, firstWhite, m_bottom + 1}, black);
  m_trial.fill({firstWhite, 0, trialWidth, m_bottom + 1}, white);
  for (const int x : {overBlack, overWhite})
    if (!m_source->drawColumn(m_trial, {x, top, x + 1, m_bottom})) return false;

  const std::span<const Argb> trial = m_trial.pixels();
  const auto pixel = [trial](int x, int row) { return trial[static_cast<std::size_t>(row * trialWidth + x)]; };
  for (int row = 0; row <= m_bottom; ++row) {
    for (int x = 0; x < trialWidth; ++x) {
      const bool drawn = (x == overBlack || x == overWhite) && row >= top && row < m_bottom;
      if (!drawn && pixel(x, row) != (x < firstWhite ? black : white)) m_usable = false;
    }
  }
  const auto hides = [&](int row) { return pixel(overBlack, row) == pixel(overWhite, row); };

  column.hidingTop = column.hidingBottom = top;
  for (int first = top, row = top; row <= m_bottom; ++row) {
    if (row < m_bottom && hides(row)) continue;
    if (row - first > column.hidingBottom - column.hidingTop) {
      column.hidingTop = first;
      column.hidingBottom = row;
    }
    first = row + 1;
  }

  const int blends = blendCount(column, top);
  const auto pixels = static_cast<std::size_t>(column.hidingBottom - column.hidingTop);
  if (blends > mostBlendsOfAColumn || m_blends.capacity() - m_blends.size() < static_cast<std::size_t>(blends) ||
      m_pixels.capacity() - m_pixels.size() < pixels) {
    column.state = Column::State::left;
    return true;
  }
  column.firstPixel = m_pixels.size();
  for (int row = column.hidingTop; row < column.hidingBottom; ++row) m_pixels.push_back(pixel(overBlack, row));
  column.firstBlend = m_blends.size();
  for (int i = 0; i < blends; ++i) {
    const int row = blendRow(column, top, i);
    const Blend onBlack{black, pixel(overBlack, row)};
    const Blend onWhite{white, pixel(overWhite, row)};
    m_blends.push_back({onBlack, onWhite, onBlack, onWhite});
  }
  column.state = Column::State::learned;
  return true;
}

/// False, with nothing drawn, when a row lies over a colour that it has not met.
bool ColumnCache::copy(const Column& column, int x, int top) noexcept {
  std::array<Argb, mostBlendsOfAColumn> results;
  const int blends = blendCount(column, top);
  for (int i = 0; i < blends; ++i) {
    const Blend* const known =
        find(m_blends[column.firstBlend + static_cast<std::size_t>(i)], at(x, blendRow(column, top, i)));
    if (!known) return false;
    results[static_cast<std::size_t>(i)] = known->result;
  }
  for (int i = 0; i < blends; ++i) at(x, blendRow(column, top, i)) = results[static_cast<std::size_t>(i)];

  std::size_t from = column.firstPixel;
  for (int row = column.hidingTop; row < column.hidingBottom; ++row) at(x, row) = m_pixels[from++];
  return true;
}

/// Lets the platform draw the column at its place and learns from what comes out.
bool ColumnCache::drawAndLearn(Column& column, int x, int top) noexcept {
  std::array<Argb, mostBlendsOfAColumn> below;
  const int blends = blendCount(column, top);
  for (int i = 0; i < blends; ++i) below[static_cast<std::size_t>(i)] = at(x, blendRow(column, top, i));
  if (!m_source->drawColumn(*m_surface, {x, top, x + 1, m_bottom})) return false;
  m_picture = m_surface->pixels();

  if (column.state == Column::State::learned) {
    std::size_t pixel = column.firstPixel;
    for (int row = column.hidingTop; row < column.hidingBottom; ++row)
      if (at(x, row) != m_pixels[pixel++]) m_usable = false;
    column.state = Column::State::proven;
  }
  for (int i = 0; i < blends; ++i) {
    Blends& known = m_blends[column.firstBlend + static_cast<std::size_t>(i)];
    const Blend met{below[static_cast<std::size_t>(i)], at(x, blendRow(column, top, i))};
    if (const Blend* const before = find(known, met.below)) {
      if (before->result != met.result) m_usable = false;
    } else {
      std::shift_right(known.begin(), known.end(), 1);
      known.front() = met;
    }
  }
  return true;
}

int ColumnCache::blendCount(const Column& column, int top) const noexcept {
  return column.hidingTop - top + m_bottom - column.hidingBottom;
}

/// Rows that blend lie above the hiding ones, then below them.
int ColumnCache::blendRow(const Column& column, int top, int index) noexcept {
  const int row = top + index;
  return row < column.hidingTop ? row : row - column.hidingTop + column.hidingBottom;
}

const ColumnCache::Blend* ColumnCache::find(const Blends& blends, Argb below) noexcept {
  const auto found = std::ranges::find(blends, below, &Blend::below);
  return found == blends.end() ? nullptr : &*found;
}

Argb& ColumnCache::at(int x, int row) noexcept {
  return m_picture[static_cast<std::size_t>(row) * static_cast<std::size_t>(m_size.widthPx) +
                   static_cast<std::size_t>(x)];
}

}  // namespace av
