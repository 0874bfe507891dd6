#include "type1/win/view_picture.h"

#include "gfx/win/scale_font.h"
#include "ole/module_instance.h"

namespace av::type1 {

ViewPicture::ViewPicture() noexcept : m_font(createDefaultScaleFont()), m_painter(m_surface, ole::moduleInstance()) {}

bool ViewPicture::prepare(Size size, FontCheck fontCheck) {
  if (!m_surface.resize(size)) return false;
  if (m_drawingFont && fontCheck == FontCheck::changedToo &&
      !sameFont(m_fontDescription, describeScaleFont(m_font.Get())))
    discardDrawingFont();
  const bool newFont = !m_drawingFont;
  if (newFont) {
    if (!m_font) m_font = createDefaultScaleFont();  // there was no memory for it
    m_fontDescription = describeScaleFont(m_font.Get());
    m_drawingFont = createScaleFont(m_font.Get());
  }
  if (newFont || m_measuredOn != m_surface.graphics()) {
    m_measuredOn = m_surface.graphics();
    m_textHeightPx = fontHeightPx(m_drawingFont.get(), m_measuredOn);
    m_measure.use(m_measuredOn, m_drawingFont.get());
    m_isMeasured = m_drawingFont ? m_textHeightPx > 0 : m_fontDescription.lfHeight == 0;
    if (!m_isMeasured) m_measuredOn = nullptr;  // the next time it is tried again
  }
  return true;
}

void ViewPicture::layout(const ViewSettings& settings, std::uint32_t sampleRateHz, SIZE client) {
  if (client.cx < 2 || client.cy < 2 || !prepare({client.cx, client.cy}, FontCheck::changedToo)) return;
  m_layout = computeLayout(settings, sampleRateHz, {0, 0, client.cx, client.cy}, m_textHeightPx);
  m_isLaidOut = m_isMeasured;
}

void ViewPicture::paint(HDC target, const RECT& bounds, bool inWindow, const ViewSettings& settings,
                        const ViewSignal& signal) {
  const Rect picture{0, 0, bounds.right - bounds.left, bounds.bottom - bounds.top};
  // In the window the text height of the layout holds until the next layout; elsewhere each picture has its own.
  if (!prepare({picture.width(), picture.height()}, inWindow ? FontCheck::onlyMissing : FontCheck::changedToo)) return;
  const bool windowLayout = inWindow && m_layout.client == picture;
  if (windowLayout && !m_isLaidOut && m_isMeasured) {
    m_layout = computeLayout(settings, signal.sampleRateHz, picture, m_textHeightPx);
    m_isLaidOut = true;
  }
  buildFrame(m_frame, settings, signal,
             windowLayout ? m_layout : computeLayout(settings, signal.sampleRateHz, picture, m_textHeightPx),
             m_measure);
  if (m_measure.takeFailure()) return;
  if (m_painter.paint(m_frame, m_drawingFont.get())) m_surface.copyTo(target, {bounds.left, bounds.top});
}

HRESULT ViewPicture::font(IFontDisp** font) const {
  *font = nullptr;
  return m_font ? m_font.CopyTo(font) : S_OK;
}

void ViewPicture::exchangeFont(Microsoft::WRL::ComPtr<IFontDisp>& font) noexcept {
  m_font.Swap(font);
  discardDrawingFont();
}

void ViewPicture::discardDrawingFont() noexcept {
  m_measure.use(nullptr, nullptr);
  m_painter.forgetFurniture();
  m_drawingFont.reset();
}

void ViewPicture::discard() noexcept {
  m_painter.release();
  m_measure.release();
  m_drawingFont.reset();
  m_surface.release();
  m_measuredOn = nullptr;
  m_font.Reset();
}

}  // namespace av::type1
