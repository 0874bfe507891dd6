// What follows a put of each of the spectrum analyser's properties, as it can be seen from outside: redraws, layouts,
// rebuilt columns, and what stays until the next block.

#include "host/analyser_test.h"

#include <functional>

namespace av::test {
namespace {

using Analyser = IAudioVisualization4Type3;

/// One put of the value that the property has anyway, so that nothing but the effects of the put can be seen.
struct SamePut {
  const char* name;
  std::function<HRESULT(Analyser&)> put;
  bool relayouts, rebuilds, redraws;
};

void PrintTo(const SamePut& row, std::ostream* out) { *out << row.name; }

template <auto Get, auto Put>
HRESULT putWhatItHas(Analyser& analyser) {
  const auto run = [&]<class Value>(HRESULT (STDMETHODCALLTYPE Analyser::*)(Value*)) {
    Value value{};
    const HRESULT read = (analyser.*Get)(&value);
    return FAILED(read) ? read : (analyser.*Put)(value);
  };
  return run(Get);
}

HRESULT putTheFontItHas(Analyser& analyser) {
  ComPtr<IFontDisp> font;
  const HRESULT read = analyser.get_ScaleFont(&font);
  return FAILED(read) ? read : analyser.putref_ScaleFont(font.Get());
}

constexpr bool layouts = true, rebuilds = true, redraws = true, no = false;

#define AV_SAME(name) #name, putWhatItHas < &Analyser::get_##name, &Analyser::put_##name>
const SamePut table[] = {
    {AV_SAME(ScaleXVisible), layouts, rebuilds, redraws},
    {AV_SAME(ScaleYVisible), layouts, rebuilds, redraws},
    {AV_SAME(ScaleYMax), layouts, rebuilds, redraws},
    {AV_SAME(ScaleYMin), layouts, rebuilds, redraws},
    {AV_SAME(FFTLength), no, no, no},
    {AV_SAME(BackColor), no, no, redraws},
    {AV_SAME(BackLineHighColor), no, rebuilds, redraws},
    {AV_SAME(BackLineMidColor), no, rebuilds, redraws},
    {AV_SAME(BackLineLowColor), no, rebuilds, redraws},
    {AV_SAME(LineHighColor), no, rebuilds, redraws},
    {AV_SAME(LineMidColor), no, rebuilds, redraws},
    {AV_SAME(LineLowColor), no, rebuilds, redraws},
    {AV_SAME(MidPoint), no, rebuilds, redraws},
    {AV_SAME(HighPoint), no, rebuilds, redraws},
    {AV_SAME(LineInterval), no, rebuilds, redraws},
    {AV_SAME(SpotInterval), no, rebuilds, redraws},
    {AV_SAME(SpotHeight), no, rebuilds, redraws},
    {AV_SAME(LineCount), no, rebuilds, redraws},
    {AV_SAME(TickVisible), no, no, redraws},
    {AV_SAME(DynamicRange), layouts, rebuilds, redraws},
    {"ScaleFont", putTheFontItHas, layouts, rebuilds, redraws},
    {AV_SAME(ScaleColor), no, no, redraws},
    {AV_SAME(BorderColor), no, no, redraws},
    {AV_SAME(BorderType), no, no, redraws},
    {AV_SAME(FFTWindowType), no, no, no},
    {AV_SAME(FFTWindowParam), no, no, no},
    {AV_SAME(AutoRepaint), no, no, no},
    {AV_SAME(XScaleType), no, no, redraws},
    {AV_SAME(TickColor), no, no, redraws},
    {AV_SAME(AlignmentX), no, no, redraws},
    {AV_SAME(AlignmentY), layouts, rebuilds, redraws},
    {AV_SAME(ViewType), no, rebuilds, redraws},
    {AV_SAME(AutoSize), no, no, redraws},
};
#undef AV_SAME
static_assert(std::size(table) == 33);  // 36 rows less FFTWindowCount, FFTWindowName and HasWindowParam

class AnalyserEffects : public AnalyserTest {
 protected:
  void SetUp() override {
    AnalyserTest::SetUp();
    ASSERT_EQ(S_OK, m_analyser->put_FFTWindowType(10));  // the one with a parameter
  }

