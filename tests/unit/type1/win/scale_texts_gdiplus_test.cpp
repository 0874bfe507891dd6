// The texts of the view's scales as GDI+ measures them, and the model of the font that stands for it elsewhere.

#include "gfx/win/gdiplus_text_measure.h"
#include "gfx/win/gdiplus_token.h"
#include "gfx/win/offscreen.h"
#include "gfx/win/scale_font.h"
#include "host/create.h"
#include "support/liberation_sans.h"
#include "support/scale_texts_sweep.h"

#include <gtest/gtest.h>

#include <olectl.h>

#include <random>

namespace av::type1 {
namespace {

using test::LiberationSans;

/// Arial of so many points, as a control has it; Liberation Sans stands for it under Wine.
class ArialOf {
 public:
  ArialOf(int points, OffscreenSurface& surface) {
    wchar_t face[] = L"Arial";
    FONTDESC description{};
    description.cbSizeofstruct = sizeof description;
    description.lpstrName = face;
    description.cySize.int64 = points * 10000;
    description.sWeight = FW_NORMAL;
    description.sCharset = DEFAULT_CHARSET;
    Microsoft::WRL::ComPtr<IFontDisp> object;
    OleCreateFontIndirect(&description, IID_IFontDisp, reinterpret_cast<void**>(object.GetAddressOf()));
    m_font = createScaleFont(object.Get());
    m_textHeightPx = fontHeightPx(m_font.get(), surface.graphics());
    m_measure.use(surface.graphics(), m_font.get());
  }
  int textHeightPx() const { return m_textHeightPx; }
  const TextMeasure& measure() const { return m_measure; }

 private:
  FontHandle m_font;
  GdiplusTextMeasure m_measure;
  int m_textHeightPx = 0;
};

class ScaleTextsInGdiplus : public testing::Test {
 protected:
  ScaleTextsInGdiplus() { m_surface.resize({64, 64}); }

  avhost::Apartment m_apartment;
  GdiplusToken m_token;
  OffscreenSurface m_surface;
};

TEST_F(ScaleTextsInGdiplus, AreMeasuredAsTheModelOfTheFontSays) {
  for (int points = 6; points <= 24; ++points) {
    const ArialOf arial(points, m_surface);
    const LiberationSans model(points);
    EXPECT_EQ(model.textHeightPx(), arial.textHeightPx()) << points;
    for (const char* number : {"0", "1", "2", "3", "4", "5", "6", "7", "8", "9", "-", "-90", "-186", "44100", "16384"})
      EXPECT_EQ(model.measure(number), arial.measure().measure(number)) << number << " of " << points << " points";
    // Hinting moves the advance of a letter here and there.
    for (const char* unit : {"dB ", "dB", "smpl", "Hz  "}) {
      const Size measured = arial.measure().measure(unit);
      EXPECT_NEAR(model.measure(unit).widthPx, measured.widthPx, 1) << unit << " of " << points << " points";
      EXPECT_EQ(model.measure(unit).heightPx, measured.heightPx);
    }
  }
}

TEST_F(ScaleTextsInGdiplus, NeverTouchLeaveTheirStripOrLieInAnyView) {
  std::mt19937 random(3);
  test::ScaleTextsSweep sweep;
  for (int points = 6; points <= 24; ++points) {
    const ArialOf arial(points, m_surface);
    for (int i = 0; i < 100; ++i) ASSERT_EQ("", sweep.checkAnyView(random, {&arial.measure(), arial.textHeightPx()}));
  }
  EXPECT_GT(sweep.sums.horizontalLabels, 5000);
  EXPECT_GT(sweep.sums.verticalLabels, 4000);
}

class FullScaleTextsInGdiplus : public ScaleTextsInGdiplus {};

TEST_F(FullScaleTextsInGdiplus, NeverTouchLeaveTheirStripOrLieInAnyView) {
  std::mt19937 random(4);
  test::ScaleTextsSweep sweep;
  for (int points = 6; points <= 24; ++points) {
    const ArialOf arial(points, m_surface);
    for (int i = 0; i < 3000; ++i) ASSERT_EQ("", sweep.checkAnyView(random, {&arial.measure(), arial.textHeightPx()}));
  }
}

}  // namespace
}  // namespace av::type1
