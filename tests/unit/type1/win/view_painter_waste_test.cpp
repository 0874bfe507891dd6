// What the painter keeps from frame to frame: the right pixels, and no memory that each frame needs anew.

#include "gfx/win/gdiplus_text_measure.h"
#include "gfx/win/gdiplus_token.h"
#include "gfx/win/scale_font.h"
#include "support/allocation_count.h"
#include "support/win/import_probe.h"
#include "type1/win/view_painter.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <functional>
#include <memory>
#include <random>
#include <vector>

namespace av::type1 {
namespace {

class ViewPainterWaste : public testing::Test {
 protected:
  ViewPainterWaste() {
    settings.scaleColor = argbFromRgb(240, 240, 240);
    signal.dataReceived = true;
    for (std::size_t channel = 0; channel < values.size(); ++channel) {
      values[channel].resize(1024);
      signal.analysis[channel] = signal.display[channel] = values[channel];
    }
  }

  void useFont() { measure.use(surface.graphics(), font.get()); }

  /// Another sound: samples in whole numbers for the views of samples, levels in dB for the spectra.
  void change() {
    const int type = settings.visualizationType;
    for (std::vector<double>& channel : values) {
      for (double& value : channel) {
        const auto part = static_cast<double>(random() % 10000) / 10000;
        value = type >= 2 && type <= 5 ? -90 * part : 60000 * part - 30000;
      }
    }
  }

  void build() {
    const Size size = surface.size();
    buildFrame(frame, settings, signal,
               computeLayout(settings, signal.sampleRateHz, {0, 0, size.widthPx, size.heightPx},
                             fontHeightPx(font.get(), surface.graphics())),
               measure);
  }

  GdiplusToken token;
  OffscreenSurface surface;
  ViewPainter painter{surface, GetModuleHandleW(nullptr)};
  GdiplusTextMeasure measure;
  FontHandle font = createScaleFont(createDefaultScaleFont().Get());
  ViewSettings settings;
  ViewSignal signal;
  std::array<std::vector<double>, 2> values;
  ViewFrame frame;
  std::mt19937 random{7};
};

TEST_F(ViewPainterWaste, FramesOfASteadySizeAllocateNothing) {
  ASSERT_TRUE(surface.resize({400, 300}));
  useFont();
  for (const int type : {1, 2, 3, 4, 5, 6, 7}) {
    for (const int axis : {1, 2}) {
      settings.visualizationType = type;
      settings.fftViewType = axis;
      for (int i = 0; i < 2; ++i) {
        change();
        build();
        ASSERT_TRUE(painter.paint(frame, font.get()));
      }
      const std::uint64_t before = test::allocationCount();
      for (int i = 0; i < 10; ++i) {
        change();
        build();
        ASSERT_TRUE(painter.paint(frame, font.get()));
      }
      EXPECT_EQ(before, test::allocationCount()) << type << ", axis " << axis;
    }
  }
  const std::uint64_t before = test::allocationCount();
  settings.gridColor = 0xFF123456;  // the furniture has to be drawn again, but not kept in other memory
  build();
  ASSERT_TRUE(painter.paint(frame, font.get()));
  EXPECT_EQ(before, test::allocationCount());
  ASSERT_TRUE(surface.resize({500, 300}));
  useFont();
  build();
  ASSERT_TRUE(painter.paint(frame, font.get()));
  EXPECT_LT(before, test::allocationCount());
}

TEST_F(ViewPainterWaste, TheFurnitureIsDrawnOnceUntilItChanges) {
  ASSERT_TRUE(surface.resize({400, 300}));
  useFont();
  settings.visualizationType = 2;
  const auto textsOfAFrame = [this] {
    const test::ImportProbe probe(GetModuleHandleW(nullptr), {"GdipDrawString"});
    change();
    build();
    EXPECT_TRUE(painter.paint(frame, font.get()));
    return probe.calls();
  };
  EXPECT_LT(5, textsOfAFrame());
  EXPECT_EQ(0, textsOfAFrame());
  EXPECT_EQ(0, textsOfAFrame());
  settings.backColor = 0xFF000033;
  EXPECT_LT(5, textsOfAFrame());
  EXPECT_EQ(0, textsOfAFrame());
  painter.forgetFurniture();
  EXPECT_LT(5, textsOfAFrame());
  EXPECT_EQ(0, textsOfAFrame());
}

TEST_F(ViewPainterWaste, APainterThatHasSeenOtherFramesPaintsWhatANewOnePaints) {
  const auto colour = [this] { return opaqueBlack | (static_cast<Argb>(random()) & 0xFFFFFFu); };
  const auto someTruth = [this] { return static_cast<std::int16_t>(random() % 2 ? -1 : 0); };
  const std::vector<std::function<void()>> changes = {
      [&] { settings.visualizationType = static_cast<int>(random() % 8); },
      [&] { settings.fftViewType = static_cast<int>(1 + random() % 2); },
      [&] { settings.backColor = colour(); },
      [&] { settings.gridColor = colour(); },
      [&] { settings.scaleColor = colour(); },
      [&] { settings.borderColor = colour(); },
      [&] { settings.textAndLineColors[random() % 3] = colour(); },
      [&] { settings.borderType = static_cast<int>(random() % 5); },
      [&] { settings.gridVisible = someTruth(); },
      [&] { settings.scaleXVisible = someTruth(); },
      [&] { settings.scaleYVisible = someTruth(); },
      [&] { settings.scaleYMax = 60 + static_cast<int>(random() % 60); },
      [&] { settings.scaleYMin = static_cast<int>(random() % 50); },
      [&] { settings.dynamicRangeDb = 20 + static_cast<double>(random() % 100); },
      [&] { signal.sampleRateHz = 8000 + static_cast<std::uint32_t>(random() % 90000); },
      [&] {
        const Size sizes[] = {{300, 200}, {301, 200}, {200, 300}, {97, 61}};
        ASSERT_TRUE(surface.resize(sizes[random() % std::size(sizes)]));
        useFont();
      },
      [&] { change(); },
      [] {},
  };
  ASSERT_TRUE(surface.resize({300, 200}));
  useFont();
  for (int step = 0; step < 400; ++step) {
    changes[random() % changes.size()]();
    build();
    ASSERT_TRUE(painter.paint(frame, font.get()));
    OffscreenSurface fresh;
    ASSERT_TRUE(fresh.resize(surface.size()));
    ViewPainter newPainter(fresh, GetModuleHandleW(nullptr));
    ASSERT_TRUE(newPainter.paint(frame, font.get()));
    ASSERT_TRUE(std::ranges::equal(surface.pixels(), fresh.pixels())) << "step " << step;
  }
}

TEST_F(ViewPainterWaste, AMissingGradientCostsItsBarsAndNothingElse) {
  ASSERT_TRUE(surface.resize({300, 200}));
  useFont();
  settings.visualizationType = 4;
  change();
  build();
  ASSERT_FALSE(frame.bars.empty());
  ViewPainter without(surface, LoadLibraryW(L"ole32.dll"));  // holds no such bitmaps
  ASSERT_TRUE(without.paint(frame, font.get()));
  const std::vector<Argb> shown(surface.pixels().begin(), surface.pixels().end());
  frame.bars.clear();
  ASSERT_TRUE(painter.paint(frame, font.get()));
  EXPECT_TRUE(std::ranges::equal(shown, surface.pixels()));
}

}  // namespace
}  // namespace av::type1
