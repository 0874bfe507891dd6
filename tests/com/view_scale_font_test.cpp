// The view's scale font: what a host can put, what it gets back, and when a change of it is seen.

#include "host/view_test.h"
#include "host/window_picture.h"

namespace av::test {
namespace {

class ViewScaleFont : public ViewTest {
 protected:
  struct Style {
    double points = 9;
    SHORT weight = 400;
    bool italic = false, underline = false;
  };

  static ComPtr<IFontDisp> fontOf(const wchar_t* face, const Style& style) {
    std::wstring name = face;
    FONTDESC description{};
    description.cbSizeofstruct = sizeof description;
    description.lpstrName = name.data();
    description.cySize.int64 = static_cast<LONGLONG>(style.points * 10000);
    description.sWeight = style.weight;
    description.sCharset = DEFAULT_CHARSET;
    description.fItalic = style.italic;
    description.fUnderline = style.underline;
    ComPtr<IFontDisp> font;
    EXPECT_EQ(S_OK, OleCreateFontIndirect(&description, IID_PPV_ARGS(&font)));
    return font;
  }

  ComPtr<IFontDisp> current() {
    ComPtr<IFontDisp> font;
    EXPECT_EQ(S_OK, m_view->get_ScaleFont(&font));
    return font;
  }

  WindowPicture picture() const { return pictureOf(m_container.controlWindow()); }

  /// What the window shows with that font.
  WindowPicture pictureWith(const wchar_t* face, const Style& style) {
    EXPECT_EQ(S_OK, m_view->putref_ScaleFont(fontOf(face, style).Get()));
    return picture();
  }

  /// Height of the horizontal scale's strip: its colour at the left edge, where the plot is black.
  int stripHeight() const {
    const WindowPicture shown = picture();
    int rows = 0;
    for (int y = 0; y < shown.height; ++y) rows += shown.at(0, y) == 0xFFFF00;
    return rows;
  }

