#include "gfx/win/scale_font.h"

#include "gfx/win/gdiplus_text_measure.h"
#include "gfx/win/gdiplus_token.h"
#include "gfx/win/offscreen.h"

#include <gtest/gtest.h>

#include <olectl.h>

namespace av {
namespace {

using Microsoft::WRL::ComPtr;

class ScaleFontTest : public testing::Test {
 protected:
  ScaleFontTest() { surface.resize({16, 16}); }

  static ComPtr<IFontDisp> oleFont(const wchar_t* face, double points, SHORT weight, bool italic, bool underline) {
    std::wstring name(face);
    FONTDESC description{};
    description.cbSizeofstruct = sizeof description;
    description.lpstrName = name.data();
    description.cySize.int64 = static_cast<LONGLONG>(points * 10000);
    description.sWeight = weight;
    description.sCharset = DEFAULT_CHARSET;
    description.fItalic = italic;
    description.fUnderline = underline;
    ComPtr<IFontDisp> font;
    OleCreateFontIndirect(&description, IID_IFontDisp, reinterpret_cast<void**>(font.GetAddressOf()));
    return font;
  }

  static INT styleOf(const FontHandle& font) {
    INT style = -1;
    Gdiplus::DllExports::GdipGetFontStyle(font.get(), &style);
    return style;
  }

