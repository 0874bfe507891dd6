#include "type3/win/analyser_picture.h"

#include "gfx/win/gdi_text_measure.h"
#include "gfx/win/scale_font.h"
#include "type3/column_heights.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <new>
#include <span>

namespace av::type3 {

namespace {

constexpr int defaultFontPoints = 9;

}  // namespace

AnalyserPicture::AnalyserPicture() noexcept : m_font(createDefaultScaleFont(defaultFontPoints)) {}

void AnalyserPicture::prepareFont() {
  // A font object is the host's code, which may put another one while it is asked.
  if (!m_font) m_font = createDefaultScaleFont(defaultFontPoints);  // there was no memory for it
  const Microsoft::WRL::ComPtr<IFontDisp> font = m_font;
  const LOGFONTW description = describeScaleFont(font.Get());
  if (m_drawingFont && sameFont(m_fontDescription, description)) return;
  m_fontDescription = description;
  m_drawingFont.reset(description.lfHeight ? CreateFontIndirectW(&description) : nullptr);
}

void AnalyserPicture::arrange(Arrangement& arrangement, const AnalyserSettings& settings, Size size) {
  const HDC dc = CreateCompatibleDC(nullptr);
  {
    const GdiSelection selected(dc, m_drawingFont.get());
    const GdiTextMeasure measure(dc);
    arrangement.complete = false;
    arrangement.layout = {};  // no picture's, should the memory for the columns fail
    const AnalyserLayout computed = computeLayout(settings, size, m_drawingFont ? measure.lineHeightPx() : 0, measure);
    rebuildColumnImages(arrangement.images, settings, computed.areaHeightPx);
    arrangement.layout = computed;
    arrangement.complete = m_drawingFont ? selected && !measure.hasFailed() : m_fontDescription.lfHeight == 0;
  }
  DeleteDC(dc);
}

void AnalyserPicture::layout(const AnalyserSettings& settings, Size size) {
  m_furniture.reset();
  prepareFont();
  arrange(m_own, settings, size);
}

void AnalyserPicture::rebuild(const AnalyserSettings& settings) {
  m_furniture.reset();
  rebuildColumnImages(m_own.images, settings, m_own.layout.areaHeightPx);
}

void AnalyserPicture::paint(HDC target, const RECT& bounds, const AnalyserSettings& settings, const BandAxis& axis,
                            LineList& columns) {
  const Size size{bounds.right - bounds.left, bounds.bottom - bounds.top};
  if (!m_drawingFont) prepareFont();  // first, since the host may do anything meanwhile
  if (!m_surface.resize(size)) return;
  const bool own = size == m_own.layout.size;
  if (!own) arrange(m_elsewhere, settings, size);
  const Arrangement& arrangement = own ? m_own : m_elsewhere;

  m_columns.reserve(static_cast<std::size_t>(columns.count()));  // not while the fall thread waits
  columns.withLines([this](std::span<const LineInfo> current) { m_columns.assign(current.begin(), current.end()); });
  if (!own) scaleColumns(m_columns, m_own.layout.areaHeightPx, arrangement.layout.areaHeightPx);

  buildColumns(m_frame, settings, arrangement.layout, arrangement.images, m_columns);
  if (!paintFurniture(arrangement, settings, axis)) return;
  const std::array<PreparedColumn, 3> images{arrangement.images[unlitColumn], arrangement.images[litColumn],
                                             arrangement.images[flippedLitColumn]};
  m_painter.fill(m_frame.columns, images);
  m_painter.fill(m_frame.ticks);
  m_surface.copyTo(target, {bounds.left, bounds.top});
}

bool AnalyserPicture::paintFurniture(const Arrangement& arrangement, const AnalyserSettings& settings,
                                     const BandAxis& axis) {
  const bool own = &arrangement == &m_own;
  if (own && m_furniture == FurnitureKey{settings, axis}) {
    std::ranges::copy(m_furniturePixels, m_surface.pixels().begin());
    return true;
  }
  m_furniture.reset();
  {
    const GdiSelection selected(m_surface.dc(), m_drawingFont.get());
    const GdiTextMeasure measure(m_surface.dc());
    buildFurniture(m_frame, settings, arrangement.layout, arrangement.images, axis, measure);
    if (m_drawingFont && (!selected || measure.hasFailed())) return false;
  }
  if (!arrangement.complete || !drawFurniture(arrangement.images)) return false;
  if (!own) return true;
  try {
    const std::span<const Argb> pixels = m_surface.pixels();
    m_furniturePixels.assign(pixels.begin(), pixels.end());
    m_furniture = {settings, axis};
  } catch (const std::bad_alloc&) {
    // The next paint draws it again.
  }
  return true;
}

bool AnalyserPicture::drawFurniture(const ColumnImages& images) {
  m_painter.clear(m_frame.background);
  m_painter.fill(m_frame.strips);
  const std::array<PreparedColumn, 1> unlit{images[unlitColumn]};
  m_painter.fill(m_frame.unlit, unlit);
  m_painter.fill(m_frame.gaps);
  return m_painter.draw(m_frame.texts, static_cast<HFONT>(m_drawingFont.get()), m_frame.textBackground) &&
         m_painter.draw(m_frame.border);
}

HRESULT AnalyserPicture::font(IFontDisp** font) const {
  *font = nullptr;
  return m_font ? m_font.CopyTo(font) : S_OK;
}

void AnalyserPicture::exchangeFont(Microsoft::WRL::ComPtr<IFontDisp>& font) noexcept {
  m_font.Swap(font);
  m_drawingFont.reset();
  m_furniture.reset();
}

void AnalyserPicture::discard() noexcept {
  m_surface.release();
  m_drawingFont.reset();
  m_font.Reset();
}

}  // namespace av::type3
