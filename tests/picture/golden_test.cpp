// Whole pictures of the finished controls against those that a human has accepted.

#include "picture/golden_analysers.h"
#include "picture/golden_meters.h"
#include "picture/golden_views.h"
#include "support/picture_compare.h"
#include "support/win/picture_file.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cctype>
#include <filesystem>
#include <fstream>
#include <set>
#include <string>

namespace av::test {

/// How a parameter reads in a test's name and output.
void PrintTo(const GoldenView& view, std::ostream* out) {
  *out << view.name << ", " << view.sizePx.cx << " x " << view.sizePx.cy;
}
void PrintTo(const GoldenMeter& meter, std::ostream* out) {
  *out << meter.name << ", " << meter.sizePx.cx << " x " << meter.sizePx.cy;
}
void PrintTo(const GoldenAnalyser& analyser, std::ostream* out) {
  *out << analyser.name << ", " << analyser.sizePx.cx << " x " << analyser.sizePx.cy;
}

namespace {

namespace fs = std::filesystem;

// Wine shows the build machine's files on this drive.
std::string goldenFolder() { return "Z:" AV_GOLDEN_FOLDER "/"; }
std::string galleryFolder() { return "Z:" AV_GALLERY_FOLDER "/"; }

PixelsView pixelsOf(const WindowPicture& picture) { return {picture.width, picture.height, picture.pixels}; }

std::string described(const PictureDifference& found) {
  if (!found.sameSize) return "another size";
  return std::to_string(found.equalPercent()) + " % of the pixels are equal, the worst channel is off by " +
         std::to_string(found.worstChannel);
}

const GoldenView& named(const std::string& name) {
  const auto views = goldenViews();
  return *std::find_if(views.begin(), views.end(), [&](const GoldenView& view) { return view.name == name; });
}

const GoldenMeter& meterNamed(const std::string& name) {
  const auto meters = goldenMeters();
  return *std::find_if(meters.begin(), meters.end(), [&](const GoldenMeter& meter) { return meter.name == name; });
}

const GoldenAnalyser& analyserNamed(const std::string& name) {
  const auto analysers = goldenAnalysers();
  return *std::find_if(analysers.begin(), analysers.end(), [&](const GoldenAnalyser& one) { return one.name == name; });
}

/// What tools/gallery makes its page of: NAME-actual.png, NAME-difference.png and NAME.json.
template <class Golden>
void leaveForTheGallery(const Golden& view, const WindowPicture& actual, const std::optional<WindowPicture>& expected,
                        const PictureDifference& found) {
  fs::create_directories(galleryFolder());
  const std::string stem = galleryFolder() + view.name;
  ASSERT_TRUE(writePng(actual, stem + "-actual.png")) << stem;
  if (found.sameSize) {
    WindowPicture difference{actual.width, actual.height, {}};
    difference.pixels = amplifiedDifference(pixelsOf(*expected), pixelsOf(actual));
    ASSERT_TRUE(writePng(difference, stem + "-difference.png"));
  }
  std::ofstream(stem + ".json") << "{\"width\": " << actual.width << ", \"height\": " << actual.height
                                << ", \"dpi\": " << view.dpi << ", \"accepted\": " << (expected ? "true" : "false")
                                << ", \"sameSize\": " << (found.sameSize ? "true" : "false")
                                << ", \"pixels\": " << found.pixels << ", \"equal\": " << found.equalPixels
                                << ", \"worst\": " << found.worstChannel
                                << ", \"passed\": " << (found.matches() ? "true" : "false") << "}\n";
}

class GoldenTest : public DllTest {
 protected:
  static void unchanged(GoldenStage&) {}

  /// The picture of a golden view. `first` and `last` may alter how it is prepared.
  WindowPicture drawn(const GoldenView& view, void (*first)(GoldenStage&) = unchanged,
                      void (*last)(GoldenStage&) = unchanged) {
    GoldenStage stage(createView());
    stage.open(view.sizePx);
    first(stage);
    view.prepare(stage);
    last(stage);
    return stage.picture();
  }

  static void unchangedMeter(GoldenMeterStage&) {}

  WindowPicture drawn(const GoldenMeter& meter, void (*last)(GoldenMeterStage&) = unchangedMeter) {
    GoldenMeterStage stage(create<IAudioVisualization4Type2>(CLSID_CAudioVisualization4Type2));
    stage.open(meter.sizePx);
    meter.prepare(stage);
    last(stage);
    EXPECT_EQ(S_OK, stage->Repaint());
    return stage.picture();
  }

  static void unchangedAnalyser(GoldenAnalyserStage&) {}

  WindowPicture drawn(const GoldenAnalyser& analyser, void (*last)(GoldenAnalyserStage&) = unchangedAnalyser) {
    GoldenAnalyserStage stage(create<IAudioVisualization4Type3>(CLSID_CAudioVisualization4Type3));
    stage.open(analyser.sizePx);
    analyser.prepare(stage);
    last(stage);
    return stage.picture();
  }