  /// Height of the frequency scale's strip: its colour in the left column, up from the bottom.
  int stripHeight() const {
    const WindowPicture shown = picture();
    int rows = 0;
    while (rows < shown.height && shown.at(0, shown.height - 1 - rows) == 0xFFFF00) ++rows;
    return rows;
  }
  bool shows(std::uint32_t colour) const {
    const WindowPicture shown = picture();
    return std::find(shown.pixels.begin(), shown.pixels.end(), colour) != shown.pixels.end();
  }
};

class EachAnalyserPut : public AnalyserEffects, public testing::WithParamInterface<SamePut> {};

TEST_P(EachAnalyserPut, AsksAnInactiveContainerForOneRedrawOrNone) {
  avhost::ControlSite* const sink = new avhost::ControlSite(nullptr, {});
  ComPtr<IViewObject> viewObject;
  ASSERT_EQ(S_OK, m_analyser.As(&viewObject));
  ASSERT_EQ(S_OK, viewObject->SetAdvise(DVASPECT_CONTENT, 0, sink));
  const unsigned before = sink->viewChanges();
  EXPECT_EQ(S_OK, GetParam().put(*m_analyser.Get()));
  EXPECT_EQ(GetParam().redraws ? 1u : 0u, sink->viewChanges() - before);
  ASSERT_EQ(S_OK, viewObject->SetAdvise(DVASPECT_CONTENT, 0, nullptr));
  EXPECT_EQ(0u, sink->Release());
}

TEST_P(EachAnalyserPut, DrawsAnActiveControlAtOnceOrNotAtAll) {
  activate({400, 200});
  const WindowPicture whole = picture();
  smear();
  ASSERT_TRUE(isSmeared());
  EXPECT_EQ(S_OK, GetParam().put(*m_analyser.Get()));
  EXPECT_EQ(!GetParam().redraws, isSmeared());
  if (GetParam().redraws) {
    EXPECT_EQ(whole, picture());
  }
}

// A put of the background's colour leaves the gaps as they were cut. So their colour tells whether another put has
// painted the columns anew.
TEST_P(EachAnalyserPut, PaintsTheColumnsAnewOrLeavesThem) {
  ASSERT_EQ(S_OK, m_analyser->put_ScaleXVisible(VARIANT_FALSE));
  ASSERT_EQ(S_OK, m_analyser->put_ScaleYVisible(VARIANT_FALSE));
  ASSERT_EQ(S_OK, m_analyser->put_LineInterval(0));
  ASSERT_EQ(S_OK, m_analyser->put_LineCount(4));
  activate({400, 200});
  ASSERT_TRUE(shows(0x000000));
  ASSERT_EQ(S_OK, m_analyser->put_BackColor(0x00332211));
  ASSERT_TRUE(shows(0x000000));
  ASSERT_FALSE(shows(0x112233));
  EXPECT_EQ(S_OK, GetParam().put(*m_analyser.Get()));
  ASSERT_EQ(S_OK, m_analyser->Repaint());
  EXPECT_EQ(!GetParam().rebuilds, shows(0x000000));
  EXPECT_EQ(GetParam().rebuilds, shows(0x112233));
}

// A font object whose size is changed behind the control's back is looked at by the next layout. So the height of the
// strip tells whether another put has computed it.
TEST_P(EachAnalyserPut, ComputesTheLayoutOrLeavesIt) {
  ASSERT_EQ(S_OK, m_analyser->put_ScaleColor(0x0000FFFF));
  activate({400, 200});
  const int before = stripHeight();
  ASSERT_GT(before, 8);
  ComPtr<IFontDisp> font;
  ComPtr<IFont> object;
  ASSERT_EQ(S_OK, m_analyser->get_ScaleFont(&font));
  ASSERT_EQ(S_OK, font.As(&object));
  CY size{};
  size.int64 = 240000;
  ASSERT_EQ(S_OK, object->put_Size(size));
  ASSERT_EQ(S_OK, m_analyser->Repaint());
  ASSERT_EQ(before, stripHeight());
  EXPECT_EQ(S_OK, GetParam().put(*m_analyser.Get()));
  ASSERT_EQ(S_OK, m_analyser->Repaint());
  if (GetParam().relayouts) {
    EXPECT_GT(stripHeight(), before + 10);
  } else {
    EXPECT_EQ(before, stripHeight());
  }
}

INSTANTIATE_TEST_SUITE_P(, EachAnalyserPut, testing::ValuesIn(table),
                         [](const auto& parameter) { return std::string(parameter.param.name); });

TEST_F(AnalyserEffects, ARefusedPutDrawsNothing) {
  activate({200, 100});
  smear();
  EXPECT_EQ(E_INVALIDARG, m_analyser->put_MidPoint(101));
  EXPECT_EQ(E_INVALIDARG, m_analyser->put_LineCount(3));
  EXPECT_EQ(E_INVALIDARG, m_analyser->put_AlignmentY(2));
  EXPECT_EQ(E_INVALIDARG, m_analyser->put_FFTWindowType(11));
  EXPECT_EQ(E_INVALIDARG, m_analyser->put_FFTLength(3));
  EXPECT_EQ(E_INVALIDARG, m_analyser->put_FFTWindowParam(11.0f));
  EXPECT_TRUE(FAILED(m_analyser->put_BackColor(0x800000FF)));
  EXPECT_EQ(S_OK, m_analyser->putref_ScaleFont(nullptr));
  EXPECT_TRUE(isSmeared());
}

TEST_F(AnalyserEffects, RepaintDrawsAnActiveControlAtOnceAndAsksTheContainerOfAnInactiveOne) {
  avhost::ControlSite* const sink = new avhost::ControlSite(nullptr, {});
  ComPtr<IViewObject> viewObject;
  ASSERT_EQ(S_OK, m_analyser.As(&viewObject));
  ASSERT_EQ(S_OK, viewObject->SetAdvise(DVASPECT_CONTENT, 0, sink));
  EXPECT_EQ(S_OK, m_analyser->Repaint());
  EXPECT_EQ(1u, sink->viewChanges());
  ASSERT_EQ(S_OK, viewObject->SetAdvise(DVASPECT_CONTENT, 0, nullptr));
  EXPECT_EQ(0u, sink->Release());
  activate({200, 100});
  smear();
  EXPECT_EQ(S_OK, m_analyser->Repaint());
  EXPECT_FALSE(isSmeared());
}

// A sine in bin 100 of 256: column 1 of four (bins 64 to 127), 81 rows high. Its mean power over 64 bins is
// 512²·(30000/32768)²/256, so its level is 20·log10(30000/32768/8) = −18.83 dB, which is cut to 81 of 100.
TEST_F(AnalyserEffects, AlignmentYComputesTheHeightsAnewAtOnce) {
  ASSERT_EQ(S_OK, m_analyser->put_FFTWindowType(2));
  showFourPlainColumns();
  ASSERT_EQ(S_OK, m_analyser->put_TickVisible(VARIANT_FALSE));
  ASSERT_EQ(S_OK, send(sineBlock(100)));
  ASSERT_EQ(81, columnShown(1).litRows);
  ASSERT_EQ(S_OK, m_analyser->put_AlignmentY(1));
  EXPECT_EQ(80, columnShown(1).litRows);  // 40 up and 40 down: half of 81, cut
  ASSERT_EQ(S_OK, m_analyser->put_AlignmentY(0));
  EXPECT_EQ(81, columnShown(1).litRows);
  // The limits of the level scale are left to the next block.
  ASSERT_EQ(S_OK, m_analyser->put_ScaleYMax(50));
  EXPECT_EQ(81, columnShown(1).litRows);
  ASSERT_EQ(S_OK, send(sineBlock(100)));
  EXPECT_EQ(62, columnShown(1).litRows);  // −18.83 + 50 = 31.17, cut to 31 of 50
}

TEST_F(AnalyserEffects, AlignmentXMirrorsTheBandsFromTheNextBlockOn) {
  ASSERT_EQ(S_OK, m_analyser->put_FFTWindowType(2));
  showFourPlainColumns();
  ASSERT_EQ(S_OK, send(sineBlock(20)));  // the lowest quarter
  ASSERT_GT(columnShown(0).litRows, 50);
  ASSERT_EQ(S_OK, m_analyser->put_AlignmentX(1));
  EXPECT_GT(columnShown(0).litRows, 50);
  EXPECT_EQ(0, columnShown(1).litRows);
  ASSERT_EQ(S_OK, send(sineBlock(20)));
  EXPECT_EQ(0, columnShown(0).litRows);
  EXPECT_GT(columnShown(1).litRows, 50);
  EXPECT_EQ(columnShown(1).litRows, columnShown(2).litRows);
  EXPECT_EQ(0, columnShown(3).litRows);
}

TEST_F(AnalyserEffects, XScaleTypeSpreadsTheBandsAnewFromTheNextBlockOn) {
  ASSERT_EQ(S_OK, m_analyser->put_FFTWindowType(2));
  showFourPlainColumns();
  ASSERT_EQ(S_OK, send(sineBlock(20)));
  const Column linear = columnShown(0);
  ASSERT_EQ(S_OK, m_analyser->put_XScaleType(1));
  EXPECT_EQ(linear, columnShown(0));
  // Four logarithmic bands of 256 bins: bin 0, up to bin 7, up to bin 41, up to bin 256.
  ASSERT_EQ(S_OK, send(sineBlock(20)));
  EXPECT_EQ(0, columnShown(0).litRows);
  EXPECT_EQ(0, columnShown(1).litRows);
  EXPECT_GT(columnShown(2).litRows, 50);
}

TEST_F(AnalyserEffects, LineCountSilencesEveryColumn) {
  showFourPlainColumns();
  ASSERT_EQ(S_OK, send(noiseBlock()));
  ASSERT_GT(columnShown(2).litRows, 50);
  ASSERT_EQ(S_OK, m_analyser->put_LineCount(4));
  for (int i = 0; i < 4; ++i) EXPECT_EQ(Column{}, columnShown(i)) << i;
  ASSERT_EQ(S_OK, m_analyser->put_AlignmentY(0));  // computes the heights from the bands
  for (int i = 0; i < 4; ++i) EXPECT_EQ(Column{}, columnShown(i)) << i;
}

TEST_F(AnalyserEffects, FFTLengthAndFFTWindowTypeKeepThePictureUntilTheNextBlock) {
  ASSERT_EQ(S_OK, m_analyser->put_FFTWindowType(2));
  showFourPlainColumns();
  ASSERT_EQ(S_OK, send(sineBlock(100)));
  const WindowPicture before = picture();
  ASSERT_EQ(S_OK, m_analyser->put_FFTWindowType(0));
  ASSERT_EQ(S_OK, m_analyser->Repaint());
  EXPECT_EQ(before, picture());
  ASSERT_EQ(S_OK, send(sineBlock(100)));
  // Divided by Hann's mean square still, 0.374 of what it would be: 4.3 dB higher.
  EXPECT_EQ(85, columnShown(1).litRows);
  ASSERT_EQ(S_OK, m_analyser->put_FFTLength(1024));
  ASSERT_EQ(S_OK, m_analyser->Repaint());
  EXPECT_EQ(85, columnShown(1).litRows);
  ASSERT_EQ(S_OK, send(sineBlock(200, 1024)));
  EXPECT_EQ(78, columnShown(1).litRows);  // 128 bins a column: −21.85 dB, by the boxcar's own mean square
}

TEST_F(AnalyserEffects, TickVisibleShowsTicksForMinusOneOnly) {
  showFourPlainColumns();
  ASSERT_EQ(S_OK, send(noiseBlock()));
  EXPECT_GE(columnShown(1).tickTop, 0);
  for (const VARIANT_BOOL value : {VARIANT_FALSE, VARIANT_BOOL{1}, VARIANT_BOOL{2}}) {
    ASSERT_EQ(S_OK, m_analyser->put_TickVisible(value));
    EXPECT_EQ(-1, columnShown(1).tickTop) << value;
  }
  ASSERT_EQ(S_OK, m_analyser->put_TickVisible(VARIANT_TRUE));
  EXPECT_GE(columnShown(1).tickTop, 0);
}

TEST_F(AnalyserEffects, TheScalesAreShownForMinusOneOnly) {
  ASSERT_EQ(S_OK, m_analyser->put_ScaleColor(0x0000FFFF));
  activate({300, 200});
  ASSERT_TRUE(shows(0xFFFF00));
  for (const VARIANT_BOOL value : {VARIANT_FALSE, VARIANT_BOOL{1}}) {
    ASSERT_EQ(S_OK, m_analyser->put_ScaleXVisible(value));
    ASSERT_EQ(S_OK, m_analyser->put_ScaleYVisible(value));
    EXPECT_FALSE(shows(0xFFFF00)) << value;
  }
}

}  // namespace
}  // namespace av::test
