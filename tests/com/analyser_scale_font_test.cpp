// The spectrum analyser's scale font: what a host can put, what it gets back, and when it is drawn.

#include "host/analyser_test.h"

namespace av::test {
namespace {

class AnalyserScaleFont : public AnalyserTest {
 protected:
  struct Style {
    double points = 9;
    SHORT weight = 400;
    bool italic = false, underline = false, strikethrough = false;
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
    description.fStrikethrough = style.strikethrough;
    ComPtr<IFontDisp> font;
    EXPECT_EQ(S_OK, OleCreateFontIndirect(&description, IID_PPV_ARGS(&font)));
    return font;
  }

  ComPtr<IFontDisp> current() {
    ComPtr<IFontDisp> font;
    EXPECT_EQ(S_OK, m_analyser->get_ScaleFont(&font));
    return font;
  }

  /// What the window shows with that font.
  WindowPicture pictureWith(const Style& style, const wchar_t* face = L"Arial") {
    EXPECT_EQ(S_OK, m_analyser->putref_ScaleFont(fontOf(face, style).Get()));
    return picture();
  }
};

TEST_F(AnalyserScaleFont, IsArialOfNinePointsAtFirst) {
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
  ComPtr<IFont> nine;
  ASSERT_EQ(S_OK, fontOf(L"Arial", {}).As(&nine));
  CY ninePoints{};
  nine->get_Size(&ninePoints);  // systems round to whole pixels
  EXPECT_EQ(ninePoints.int64, size.int64);
  EXPECT_EQ(400, weight);
  EXPECT_FALSE(italic || underline || strikethrough);
  SysFreeString(name);
}

TEST_F(AnalyserScaleFont, IsHandedOutWithAReferenceForTheCallerAndLetGoWithTheControl) {
  const ComPtr<IFontDisp> font = fontOf(L"Arial", {});
  ASSERT_EQ(S_OK, m_analyser->putref_ScaleFont(font.Get()));
  EXPECT_EQ(1u, otherReferences(font.Get()));
  {
    const ComPtr<IFontDisp> read = current();
    EXPECT_EQ(font.Get(), read.Get());
    EXPECT_EQ(2u, otherReferences(font.Get()));
  }
  EXPECT_EQ(1u, otherReferences(font.Get()));
  m_analyser.Reset();
  EXPECT_EQ(0u, otherReferences(font.Get()));
}

TEST_F(AnalyserScaleFont, NullAndObjectsThatAreNoFontsLeaveTheOldOneAndSucceed) {
  const ComPtr<IFontDisp> before = current();
  IDispatch* const noFont = m_analyser.Get();
  EXPECT_EQ(S_OK, m_analyser->putref_ScaleFont(nullptr));
  EXPECT_EQ(S_OK, m_analyser->putref_ScaleFont(reinterpret_cast<IFontDisp*>(noFont)));
  EXPECT_EQ(before.Get(), current().Get());
}

TEST_F(AnalyserScaleFont, LateBoundHostsMayPutItWithAndWithoutSet) {
  for (const WORD kind : {WORD{DISPATCH_PROPERTYPUTREF}, WORD{DISPATCH_PROPERTYPUT},
                          WORD{DISPATCH_PROPERTYPUT | DISPATCH_PROPERTYPUTREF}}) {
    const ComPtr<IFontDisp> font = fontOf(L"Arial", {});
    Value argument(font.Get());
    EXPECT_EQ(S_OK, invoke(analyserScaleFontId, kind, &argument, 1)) << kind;
    EXPECT_EQ(font.Get(), current().Get()) << kind;
    Value result;
    EXPECT_EQ(S_OK, invokeGet(analyserScaleFontId, &result));
    EXPECT_EQ(VT_DISPATCH, V_VT(&result));
    EXPECT_EQ(font.Get(), V_DISPATCH(&result));
  }
}

TEST_F(AnalyserScaleFont, LateBoundNothingAndObjectsThatAreNoFontsSucceedAndChangeNothing) {
  const ComPtr<IFontDisp> before = current();
  for (const WORD kind : {WORD{DISPATCH_PROPERTYPUTREF}, WORD{DISPATCH_PROPERTYPUT}}) {
    Value nothing(static_cast<IDispatch*>(nullptr)), noFont(static_cast<IDispatch*>(m_analyser.Get()));
    EXPECT_EQ(S_OK, invoke(analyserScaleFontId, kind, &nothing, 1));
    EXPECT_EQ(S_OK, invoke(analyserScaleFontId, kind, &noFont, 1));
    Value number(VT_I4, 5), text(L"Arial");
    EXPECT_TRUE(FAILED(invoke(analyserScaleFontId, kind, &number, 1)));
    EXPECT_TRUE(FAILED(invoke(analyserScaleFontId, kind, &text, 1)));
  }
  EXPECT_EQ(before.Get(), current().Get());
}

TEST_F(AnalyserScaleFont, SizeWeightSlopeAndLinesAreDrawn) {
  activate({300, 200});
  const WindowPicture plain = pictureWith({});
  EXPECT_EQ(plain, pictureWith({}));
  EXPECT_NE(plain, pictureWith({.weight = 700}));
  EXPECT_NE(plain, pictureWith({.italic = true}));
  EXPECT_NE(plain, pictureWith({.underline = true}));
  EXPECT_NE(plain, pictureWith({.strikethrough = true}));
  EXPECT_NE(plain, pictureWith({.points = 14}));
  EXPECT_EQ(plain, pictureWith({}));
}

TEST_F(AnalyserScaleFont, FacesAndSizesThatCannotBeDrawnDoNoHarm) {
  activate({300, 200});
  const WindowPicture plain = pictureWith({});
  EXPECT_EQ(300, pictureWith({}, L"No Such Face").width);
  EXPECT_EQ(300, pictureWith({.points = 0}).width);
  EXPECT_EQ(300, pictureWith({.points = 1000}).width);
  EXPECT_EQ(plain, pictureWith({}));
}

/// A font object that is a host's own code: it does something else while it is asked for its font.
class MeddlingFont final : public IFont, public IFontDisp {
 public:
  MeddlingFont(ComPtr<IFont> inner, IAudioVisualization4Type3* analyser) : m_inner(inner), m_analyser(analyser) {}
  virtual ~MeddlingFont() = default;

