// X-Y views of the finished control, pixel by pixel: the cross, the frame with its marks, and the curves.

#include "picture/view_picture_fixture.h"

namespace av::test {
namespace {

class XyViews : public ViewPictures, public testing::WithParamInterface<int> {
 protected:
  void openXy(int width, int height) {
    open(width, height);
    putSmooth(false);
    putType(GetParam());
  }
};

INSTANTIATE_TEST_SUITE_P(OfType, XyViews, testing::Values(6, 7),
                         [](const auto& parameter) { return std::to_string(parameter.param); });

TEST_P(XyViews, ACurveThatIsOneRowOffWouldBeNoticed) {
  openXy(300, 240);
  send(16, 2, sines(16, 2, 1024));
  expectPicture();
  EXPECT_NE("", differences(m_model.picture(1), picture()));
  EXPECT_NE("", differences(m_model.picture(-1), picture()));
}

TEST_P(XyViews, AreExactForEveryDepthAndNumberOfChannels) {
  openXy(400, 301);
  for (const bool smooth : {false, true}) {
    putSmooth(smooth);
    for (const int bits : {8, 16, 24, 32}) {
      for (const int channels : {1, 2, 3, 18}) {
        send(bits, channels, sines(bits, channels, 1024));
        if (smooth) tick();
        EXPECT_EQ("", differences(m_model.picture(), picture()))
            << bits << " bits, " << channels << " channels, smooth " << smooth;
      }
    }
  }
}

TEST_P(XyViews, AreExactForNoise) {
  openXy(300, 240);
  for (const int channels : {1, 2, 3}) {
    send(16, channels, noiseBytes(16, channels, 1024, 5));
    EXPECT_EQ("", differences(m_model.picture(), picture())) << channels;
  }
}

TEST_P(XyViews, FollowEverySizeScaleAndGrid) {
  openXy(400, 301);
  send(16, 3, sines(16, 3, 1024));
  const struct { int width, height; } sizes[] = {{400, 301}, {641, 359}, {121, 77}, {90, 333}, {800, 100}, {81, 51}};
  for (const auto& size : sizes) {
    resize(size.width, size.height);
    for (const bool scales : {true, false}) {
      for (const bool grid : {true, false}) {
        showScales(scales);
        showGrid(grid);
        EXPECT_EQ("", differences(m_model.picture(), picture()))
            << size.width << " x " << size.height << ", scales " << scales << ", grid " << grid;
      }
    }
  }
}

TEST_P(XyViews, AreExactForEveryWindowSize) {
  openXy(300, 240);
  for (int size = 64; size <= 4096; size *= 2) {
    putWindowSize(size);
    expectPicture("before the block");
    send(16, 2, sines(16, 2, size + 3, 0.9, 17.3));
    EXPECT_EQ("", differences(m_model.picture(), picture())) << size;
  }
}

TEST_P(XyViews, ShowEqualOppositeAndSingleChannelsWhereTheyBelong) {
  openXy(301, 301);
  showScales(false);
  const int markTop = 301 - 13;
  // The mark of equal channels runs from the frame's middle to its right end, that of opposite ones to its left end.
  const struct {
    const char* what;
    double left, right;
  } cases[] = {{"equal", 0.6, 0.6}, {"opposite", 0.6, -0.6}, {"left alone", 0.6, 0}, {"right alone", 0, 0.6}};
  for (const auto& each : cases) {
    send(16, 2, pcm(16, 2, 1024, [&](int i, int channel) {
           return (channel == 0 ? each.left : each.right) * std::sin(i * 0.05);
         }));
    expectPicture(each.what);
    const WindowPicture shown = picture();
    const auto isMarked = [&](int x) { return shown.at(x, markTop) != 0; };
    EXPECT_EQ(each.left == each.right, isMarked(170) && isMarked(290)) << each.what;
    EXPECT_EQ(each.left == -each.right, isMarked(10) && isMarked(130)) << each.what;
    EXPECT_FALSE(isMarked(170) && isMarked(130)) << each.what;
  }
}

}  // namespace
}  // namespace av::test
