#include "type1/win/view_painter.h"

#include "type1/win/resource_ids.h"

#include <algorithm>
#include <new>
#include <span>

namespace av::type1 {

BarGradients loadBarGradients(HINSTANCE module) noexcept {
  return {PreparedImage(module, AV_BITMAP_BARS_TYPE3), PreparedImage(module, AV_BITMAP_BARS_TYPE4),
          PreparedImage(module, AV_BITMAP_BARS_TYPE5)};
}

ViewPainter::ViewPainter(OffscreenSurface& surface, HINSTANCE module) noexcept
    : m_surface(surface), m_gradients(loadBarGradients(module)) {}

bool ViewPainter::paint(const ViewFrame& frame, const Gdiplus::GpFont* scaleFont) noexcept {
  return paintFurniture(frame, scaleFont) && m_painter.fill(frame.correlation) &&
         m_painter.draw(frame.bars, m_gradients) && m_painter.draw(frame.curves) && m_painter.draw(frame.balance);
}

bool ViewPainter::paintFurniture(const ViewFurniture& furniture, const Gdiplus::GpFont* scaleFont) noexcept {
  const std::span<Argb> pixels = m_surface.pixels();
  if (!m_furniturePixels.empty() && m_furniturePixels.size() == pixels.size() && scaleFont == m_furnitureFont &&
      furniture == m_furniture) {
    std::ranges::copy(m_furniturePixels, pixels.begin());
    return true;
  }
  forgetFurniture();
  if (!replayFurniture(furniture, scaleFont)) return false;
  keepFurniture(furniture, scaleFont);
  return true;
}

bool ViewPainter::replayFurniture(const ViewFurniture& furniture, const Gdiplus::GpFont* scaleFont) noexcept {
  return m_painter.clear(furniture.background) && m_painter.fill(furniture.strips) &&
         m_painter.draw(furniture.border) && m_painter.draw(furniture.labels, scaleFont) &&
         m_painter.draw(furniture.grid);
}

void ViewPainter::keepFurniture(const ViewFurniture& furniture, const Gdiplus::GpFont* scaleFont) noexcept {
  try {
    m_furniture = furniture;
    m_furnitureFont = scaleFont;
    const std::span<const Argb> pixels = m_surface.pixels();
    m_furniturePixels.assign(pixels.begin(), pixels.end());
  } catch (const std::bad_alloc&) {
    forgetFurniture();  // the next frame draws it again
  }
}

void ViewPainter::forgetFurniture() noexcept { m_furniturePixels.clear(); }

void ViewPainter::release() noexcept {
  m_painter.release();
  for (PreparedImage& gradient : m_gradients) gradient.release();
  m_furniturePixels = {};
}

}  // namespace av::type1