  STDMETHODIMP QueryInterface(REFIID iid, void** object) override {
    *object = nullptr;
    if (iid == IID_IFont || iid == IID_IUnknown) *object = static_cast<IFont*>(this);
    if (iid == IID_IFontDisp || iid == IID_IDispatch) *object = static_cast<IFontDisp*>(this);
    if (*object) ++references;
    return *object ? S_OK : E_NOINTERFACE;
  }
  STDMETHODIMP_(ULONG) AddRef() override { return static_cast<ULONG>(++references); }
  STDMETHODIMP_(ULONG) Release() override { return static_cast<ULONG>(--references); }
  STDMETHODIMP get_hFont(HFONT* font) override {
    if (!m_inside) {
      m_inside = true;
      ++asked;
      EXPECT_EQ(S_OK, m_analyser->put_LineCount(asked % 2 ? 200 : 4));
      EXPECT_EQ(S_OK, m_analyser->put_FFTLength(asked % 2 ? 64 : 1024));
      EXPECT_EQ(S_OK, m_analyser->put_ScaleYMax(60 + asked % 5));
      EXPECT_EQ(S_OK, sendSamples(m_analyser, noiseBlock()));
      m_inside = false;
    }
    return m_inner->get_hFont(font);
  }
  STDMETHODIMP get_Name(BSTR* v) override { return m_inner->get_Name(v); }
  STDMETHODIMP put_Name(BSTR v) override { return m_inner->put_Name(v); }
  STDMETHODIMP get_Size(CY* v) override { return m_inner->get_Size(v); }
  STDMETHODIMP put_Size(CY v) override { return m_inner->put_Size(v); }
  STDMETHODIMP get_Bold(BOOL* v) override { return m_inner->get_Bold(v); }
  STDMETHODIMP put_Bold(BOOL v) override { return m_inner->put_Bold(v); }
  STDMETHODIMP get_Italic(BOOL* v) override { return m_inner->get_Italic(v); }
  STDMETHODIMP put_Italic(BOOL v) override { return m_inner->put_Italic(v); }
  STDMETHODIMP get_Underline(BOOL* v) override { return m_inner->get_Underline(v); }
  STDMETHODIMP put_Underline(BOOL v) override { return m_inner->put_Underline(v); }
  STDMETHODIMP get_Strikethrough(BOOL* v) override { return m_inner->get_Strikethrough(v); }
  STDMETHODIMP put_Strikethrough(BOOL v) override { return m_inner->put_Strikethrough(v); }
  STDMETHODIMP get_Weight(SHORT* v) override { return m_inner->get_Weight(v); }
  STDMETHODIMP put_Weight(SHORT v) override { return m_inner->put_Weight(v); }
  STDMETHODIMP get_Charset(SHORT* v) override { return m_inner->get_Charset(v); }
  STDMETHODIMP put_Charset(SHORT v) override { return m_inner->put_Charset(v); }
  STDMETHODIMP Clone(IFont** v) override { return m_inner->Clone(v); }
  STDMETHODIMP IsEqual(IFont* v) override { return m_inner->IsEqual(v); }
  STDMETHODIMP SetRatio(LONG a, LONG b) override { return m_inner->SetRatio(a, b); }
  STDMETHODIMP QueryTextMetrics(TEXTMETRICOLE* v) override { return m_inner->QueryTextMetrics(v); }
  STDMETHODIMP AddRefHfont(HFONT v) override { return m_inner->AddRefHfont(v); }
  STDMETHODIMP ReleaseHfont(HFONT v) override { return m_inner->ReleaseHfont(v); }
  STDMETHODIMP SetHdc(HDC v) override { return m_inner->SetHdc(v); }
  STDMETHODIMP GetTypeInfoCount(UINT*) override { return E_NOTIMPL; }
  STDMETHODIMP GetTypeInfo(UINT, LCID, ITypeInfo**) override { return E_NOTIMPL; }
  STDMETHODIMP GetIDsOfNames(REFIID, LPOLESTR*, UINT, LCID, DISPID*) override { return E_NOTIMPL; }
  STDMETHODIMP Invoke(DISPID, REFIID, LCID, WORD, DISPPARAMS*, VARIANT*, EXCEPINFO*, UINT*) override {
    return E_NOTIMPL;
  }

  int references = 1;
  int asked = 0;

 private:
  ComPtr<IFont> m_inner;
  IAudioVisualization4Type3* m_analyser;
  bool m_inside = false;
};

TEST_F(AnalyserScaleFont, AFontThatCallsTheControlWhileItIsAskedDoesNoHarm) {
  activate({300, 200});
  ComPtr<IFont> inner;
  ASSERT_EQ(S_OK, fontOf(L"Arial", {}).As(&inner));
  MeddlingFont font(inner, m_analyser.Get());
  EXPECT_EQ(S_OK, m_analyser->putref_ScaleFont(&font));
  for (int i = 0; i < 20; ++i) {
    EXPECT_EQ(S_OK, m_analyser->put_ScaleYMax(100));
    EXPECT_EQ(S_OK, m_analyser->put_AlignmentY(i % 2));
    ASSERT_EQ(S_OK, m_container.resize({300 + i, 200}));
    UpdateWindow(window());
  }
  EXPECT_GT(font.asked, 20);
  EXPECT_EQ(S_OK, m_analyser->putref_ScaleFont(fontOf(L"Arial", {}).Get()));
  EXPECT_EQ(1, font.references);
}

}  // namespace
}  // namespace av::test