  template <class Golden>
  static PictureDifference againstAccepted(const Golden& view, const WindowPicture& actual) {
    const auto expected = readPng(goldenFolder() + view.name + ".png");
    return expected ? comparePictures(pixelsOf(*expected), pixelsOf(actual)) : PictureDifference{};
  }

  template <class Golden>
  void expectAsAccepted(const Golden& view) {
    SetProcessDPIAware();
    if (avhost::screenDpi().cx != view.dpi) GTEST_SKIP() << "this one is of a display of " << view.dpi << " DPI";
    const WindowPicture actual = drawn(view);
    ASSERT_EQ(view.sizePx.cx, actual.width);
    ASSERT_EQ(view.sizePx.cy, actual.height);
    const auto expected = readPng(goldenFolder() + view.name + ".png");
    const PictureDifference found = againstAccepted(view, actual);
    leaveForTheGallery(view, actual, expected, found);
    ASSERT_TRUE(expected) << "nobody has accepted a picture of this: see CONTRIBUTING.md";
    EXPECT_TRUE(found.matches()) << described(found) << "; see build/gallery/index.html";
  }
};

class GoldenPictures : public GoldenTest, public testing::WithParamInterface<GoldenView> {};
class GoldenMeterPictures : public GoldenTest, public testing::WithParamInterface<GoldenMeter> {};
class GoldenAnalyserPictures : public GoldenTest, public testing::WithParamInterface<GoldenAnalyser> {};

TEST_P(GoldenPictures, LookAsAccepted) { expectAsAccepted(GetParam()); }
TEST_P(GoldenMeterPictures, LookAsAccepted) { expectAsAccepted(GetParam()); }
TEST_P(GoldenAnalyserPictures, LookAsAccepted) { expectAsAccepted(GetParam()); }

template <class Golden>
std::vector<Golden> ofDisplay(std::span<const Golden> all, int dpi) {
  std::vector<Golden> some;
  for (const Golden& one : all)
    if (one.dpi == dpi) some.push_back(one);
  return some;
}

template <class Golden>
std::string testName(const testing::TestParamInfo<Golden>& info) {
  std::string name = info.param.name;
  std::replace(name.begin(), name.end(), '-', '_');
  return name;
}

INSTANTIATE_TEST_SUITE_P(Display96, GoldenPictures, testing::ValuesIn(ofDisplay(goldenViews(), 96)),
                         testName<GoldenView>);
INSTANTIATE_TEST_SUITE_P(Display192, GoldenPictures, testing::ValuesIn(ofDisplay(goldenViews(), 192)),
                         testName<GoldenView>);
INSTANTIATE_TEST_SUITE_P(Display96, GoldenMeterPictures, testing::ValuesIn(ofDisplay(goldenMeters(), 96)),
                         testName<GoldenMeter>);
INSTANTIATE_TEST_SUITE_P(Display192, GoldenMeterPictures, testing::ValuesIn(ofDisplay(goldenMeters(), 192)),
                         testName<GoldenMeter>);
INSTANTIATE_TEST_SUITE_P(Display96, GoldenAnalyserPictures, testing::ValuesIn(ofDisplay(goldenAnalysers(), 96)),
                         testName<GoldenAnalyser>);
INSTANTIATE_TEST_SUITE_P(Display192, GoldenAnalyserPictures, testing::ValuesIn(ofDisplay(goldenAnalysers(), 192)),
                         testName<GoldenAnalyser>);

// What the comparison is worth: each of these is a mistake that a golden picture has to find.

class GoldenMistakes : public GoldenTest {
 protected:
  void SetUp() override {
    GoldenTest::SetUp();
    SetProcessDPIAware();
    if (avhost::screenDpi().cx != 96) GTEST_SKIP() << "these are of a display of 96 DPI";
  }