  static constexpr OLE_COLOR yellow = 0x0000FFFF;
};

TEST_F(ViewScaleFont, IsArialOfSixPointsAtFirst) {
  ComPtr<IFont> font;
  ASSERT_EQ(S_OK, current().As(&font));
  // Not the character set: the system reports the one that it mapped the font to.
  BSTR name = nullptr;
  CY size{};
  SHORT weight = 0;
  BOOL italic = TRUE, underline = TRUE, strikethrough = TRUE;
  font->get_Name(&name);
  font->get_Size(&size);
  font->get_Weight(&weight);
  font->get_Italic(&italic);
  font->get_Underline(&underline);
  font->get_Strikethrough(&strikethrough);
  EXPECT_STREQ(L"Arial", name);
  EXPECT_EQ(60000, size.int64);
  EXPECT_EQ(400, weight);
  EXPECT_FALSE(italic || underline || strikethrough);
  SysFreeString(name);
}

TEST_F(ViewScaleFont, IsHandedOutWithAReferenceForTheCaller) {
  const ComPtr<IFontDisp> font = fontOf(L"Arial", {});
  ASSERT_EQ(0u, otherReferences(font.Get()));
  ASSERT_EQ(S_OK, m_view->putref_ScaleFont(font.Get()));
  EXPECT_EQ(1u, otherReferences(font.Get()));
  {
    const ComPtr<IFontDisp> read = current();
    EXPECT_EQ(font.Get(), read.Get());
    EXPECT_EQ(2u, otherReferences(font.Get()));
  }
  EXPECT_EQ(1u, otherReferences(font.Get()));
  ASSERT_EQ(S_OK, m_view->putref_ScaleFont(fontOf(L"Arial", {}).Get()));
  EXPECT_EQ(0u, otherReferences(font.Get()));
}

TEST_F(ViewScaleFont, IsLetGoWithTheControl) {
  const ComPtr<IFontDisp> font = fontOf(L"Arial", {});
  ASSERT_EQ(S_OK, m_view->putref_ScaleFont(font.Get()));
  m_view.Reset();
  EXPECT_EQ(0u, otherReferences(font.Get()));
}

TEST_F(ViewScaleFont, NullChangesNothing) {
  const ComPtr<IFontDisp> font = fontOf(L"Arial", {});
  ASSERT_EQ(S_OK, m_view->putref_ScaleFont(font.Get()));
  EXPECT_EQ(S_OK, m_view->putref_ScaleFont(nullptr));
  EXPECT_EQ(font.Get(), current().Get());
}

TEST_F(ViewScaleFont, AnObjectThatIsNoFontIsRefusedAndTheOldFontStays) {
  const ComPtr<IFontDisp> before = current();
  IDispatch* const noFont = m_view.Get();
  EXPECT_EQ(E_INVALIDARG, m_view->putref_ScaleFont(reinterpret_cast<IFontDisp*>(noFont)));
  EXPECT_EQ(before.Get(), current().Get());
}

TEST_F(ViewScaleFont, LateBoundHostsMayPutItWithAndWithoutSet) {
  for (const WORD kind : {WORD{DISPATCH_PROPERTYPUTREF}, WORD{DISPATCH_PROPERTYPUT},
                          WORD{DISPATCH_PROPERTYPUT | DISPATCH_PROPERTYPUTREF}}) {
    const ComPtr<IFontDisp> font = fontOf(L"Arial", {});
    Value argument(font.Get());
    EXPECT_EQ(S_OK, invoke(scaleFontId, kind, &argument, 1)) << kind;
    EXPECT_EQ(font.Get(), current().Get()) << kind;
    Value result;
    EXPECT_EQ(S_OK, invokeGet(scaleFontId, &result));
    EXPECT_EQ(VT_DISPATCH, V_VT(&result));
    EXPECT_EQ(font.Get(), V_DISPATCH(&result));
  }
}

TEST_F(ViewScaleFont, LateBoundNothingChangesNothingAndNoFontFails) {
  const ComPtr<IFontDisp> before = current();
  Value nothing(static_cast<IDispatch*>(nullptr)), noFont(static_cast<IDispatch*>(m_view.Get())), number(VT_I4, 5),
      text(L"Arial");
  EXPECT_EQ(S_OK, invoke(scaleFontId, DISPATCH_PROPERTYPUTREF, &nothing, 1));
  EXPECT_EQ(before.Get(), current().Get());
  EXPECT_TRUE(FAILED(invoke(scaleFontId, DISPATCH_PROPERTYPUTREF, &noFont, 1)));
  EXPECT_TRUE(FAILED(invoke(scaleFontId, DISPATCH_PROPERTYPUTREF, &number, 1)));
  EXPECT_TRUE(FAILED(invoke(scaleFontId, DISPATCH_PROPERTYPUT, &text, 1)));
  EXPECT_EQ(before.Get(), current().Get());
}

TEST_F(ViewScaleFont, SizeWeightAndSlopeAreDrawn) {
  activate({300, 200});
  const WindowPicture plain = pictureWith(L"Arial", {});
  EXPECT_EQ(plain, pictureWith(L"Arial", {}));
  const WindowPicture bold = pictureWith(L"Arial", {.weight = 700});
  EXPECT_NE(plain, bold);
  EXPECT_NE(plain, pictureWith(L"Arial", {.italic = true}));
  // Not the underline: Wine's GDI+ leaves it out on bitmaps. That the drawing font has it is tested with that font.
  EXPECT_NE(plain, pictureWith(L"Arial", {.points = 12}));
  EXPECT_EQ(plain, pictureWith(L"Arial", {.weight = 500}));  // bold begins above 500
  EXPECT_EQ(bold, pictureWith(L"Arial", {.weight = 501}));
}

TEST_F(ViewScaleFont, ItsHeightMakesTheScaleStrip) {
  ASSERT_EQ(S_OK, m_view->put_ScaleColor(yellow));
  activate({300, 200});
  const int atFirst = stripHeight();
  EXPECT_GT(atFirst, 10);
  pictureWith(L"Arial", {.points = 18});
  EXPECT_GT(stripHeight(), atFirst + 10);
}

TEST_F(ViewScaleFont, AFaceThatDoesNotExistIsReplaced) {
  ASSERT_EQ(S_OK, m_view->put_ScaleColor(yellow));
  activate({300, 200});
  const WindowPicture shown = pictureWith(L"No Such Face At All", {});
  EXPECT_GT(stripHeight(), 10);
  ASSERT_EQ(S_OK, m_view->put_TextColor(yellow));  // texts in the strip's own colour: gone
  EXPECT_NE(shown, picture());
}

TEST_F(ViewScaleFont, SizesWithoutRoomLeaveTheWholeWindowToThePlot) {
  activate({300, 200});
  ASSERT_EQ(S_OK, m_view->put_ScaleXVisible(VARIANT_FALSE));
  ASSERT_EQ(S_OK, m_view->put_ScaleYVisible(VARIANT_FALSE));
  ASSERT_EQ(S_OK, m_view->put_GridVisible(VARIANT_FALSE));
  const WindowPicture plotOnly = picture();
  ASSERT_EQ(S_OK, m_view->put_ScaleXVisible(VARIANT_TRUE));
  ASSERT_NE(plotOnly, picture());
  // Where a strip has no room its height is 0, and filling it from the row below the client area fills nothing.
  EXPECT_EQ(plotOnly, pictureWith(L"Arial", {.points = 500}));
}

TEST_F(ViewScaleFont, SizeZeroIsDrawnAtTheSmallestSizeThereIs) {
  ASSERT_EQ(S_OK, m_view->put_ScaleColor(yellow));
  activate({300, 200});
  pictureWith(L"Arial", {.points = 0});
  EXPECT_GT(stripHeight(), 0);
}

// `view.ScaleFont.Size = 12`: the object is the host's, the control is told of nothing.
TEST_F(ViewScaleFont, AChangeOfTheFontObjectIsSeenFromTheNextLayoutOn) {
  ASSERT_EQ(S_OK, m_view->put_ScaleColor(yellow));
  activate({300, 200});
  const int small = stripHeight();
  ComPtr<IFont> font;
  ASSERT_EQ(S_OK, current().As(&font));
  CY size{};
  size.int64 = 240000;
  ASSERT_EQ(S_OK, font->put_Size(size));
  const WindowPicture before = picture();
  ASSERT_EQ(S_OK, m_view->put_BackColor(0));  // a redraw alone keeps text and layout in step
  EXPECT_EQ(before, picture());
  ASSERT_EQ(S_OK, m_view->put_ScaleYMin(0));  // a layout
  EXPECT_GT(stripHeight(), small + 10);
  const WindowPicture large = picture();
  ASSERT_EQ(S_OK, m_view->putref_ScaleFont(current().Get()));
  EXPECT_EQ(large, picture());
}

TEST_F(ViewScaleFont, AChangeOfTheFontObjectIsSeenInTheNextPictureOutsideAWindow) {
  ComPtr<IViewObject> viewObject;
  ASSERT_EQ(S_OK, m_view.As(&viewObject));
  ASSERT_EQ(S_OK, m_view->put_ScaleColor(yellow));
  const auto stripRows = [&] {
    HDC memory = CreateCompatibleDC(nullptr);
    HDC screen = GetDC(nullptr);
    HBITMAP bitmap = CreateCompatibleBitmap(screen, 300, 200);
    ReleaseDC(nullptr, screen);
    HGDIOBJ old = SelectObject(memory, bitmap);
    const RECTL bounds{0, 0, 300, 200};
    EXPECT_EQ(S_OK,
              viewObject->Draw(DVASPECT_CONTENT, -1, nullptr, nullptr, nullptr, memory, &bounds, nullptr, nullptr, 0));
    int rows = 0;
    for (int y = 0; y < 200; ++y) rows += GetPixel(memory, 0, y) == RGB(255, 255, 0);
    SelectObject(memory, old);
    DeleteObject(bitmap);
    DeleteDC(memory);
    return rows;
  };
  const int small = stripRows();
  EXPECT_GT(small, 10);
  ComPtr<IFont> font;
  ASSERT_EQ(S_OK, current().As(&font));
  CY size{};
  size.int64 = 240000;
  ASSERT_EQ(S_OK, font->put_Size(size));
  EXPECT_GT(stripRows(), small + 10);
}

}  // namespace
}  // namespace av::test