  GdiplusToken token;
  OffscreenSurface surface;
};

TEST_F(ScaleFontTest, IsArialInSixPointsByDefault) {
  const ComPtr<IFontDisp> disp = createDefaultScaleFont();
  ASSERT_TRUE(disp);
  ComPtr<IFont> font;
  ASSERT_EQ(S_OK, disp.As(&font));
  HFONT gdiFont = nullptr;  // the properties answer with the face that the font mapper found; this keeps what was asked
  ASSERT_EQ(S_OK, font->get_hFont(&gdiFont));
  LOGFONTW description{};
  ASSERT_NE(0, GetObjectW(gdiFont, sizeof description, &description));
  EXPECT_STREQ(L"Arial", description.lfFaceName);
  EXPECT_EQ(400, description.lfWeight);
  EXPECT_EQ(DEFAULT_CHARSET, description.lfCharSet);
  EXPECT_FALSE(description.lfItalic || description.lfUnderline || description.lfStrikeOut);
  CY size{};
  ASSERT_EQ(S_OK, font->get_Size(&size));
  EXPECT_NEAR(60000, static_cast<double>(size.int64), 2500);  // to the nearest pixel height
}

TEST_F(ScaleFontTest, TakesTheLogicalHeightAsPoints) {
  const ComPtr<IFontDisp> disp = createDefaultScaleFont();
  ComPtr<IFont> ole;
  ASSERT_EQ(S_OK, disp.As(&ole));
  HFONT gdiFont = nullptr;
  ASSERT_EQ(S_OK, ole->get_hFont(&gdiFont));
  LOGFONTW description{};
  ASSERT_NE(0, GetObjectW(gdiFont, sizeof description, &description));
  const FontHandle font = createScaleFont(disp.Get());
  ASSERT_TRUE(font);
  Gdiplus::REAL size = 0;
  Gdiplus::Unit unit{};
  Gdiplus::DllExports::GdipGetFontSize(font.get(), &size);
  Gdiplus::DllExports::GdipGetFontUnit(font.get(), &unit);
  EXPECT_EQ(static_cast<float>(std::abs(description.lfHeight)), size);
  EXPECT_EQ(Gdiplus::UnitPoint, unit);
}

TEST_F(ScaleFontTest, IsBoldOnlyAboveWeight500) {
  using namespace Gdiplus;
  EXPECT_EQ(FontStyleRegular, styleOf(createScaleFont(oleFont(L"Arial", 9, 400, false, false).Get())));
  EXPECT_EQ(FontStyleRegular, styleOf(createScaleFont(oleFont(L"Arial", 9, 500, false, false).Get())));
  EXPECT_EQ(FontStyleBold, styleOf(createScaleFont(oleFont(L"Arial", 9, 501, false, false).Get())));
  EXPECT_EQ(FontStyleBoldItalic | FontStyleUnderline,
            styleOf(createScaleFont(oleFont(L"Arial", 9, 700, true, true).Get())));
}

TEST_F(ScaleFontTest, ReplacesAMissingFace) {
  const FontHandle font = createScaleFont(oleFont(L"No Such Face At All", 9, 700, false, false).Get());
  ASSERT_TRUE(font);
  EXPECT_GT(fontHeightPx(font.get(), surface.graphics()), 5);
}

TEST_F(ScaleFontTest, IsNullForWhatIsNoFont) {
  EXPECT_FALSE(createScaleFont(nullptr));
  ComPtr<IStream> stream;
  ASSERT_EQ(S_OK, CreateStreamOnHGlobal(nullptr, TRUE, stream.GetAddressOf()));
  EXPECT_FALSE(createScaleFont(stream.Get()));
}

TEST_F(ScaleFontTest, HasTheHeightThatThePlatformGivesRounded) {
  const FontHandle font = createScaleFont(createDefaultScaleFont().Get());
  Gdiplus::REAL exact = 0;
  Gdiplus::DllExports::GdipGetFontHeight(font.get(), surface.graphics(), &exact);
  EXPECT_NEAR(exact, fontHeightPx(font.get(), surface.graphics()), 0.5);
  EXPECT_GT(exact, 5);
  EXPECT_EQ(0, fontHeightPx(nullptr, surface.graphics()));
  EXPECT_EQ(0, fontHeightPx(font.get(), nullptr));
}

TEST_F(ScaleFontTest, IsAsHighAsTheSurfaceResolutionSaysNotTheScreens) {
  using namespace Gdiplus;
  using namespace Gdiplus::DllExports;
  const FontHandle font = createScaleFont(oleFont(L"Arial", 12, FW_NORMAL, false, false).Get());
  int heights[2] = {};
  for (int i = 0; i < 2; ++i) {
    GpBitmap* bitmap = nullptr;
    GpGraphics* graphics = nullptr;
    ASSERT_EQ(Ok, GdipCreateBitmapFromScan0(8, 8, 0, PixelFormat32bppPARGB, nullptr, &bitmap));
    const BitmapHandle ownedBitmap(bitmap);
    ASSERT_EQ(Ok, GdipBitmapSetResolution(bitmap, i ? 192 : 96, i ? 192 : 96));
    ASSERT_EQ(Ok, GdipGetImageGraphicsContext(bitmap, &graphics));
    const GraphicsHandle ownedGraphics(graphics);
    heights[i] = fontHeightPx(font.get(), graphics);
  }
  EXPECT_NEAR(2 * heights[0], heights[1], 1);
  EXPECT_EQ(heights[0], fontHeightPx(font.get(), surface.graphics())) << "off-screen pictures are at 96 DPI";
}

TEST_F(ScaleFontTest, GrowsWithTheSize) {
  int last = 0;
  for (const double points : {6.0, 9.0, 12.0, 18.0, 24.0}) {
    const FontHandle font = createScaleFont(oleFont(L"Arial", points, 400, false, false).Get());
    const int height = fontHeightPx(font.get(), surface.graphics());
    EXPECT_GT(height, last) << points;
    last = height;
  }
}

TEST_F(ScaleFontTest, MeasuresLongerTextsWiderAndAllOfThemOneLineHigh) {
  const FontHandle font = createScaleFont(createDefaultScaleFont().Get());
  GdiplusTextMeasure measure;
  EXPECT_EQ((Size{}), measure.measure("1"));
  measure.use(surface.graphics(), font.get());
  const Size one = measure.measure("1");
  const Size five = measure.measure("22050");
  EXPECT_GT(five.widthPx, 2 * one.widthPx);
  EXPECT_EQ(one.heightPx, five.heightPx);
  EXPECT_NEAR(fontHeightPx(font.get(), surface.graphics()), one.heightPx, 1.0);
  EXPECT_EQ(five, measure.measure("22050"));  // from memory
  const FontHandle large = createScaleFont(oleFont(L"Arial", 24, 400, false, false).Get());
  measure.use(surface.graphics(), large.get());
  EXPECT_GT(measure.measure("1").heightPx, one.heightPx);
}

}  // namespace
}  // namespace av