  /// Whether the accepted picture would let this one pass.
  static bool passes(const GoldenView& view, const WindowPicture& actual) {
    return againstAccepted(view, actual).matches();
  }
};

TEST_F(GoldenMistakes, ACurveOneRowLowerOrHigherIsFound) {
  for (const char* name : {"waveform", "waveform-light", "waveform-18-channels", "waveform-small", "spectrum",
                           "spectrum-large", "octaves", "octaves-dark"}) {
    const GoldenView& view = named(name);
    const WindowPicture whole = drawn(view);
    ASSERT_TRUE(passes(view, whole)) << name;
    const WindowPicture furniture = drawn(view, [](GoldenStage& stage) { stage.mute(); });
    for (const int rows : {1, -1}) {
      WindowPicture shifted = furniture;
      int curvePixels = 0;
      for (int y = 0; y < whole.height; ++y) {
        for (int x = 0; x < whole.width; ++x) {
          if (whole.at(x, y) == furniture.at(x, y) || y + rows < 0 || y + rows >= whole.height) continue;
          shifted.pixels[static_cast<std::size_t>((y + rows) * whole.width + x)] = whole.at(x, y);
          ++curvePixels;
        }
      }
      EXPECT_GT(curvePixels, 30) << name;
      EXPECT_FALSE(passes(view, shifted)) << name << ", " << rows;
    }
  }
}

/// The rectangles of a picture's texts: what differs from the picture without them, split where three columns (side by
/// side) or one row (one above the other) are empty.
std::vector<RECT> textsIn(const WindowPicture& whole, const WindowPicture& textless) {
  const auto inkIn = [&](const RECT& box) {
    for (LONG y = box.top; y < box.bottom; ++y)
      for (LONG x = box.left; x < box.right; ++x)
        if (whole.at(x, y) != textless.at(x, y)) return true;
    return false;
  };
  std::vector<RECT> lines;
  for (LONG y = 0, top = -1; y <= whole.height; ++y) {
    const bool ink = y < whole.height && inkIn({0, y, whole.width, y + 1});
    if (ink && top < 0) top = y;
    if (!ink && top >= 0) {
      lines.push_back({0, top, whole.width, y});
      top = -1;
    }
  }
  std::vector<RECT> texts;
  for (const RECT& line : lines) {
    LONG left = -1, lastInk = -1;
    for (LONG x = 0; x <= whole.width; ++x) {
      const bool ink = x < whole.width && inkIn({x, line.top, x + 1, line.bottom});
      if (ink && left < 0) left = x;
      if (ink) lastInk = x;
      if (left >= 0 && (x == whole.width || x - lastInk > 4)) {
        texts.push_back({left, line.top, lastInk + 1, line.bottom});
        left = -1;
      }
    }
  }
  return texts;
}

TEST_F(GoldenMistakes, ASingleMissingLabelIsFound) {
  for (const char* name : {"waveform", "waveform-light", "waveform-large", "spectrum", "spectrum-dark", "octaves-large",
                           "no-vertical-scale"}) {
    const GoldenView& view = named(name);
    const WindowPicture whole = drawn(view);
    ASSERT_TRUE(passes(view, whole)) << name;
    const WindowPicture textless = drawn(view, unchanged, [](GoldenStage& stage) {
      OLE_COLOR scale = 0;
      stage->get_ScaleColor(&scale);
      stage->put_TextColor(scale);
    });
    const std::vector<RECT> texts = textsIn(whole, textless);
    EXPECT_GT(texts.size(), 3u) << name;
    for (const RECT& text : texts) {
      WindowPicture without = whole;
      for (LONG y = text.top; y < text.bottom; ++y)
        for (LONG x = text.left; x < text.right; ++x)
          without.pixels[static_cast<std::size_t>(y * whole.width + x)] = textless.at(x, y);
      EXPECT_FALSE(passes(view, without)) << name << " at " << text.left << ", " << text.top;
    }
  }
}

TEST_F(GoldenMistakes, AnotherSizeIsFound) {
  GoldenView view = named("spectrum");
  ASSERT_TRUE(passes(view, drawn(view)));
  for (const SIZE offBy : {SIZE{1, 0}, SIZE{0, 1}, SIZE{-1, 0}, SIZE{0, -1}}) {
    GoldenView other = view;
    other.sizePx.cx += offBy.cx;
    other.sizePx.cy += offBy.cy;
    const WindowPicture picture = drawn(other);
    EXPECT_EQ(other.sizePx.cx, picture.width);
    EXPECT_FALSE(passes(view, picture)) << offBy.cx << ", " << offBy.cy;
  }
}

TEST_F(GoldenMistakes, AnotherColourOfOneCurveOrOfTheGridIsFound) {
  const GoldenView& view = named("spectrum");
  ASSERT_TRUE(passes(view, drawn(view)));
  EXPECT_FALSE(passes(view, drawn(view, unchanged, [](GoldenStage& stage) { stage->put_LineColor(2, 0x00C8C8); })));
  EXPECT_FALSE(passes(view, drawn(view, unchanged, [](GoldenStage& stage) { stage->put_GridColor(0x707070); })));
}

TEST_F(GoldenMistakes, AnotherPropertyOfTheMeterIsFound) {
  constexpr void (*changes[])(GoldenMeterStage&) = {
      [](GoldenMeterStage& meter) { meter->put_TickVisible(VARIANT_FALSE); },
      [](GoldenMeterStage& meter) { meter->put_MidPoint(56); },
      [](GoldenMeterStage& meter) { meter->put_HighPoint(76); },
      [](GoldenMeterStage& meter) { meter->put_SpotHeight(6); },
      [](GoldenMeterStage& meter) { meter->put_SpotInterval(3); },
      [](GoldenMeterStage& meter) { meter->put_LineInterval(2); },
      [](GoldenMeterStage& meter) { meter->put_BorderWidth(5); },
      [](GoldenMeterStage& meter) { meter->put_BorderType(2); },
      [](GoldenMeterStage& meter) { meter->put_BackLineMidColor(0); },
      [](GoldenMeterStage& meter) { meter->put_LineType(1); },
      [](GoldenMeterStage& meter) { meter->put_AlignmentX(1); },
  };
  const GoldenMeter& meter = meterNamed("meter-dark");
  ASSERT_TRUE(againstAccepted(meter, drawn(meter)).matches());
  for (std::size_t i = 0; i < std::size(changes); ++i)
    EXPECT_FALSE(againstAccepted(meter, drawn(meter, changes[i])).matches()) << i;
}

TEST_F(GoldenMistakes, AnotherPropertyOfTheAnalyserIsFound) {
  constexpr void (*changes[])(GoldenAnalyserStage&) = {
      [](GoldenAnalyserStage& analyser) { analyser->put_TickVisible(VARIANT_FALSE); },
      [](GoldenAnalyserStage& analyser) { analyser->put_TickColor(0x00FF00); },
      [](GoldenAnalyserStage& analyser) { analyser->put_MidPoint(56); },
      [](GoldenAnalyserStage& analyser) { analyser->put_HighPoint(76); },
      [](GoldenAnalyserStage& analyser) { analyser->put_SpotHeight(3); },
      [](GoldenAnalyserStage& analyser) { analyser->put_SpotInterval(2); },
      [](GoldenAnalyserStage& analyser) { analyser->put_LineInterval(1); },
      [](GoldenAnalyserStage& analyser) { analyser->put_BackLineLowColor(0); },
      [](GoldenAnalyserStage& analyser) { analyser->put_ViewType(1); },
      [](GoldenAnalyserStage& analyser) { analyser->put_XScaleType(1); },
      [](GoldenAnalyserStage& analyser) { analyser->put_ScaleYMax(90); },
      [](GoldenAnalyserStage& analyser) { analyser->put_DynamicRange(4); },
      [](GoldenAnalyserStage& analyser) { analyser->put_ScaleXVisible(VARIANT_FALSE); },
  };
  const GoldenAnalyser& analyser = analyserNamed("analyser");
  ASSERT_TRUE(againstAccepted(analyser, drawn(analyser)).matches());
  for (std::size_t i = 0; i < std::size(changes); ++i)
    EXPECT_FALSE(againstAccepted(analyser, drawn(analyser, changes[i])).matches()) << i;
}

// The folder of accepted pictures.

TEST(GoldenFolder, HoldsOnePictureForEachViewMeterAndAnalyserAndNoOthers) {
  std::set<std::string> files, views;
  for (const auto& entry : fs::directory_iterator(goldenFolder())) files.insert(entry.path().filename().string());
  for (const GoldenView& view : goldenViews())
    EXPECT_TRUE(views.insert(std::string(view.name) + ".png").second) << view.name << " is there twice";
  for (const GoldenMeter& meter : goldenMeters())
    EXPECT_TRUE(views.insert(std::string(meter.name) + ".png").second) << meter.name << " is there twice";
  for (const GoldenAnalyser& analyser : goldenAnalysers())
    EXPECT_TRUE(views.insert(std::string(analyser.name) + ".png").second) << analyser.name << " is there twice";
  EXPECT_EQ(views, files);
}

TEST(GoldenFolder, StaysSmallerThanAMegabyte) {
  std::uintmax_t bytes = 0;
  for (const auto& entry : fs::directory_iterator(goldenFolder())) bytes += fs::file_size(entry.path());
  EXPECT_LT(bytes, 1000000u) << "tools/accept-pictures squeezes what it accepts";
}

// A function and not a lambda, which 32-bit compilers do not turn into a callback.
int CALLBACK countFont(const LOGFONTW*, const TEXTMETRICW*, DWORD, LPARAM count) {
  ++*reinterpret_cast<int*>(count);
  return 1;
}

TEST(GoldenFolder, WasDrawnWithAFontThatThisMachineHas) {
  LOGFONTW asked{};
  asked.lfCharSet = DEFAULT_CHARSET;
  wcscpy(asked.lfFaceName, L"Liberation Sans");
  HDC screen = GetDC(nullptr);
  int found = 0;
  EnumFontFamiliesExW(screen, &asked, countFont, reinterpret_cast<LPARAM>(&found), 0);
  ReleaseDC(nullptr, screen);
  EXPECT_GT(found, 0) << "Liberation Sans stands for Arial in the accepted pictures";
}

}  // namespace
}  // namespace av::test
