// Pictures as no host should ask for them: storms of sizes, device contexts of every kind, properties at their limits,
// every combination of modes.

#include "host/any_control_test.h"

#include <climits>

namespace av::test {
namespace {

class HostilePainting : public AnyControlTest {
 protected:
  void expectItStillDraws() {
    ASSERT_EQ(S_OK, m_container.resize({320, 160}));
    ASSERT_EQ(S_OK, send(std::vector<std::int16_t>(2048)));
    const WindowPicture silent = shown();
    ASSERT_EQ(S_OK, sendNoise());
    EXPECT_FALSE(silent == shown());
  }
};

TEST_P(HostilePainting, AStormOfSizesFromNothingTo32767AndBelowZeroIsSurvived) {
  ASSERT_NO_FATAL_FAILURE(activate({320, 160}));
  const auto place = as<IOleInPlaceObject>();
  // One side at a time is huge: a picture with both takes four gigabytes.
  for (const LONG side : {0l, 1l, -1l, 2l, 32767l, -32768l, 3l, 79l, 32766l, 0l, LONG{INT_MIN} / 2, 200l}) {
    for (const SIZE size : {SIZE{side, 40}, SIZE{60, side}, SIZE{side < 300 ? side : 2, side}}) {
      const RECT rect{0, 0, size.cx, size.cy};
      EXPECT_EQ(S_OK, place->SetObjectRects(&rect, &rect));
      EXPECT_EQ(S_OK, sendNoise());
      EXPECT_EQ(S_OK, m_audio->_OnTimer());
      InvalidateRect(window(), nullptr, FALSE);
      UpdateWindow(window());
      MoveWindow(window(), 0, 0, size.cx, size.cy, TRUE);
    }
  }
  for (int i = 0; i < 400; ++i) m_container.resize({(i * 37) % 300, (i * 91) % 200});
  expectItStillDraws();
}

TEST_P(HostilePainting, EveryKindOfDeviceContextIsDrawnOnOrLeftAsItIs) {
  ASSERT_NO_FATAL_FAILURE(activate({320, 160}));
  ASSERT_EQ(S_OK, sendNoise());
  const RECTL bounds{10, 10, 110, 90};
  EXPECT_EQ(E_INVALIDARG, drawOn(nullptr, bounds));
  EXPECT_EQ(S_OK, drawOn(reinterpret_cast<HDC>(std::uintptr_t{0x1234}), bounds)) << "a context that does not exist";

  const auto black = [](const WindowPicture& picture, const RECT& part) {
    for (LONG y = part.top; y < part.bottom; ++y)
      for (LONG x = part.left; x < part.right; ++x)
        if (picture.at(x, y) != 0) return false;
    return true;
  };
  put(L"BackColor", 0x402010);
  const WindowPicture whole = pictureDrawnBy({120, 100}, [&](HDC target) { EXPECT_EQ(S_OK, drawOn(target, bounds)); });
  const WindowPicture clipped = pictureDrawnBy({120, 100}, [&](HDC target) {
    IntersectClipRect(target, 40, 30, 60, 50);
    EXPECT_EQ(S_OK, drawOn(target, bounds));
    RECT box{};
    EXPECT_EQ(SIMPLEREGION, GetClipBox(target, &box)) << "the caller's clipping is gone";
    EXPECT_EQ(40, box.left);
    EXPECT_EQ(50, box.bottom);
  });
  EXPECT_TRUE(black(clipped, {0, 0, 40, 100}) && black(clipped, {0, 50, 120, 100})) << "drawn outside the clipping";
  EXPECT_TRUE(cutOut(whole, {40, 30, 60, 50}) == cutOut(clipped, {40, 30, 60, 50}));
  const WindowPicture offset = pictureDrawnBy({120, 100}, [&](HDC target) {
    SetViewportOrgEx(target, -5, 7, nullptr);
    EXPECT_EQ(S_OK, drawOn(target, bounds));
    POINT origin{};
    GetViewportOrgEx(target, &origin);
    EXPECT_EQ(-5, origin.x);
  });
  EXPECT_TRUE(cutOut(whole, {10, 10, 110, 90}) == cutOut(offset, {5, 17, 105, 97}));

  const HDC memory = CreateCompatibleDC(nullptr);  // holds one monochrome pixel
  EXPECT_EQ(S_OK, drawOn(memory, bounds));
  const HBITMAP bits = CreateBitmap(120, 100, 1, 1, nullptr);
  const HGDIOBJ old = SelectObject(memory, bits);
  EXPECT_EQ(S_OK, drawOn(memory, bounds));
  SelectObject(memory, old);
  DeleteObject(bits);
  DeleteDC(memory);
  const HDC information = CreateICW(L"DISPLAY", nullptr, nullptr, nullptr);
  EXPECT_EQ(S_OK, drawOn(information, bounds));
  DeleteDC(information);

  const HDC enhanced = CreateEnhMetaFileW(nullptr, nullptr, nullptr, nullptr);
  EXPECT_EQ(S_OK, drawOn(enhanced, bounds));
  const HENHMETAFILE recorded = CloseEnhMetaFile(enhanced);
  EXPECT_TRUE(recorded);
  DeleteEnhMetaFile(recorded);
  const HDC old16 = CreateMetaFileW(nullptr);
  EXPECT_EQ(S_OK, drawOn(old16, bounds));
  DeleteMetaFile(CloseMetaFile(old16));
  expectItStillDraws();
}

/// Of the two controls that have scales.
class HostileScales : public HostilePainting {};

TEST_P(HostileScales, AScaleOfNoHeightAndEveryOrderOfItsLimitsIsSurvived) {
  ASSERT_NO_FATAL_FAILURE(activate({320, 160}));
  for (const LONG value : looks().values) {
    put(looks().property, value);
    for (const LONG limits : {0l, 50l, 100l}) {
      put(L"ScaleYMin", limits);
      put(L"ScaleYMax", limits);
      ASSERT_EQ(S_OK, sendNoise());
      shown();
      drawn({290, 80});
      SendMessageW(window(), WM_MOUSEMOVE, 0, MAKELPARAM(50, 50));
    }
  }
  put(L"ScaleYMin", 0);
  put(L"ScaleYMax", 100);
  put(looks().property, looks().values.front());
  expectItStillDraws();
}

TEST_P(HostileScales, FontsOfAnySizeMissingFacesAndObjectsThatAreNoneAreAnswered) {
  ASSERT_NO_FATAL_FAILURE(activate({320, 160}));
  const auto putFont = [&](IUnknown* object) {
    ComPtr<IAudioVisualization4Type1> view;
    if (SUCCEEDED(m_control.As(&view))) return view->putref_ScaleFont(reinterpret_cast<IFontDisp*>(object));
    return as<IAudioVisualization4Type3>()->putref_ScaleFont(reinterpret_cast<IFontDisp*>(object));
  };
  for (const LONGLONG points : {0, 1, 9, 500, 32767}) {
    for (const wchar_t* face :
         {L"Arial", L"No Such Face", L"", L"A face whose name is longer than any that there is"}) {
      std::wstring name = face;
      FONTDESC description{};
      description.cbSizeofstruct = sizeof description;
      description.lpstrName = name.data();
      description.cySize.int64 = points * 10000;
      description.sWeight = 400;
      description.sCharset = DEFAULT_CHARSET;
      ComPtr<IFontDisp> font;
      ASSERT_EQ(S_OK, OleCreateFontIndirect(&description, IID_PPV_ARGS(font.GetAddressOf())));
      EXPECT_EQ(S_OK, putFont(font.Get())) << points;
      ASSERT_EQ(S_OK, sendNoise());
      shown();
      drawn({290, 80});
    }
  }
  EXPECT_EQ(isView() ? E_INVALIDARG : S_OK, putFont(m_audio.Get())) << "a control is no font";
  EXPECT_EQ(S_OK, putFont(nullptr));
  FONTDESC usual{sizeof(FONTDESC), const_cast<wchar_t*>(L"Arial"), {}, 400, DEFAULT_CHARSET, FALSE, FALSE, FALSE};
  usual.cySize.int64 = 60000;
  ComPtr<IFontDisp> font;
  ASSERT_EQ(S_OK, OleCreateFontIndirect(&usual, IID_PPV_ARGS(font.GetAddressOf())));
  EXPECT_EQ(S_OK, putFont(font.Get()));
  expectItStillDraws();
}

/// A value that is not put: memory or time runs out, or the process ends, as documented.
bool isBeyondTheMachine(const PutProperty& property, LONG value) {
  if (property.name == L"FFTLength") return value > 65536 || (value >= 0 && value < 4);
  if (property.name == L"LineCount") return value > 100000;
  return property.name == L"TickReleaseTime" && value > 1000;  // a put of TickVisible waits for so long
}

class FullHostilePainting : public HostilePainting {};

TEST_P(FullHostilePainting, EveryPropertyAtTheEndsOfItsRangeOneAtATimeDrawsAndHearsABlock) {
  ASSERT_NO_FATAL_FAILURE(activate({320, 160}));
  int puts = 0, refused = 0;
  for (const PutProperty& property : putProperties(*m_audio.Get())) {
    if (property.type == VT_DISPATCH) continue;
    for (const LONG value : {LONG{INT_MIN}, LONG{INT_MIN} + 1, -65536l, -1l, 0l, 1l, 2l, 3l, 4l, 100l, 101l, 255l,
                             32767l, 32768l, 65536l, 0xFFFFFFl, LONG{INT_MAX} - 1, LONG{INT_MAX}}) {
      if (isBeyondTheMachine(property, value)) continue;
      SCOPED_TRACE(std::string(property.name.begin(), property.name.end()) + " " + std::to_string(value));
      // A control of its own for each value: nothing of the others plays into it.
      m_container.close();
      m_audio.Reset();
      ASSERT_EQ(0u, m_control.Reset());
      m_control = create<IOleObject>(classId());
      m_audio = as<IAudioVisualizationTemplate>();
      ASSERT_NO_FATAL_FAILURE(activate({320, 160}));
      VARIANT number;
      VariantInit(&number);
      V_VT(&number) = property.type == VT_BOOL ? VT_BOOL : VT_I4;
      V_I4(&number) = value;
      if (property.type == VT_BOOL) V_BOOL(&number) = static_cast<VARIANT_BOOL>(value);
      const HRESULT result = putValue(*m_audio.Get(), property, number);
      EXPECT_TRUE(result == S_OK || result == DISP_E_EXCEPTION) << std::hex << result;
      ++(result == S_OK ? puts : refused);
      EXPECT_EQ(S_OK, sendNoise());
      EXPECT_EQ(S_OK, m_audio->_OnTimer());
      EXPECT_EQ(S_OK, m_audio->Repaint());
      UpdateWindow(window());
      drawn({290, 80});
    }
  }
  EXPECT_LT(250, puts);
  EXPECT_EQ(isAnalyser(), refused > 0);
}

TEST_P(FullHostilePainting, EveryCombinationOfModesDrawsABlock) {
  const std::vector<LONG> flag{0, 1};
  const std::vector<Look> modes =
      isView() ? std::vector<Look>{{L"VisualizationType", {0, 1, 2, 3, 4, 5, 6, 7, 8}},
                                   {L"FFTViewType", {0, 1, 2, 3}},
                                   {L"GridVisible", flag},
                                   {L"ScaleXVisible", flag},
                                   {L"ScaleYVisible", flag},
                                   {L"BorderType", {0, 2}}}
      : isMeter()
          ? std::vector<Look>{{L"LineType", {-1, 0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15}},
                              {L"AlignmentX", {0, 1, 2}},
                              {L"AlignmentY", {0, 1, 2, 3}},
                              {L"FFTViewType", {0, 1, 2}}}
          : std::vector<Look>{{L"ViewType", {0, 1, 2, 3}}, {L"AlignmentX", flag},         {L"AlignmentY", flag},
                              {L"XScaleType", flag},       {L"BorderType", {0, 1, 2, 3}}, {L"ScaleXVisible", {0, -1}},
                              {L"ScaleYVisible", {0, -1}}};
  ASSERT_NO_FATAL_FAILURE(activate({320, 160}));
  std::size_t combinations = 1;
  for (const Look& mode : modes) combinations *= mode.values.size();
  for (std::size_t i = 0; i < combinations; ++i) {
    std::size_t rest = i;
    for (const Look& mode : modes) {
      put(mode.property, mode.values[rest % mode.values.size()]);
      rest /= mode.values.size();
    }
    ASSERT_EQ(S_OK, sendNoise()) << i;
    shown();
    drawn({290, 70});
  }
  for (const Look& mode : modes) put(mode.property, mode.values.size() > 2 ? 1 : 0);
  expectItStillDraws();
}

INSTANTIATE_TEST_SUITE_P(, HostilePainting, eachControl);
INSTANTIATE_TEST_SUITE_P(, HostileScales, testing::Values(1, 3));
INSTANTIATE_TEST_SUITE_P(, FullHostilePainting, eachControl);

}  // namespace
}  // namespace av::test
