// Bar spectra of the finished control, pixel by pixel, against one call of GDI+ for each bar.

#include "picture/view_picture_fixture.h"

namespace av::test {
namespace {

class Bars : public ViewPictures, public testing::WithParamInterface<int> {
 protected:
  void SetUp() override {
    ViewPictures::SetUp();
    type = GetParam();
  }

  /// The control's window in the look of bars, before any sound.
  void openBars(int width, int height, int axis = 1) {
    open(width, height);
    putSmooth(false);
    putAxis(axis);
    putType(type);
  }

  Bytes noise(int bits, int channels, std::uint32_t seed) { return noiseBytes(bits, channels, 1024, seed); }

  int type = 0;
};

INSTANTIATE_TEST_SUITE_P(OfType, Bars, testing::Values(3, 4, 5),
                         [](const auto& parameter) { return std::to_string(parameter.param); });

TEST_P(Bars, OneRowHigherOrLowerWouldBeNoticed) {
  openBars(300, 200);
  send(16, 2, noise(16, 2, 1));
  expectPicture();
  EXPECT_NE("", differences(m_model.picture(1), picture()));
  EXPECT_NE("", differences(m_model.picture(-1), picture()));
}

TEST_P(Bars, RunFromWhiteAtTheBottomToTheirColourAtTheTop) {
  const std::vector<std::uint32_t> gradient = gradientOf(m_library.module(), type);
  ASSERT_EQ(type == 5 ? 186u : 185u, gradient.size());
  const auto red = [&](std::size_t row) { return static_cast<int>(gradient[row] >> 16); };
  const auto green = [&](std::size_t row) { return static_cast<int>(gradient[row] >> 8 & 0xFF); };
  const auto blue = [&](std::size_t row) { return static_cast<int>(gradient[row] & 0xFF); };
  const std::size_t last = gradient.size() - 1;
  EXPECT_LT(230, std::min({red(last), green(last), blue(last)}));
  if (type == 3) {  // red, orange, yellow
    EXPECT_GT(red(0), 4 * std::max(green(0), blue(0)));
    EXPECT_GT(red(60), green(60) + 60);
    EXPECT_GT(green(60), blue(60) + 60);
    EXPECT_GT(std::min(red(107), green(107)), blue(107) + 120);
  } else if (type == 4) {  // greyish violet, blue, light blue
    EXPECT_GT(blue(0), red(0) + 20);
    EXPECT_GT(red(0), green(0));
    EXPECT_GT(blue(48), 2 * std::max(red(48), green(48)));
    EXPECT_GT(blue(107), red(107) + 80);
    EXPECT_GT(green(107), red(107) + 40);
  } else {  // green, yellow
    EXPECT_GT(green(0), 2 * std::max(red(0), blue(0)));
    EXPECT_GT(std::min(red(111), green(111)), blue(111) + 120);
  }
}

TEST_P(Bars, AreExactForEveryDepthAndNumberOfChannels) {
  openBars(500, 301);
  for (const int axis : {1, 2}) {
    putAxis(axis);
    for (const int bits : {8, 16, 24, 32}) {
      for (const int channels : {1, 2, 3, 18}) {
        send(bits, channels, noise(bits, channels, static_cast<std::uint32_t>(100 * axis + bits + channels)));
        EXPECT_EQ("", differences(m_model.picture(), picture()))
            << "axis " << axis << ", " << bits << " bits, " << channels << " channels";
      }
    }
  }
}

TEST_P(Bars, AreExactAtEverySizeAndOverEveryBackground) {
  openBars(500, 301);
  const struct { int width, height; } sizes[] = {{500, 301}, {801, 400}, {121, 77}, {300, 600}, {640, 60}};
  for (const auto& size : sizes) {
    resize(size.width, size.height);
    for (const int axis : {1, 2}) {
      putAxis(axis);
      for (const bool scales : {true, false}) {
        showScales(scales);  // without scales, bars stand on the border
        for (const int border : {0, 1, 3}) {
          putBorder(border, 0xC08040);
          ASSERT_EQ(S_OK, m_view->put_BackColor(border == 1 ? 0x402010 : 0));
          m_model.back = border == 1 ? 0x102040 : 0;
          showGrid(border != 3);
          send(16, 2, noise(16, 2, static_cast<std::uint32_t>(border)));
          EXPECT_EQ("", differences(m_model.picture(), picture()))
              << size.width << " x " << size.height << ", axis " << axis << ", scales " << scales << ", border "
              << border;
        }
      }
    }
  }
}

TEST_P(Bars, NeverBeginLowerThanRow499) {
  openBars(400, 660);
  showScales(false);
  send(16, 2, sines(16, 2, 1024, 0.001));
  int lowest = 0;
  for (const auto& [x, top] : barColumns(m_model)) lowest = std::max(lowest, top);
  EXPECT_EQ(499, lowest);
  expectPicture();
  putAxis(2);
  expectPicture();
}

TEST_P(Bars, RiseByHalvesAndFallByQuarters) {
  openBars(300, 240);
  putSmooth(true);
  send(16, 2, noise(16, 2, 17));
  for (int step = 0; step < 40; ++step) {
    tick();
    ASSERT_EQ("", differences(m_model.picture(), picture())) << "rising, step " << step;
  }
  send(16, 2, sines(16, 2, 1024, 0.01));
  for (int step = 0; step < 40; ++step) {
    tick();
    ASSERT_EQ("", differences(m_model.picture(), picture())) << "falling, step " << step;
  }
}

TEST_P(Bars, FollowScaleAndDynamicRange) {
  openBars(400, 303);
  send(16, 2, noise(16, 2, 11));
  putDynamicRange(60);
  expectPicture("60 dB");
  const struct { int lowest, highest; } scales[] = {{0, 50}, {20, 80}, {33, 34}, {-50, 120}, {0, 300}};
  for (const int axis : {1, 2}) {
    putAxis(axis);
    for (const auto& scale : scales) {
      putScaleY(scale.lowest, scale.highest);
      EXPECT_EQ("", differences(m_model.picture(), picture()))
          << scale.lowest << " to " << scale.highest << ", axis " << axis;
    }
  }
}

TEST_P(Bars, AreExactForEveryWindowSize) {
  openBars(350, 220);
  for (int size = 64; size <= 16384; size *= 2) {
    putWindowSize(size);
    for (const int axis : {1, 2}) {
      putAxis(axis);
      send(16, 2, noiseBytes(16, 2, size, static_cast<std::uint32_t>(size)));
      EXPECT_EQ("", differences(m_model.picture(), picture())) << size << ", axis " << axis;
    }
  }
}

TEST_P(Bars, AreAbsentBeforeTheFirstBlockAndInSilence) {
  openBars(300, 200);
  expectPicture("before any block");
  send(16, 2, Bytes(4096, 0));
  expectPicture("silence");
  EXPECT_EQ(0u, picture().at(10, m_model.plotHeight - 1));
}

TEST_P(Bars, MakeWayForEachOtherAndForTheOtherViews) {
  openBars(300, 200);
  for (const int other : {3, 4, 5, 2, 6, 7, 1, 5, 4, 3}) {
    for (const int shown : {other, type}) {
      putType(shown);
      send(16, 2, noise(16, 2, static_cast<std::uint32_t>(other)));
      EXPECT_EQ("", differences(m_model.picture(), picture())) << shown << " after " << other;
    }
  }
}

}  // namespace
}  // namespace av::test
