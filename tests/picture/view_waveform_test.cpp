// Waveforms of the finished control, pixel by pixel.

#include "picture/view_picture_fixture.h"

namespace av::test {
namespace {

class Waveforms : public ViewPictures {};

TEST_F(Waveforms, ACurveThatIsOneRowOffWouldBeNoticed) {
  open(300, 200);
  putSmooth(false);
  send(16, 2, sines(16, 2, 1024));
  expectPicture();
  EXPECT_NE("", differences(m_model.picture(1), picture()));
  EXPECT_NE("", differences(m_model.picture(-1), picture()));
}

TEST_F(Waveforms, AreExactForAnyNumberOfChannelsAtAnySize) {
  const struct { int width, height; } sizes[] = {{300, 200}, {641, 359}, {121, 77}, {800, 100}, {90, 333}};
  open(300, 200);
  putSmooth(false);
  for (const auto& size : sizes) {
    ASSERT_EQ(S_OK, m_container.resize({size.width, size.height}));
    m_model.width = size.width;
    m_model.height = size.height;
    m_model.layout();
    for (const bool scales : {true, false}) {
      showScales(scales);
      for (const int channels : {1, 2, 3, 18}) {
        send(16, channels, sines(16, channels, 1024));
        EXPECT_EQ("", differences(m_model.picture(), picture()))
            << size.width << " x " << size.height << ", scales " << scales << ", channels " << channels;
      }
    }
  }
}

TEST_F(Waveforms, NoiseReachesEveryRowAndNoPixelBeyondThePlot) {
  open(400, 300);
  putSmooth(false);
  for (const std::uint32_t seed : {1u, 2u, 3u}) {
    send(16, 2, noiseBytes(16, 2, 1024, seed));
    expectPicture();
  }
}

TEST_F(Waveforms, AreExactForEveryDepth) {
  open(320, 240);
  putSmooth(false);
  for (const int bits : {8, 16, 24, 32}) {
    send(bits, 2, sines(bits, 2, 1024));
    EXPECT_EQ("", differences(m_model.picture(), picture())) << bits;
    send(bits, 1, noiseBytes(bits, 1, 1024, 7));
    EXPECT_EQ("", differences(m_model.picture(), picture())) << bits;
  }
}

TEST_F(Waveforms, EightBitSamplesStandOnTheirHeads) {
  open(300, 200);
  putSmooth(false);
  showScales(false);
  showGrid(false);
  const auto rowsOf = [&](std::uint8_t byte) {
    send(8, 1, Bytes(1024, byte));
    std::vector<int> rows;
    const WindowPicture shown = picture();
    for (int y = 0; y < shown.height; ++y)
      if (shown.at(150, y) == 0xF08080) rows.push_back(y);
    return rows;
  };
  // 128 is silence; bytes above it go down.
  EXPECT_EQ(std::vector<int>{100}, rowsOf(128));
  EXPECT_EQ(std::vector<int>{150}, rowsOf(191));  // −63 of 127: 100 + 49.6 + 0.5
  EXPECT_EQ(std::vector<int>{50}, rowsOf(65));    // 63 of 127
  EXPECT_EQ(std::vector<int>{0}, rowsOf(0));      // 128 of 127: clamped to the top
}

TEST_F(Waveforms, TheLastSampleIsReplacedByTheOneBeforeIt) {
  open(300, 200);
  putSmooth(false);
  showScales(false);
  showGrid(false);
  putWindowSize(64);
  Bytes flat = pcm(16, 1, 64, [](int, int) { return 0.0; });
  send(16, 1, flat);
  const WindowPicture withoutPeak = picture();
  flat[2 * 63 + 1] = 0x7F;  // the last sample alone is loud
  send(16, 1, flat);
  EXPECT_EQ(withoutPeak, picture());
  flat[2 * 62 + 1] = 0x7F;
  send(16, 1, flat);
  EXPECT_NE(withoutPeak, picture());
  expectPicture();
}

TEST_F(Waveforms, FollowTheVerticalScale) {
  open(300, 201);
  putSmooth(false);
  const struct {
    int lowest, highest;
  } scales[] = {{0, 50}, {25, 75}, {50, 100}, {-50, 150}, {10, 11}, {0, 1000}, {-100, 0}};
  send(16, 2, sines(16, 2, 1024));
  for (const auto& scale : scales) {
    putScaleY(scale.lowest, scale.highest);
    EXPECT_EQ("", differences(m_model.picture(), picture())) << scale.lowest << " to " << scale.highest;
  }
}

TEST_F(Waveforms, EveryWindowSizeShowsItsOwnNumberOfSamples) {
  open(300, 200);
  putSmooth(false);
  for (int size = 64; size <= 16384; size *= 2) {
    putWindowSize(size);
    expectPicture("before the block");
    send(16, 2, sines(16, 2, size + 5));
    EXPECT_EQ("", differences(m_model.picture(), picture())) << size;
  }
}

TEST_F(Waveforms, APutOfTheWindowSizeEmptiesThePictureAtOnceAndLeavesTheGrid) {
  open(640, 360);
  putSmooth(false);
  send(16, 2, sines(16, 2, 1024));
  putWindowSize(16384);  // labels with five digits: a layout of this would have fewer grid lines
  expectPicture();
  showGrid(true);  // lays out anew
  expectPicture();
}

TEST_F(Waveforms, NothingIsDrawnBeforeTheFirstBlockThatFillsTheWindow) {
  open(300, 200);
  putSmooth(false);
  expectPicture("before any block");
  send(16, 2, sines(16, 2, 1023));
  expectPicture("after a short one");
  send(16, 2, sines(16, 2, 1024));
  EXPECT_TRUE(m_model.received);
  expectPicture("after a whole one");
  send(24, 2, sines(24, 2, 1023, 0.2));
  tick(3);
  EXPECT_EQ(8388607.0, m_model.fullScale);
  putSmooth(false);  // redraws: the old samples on the new depth's scale
  expectPicture("the old samples, scaled for the new depth");
}

TEST_F(Waveforms, AreLeftToTheTimerWhileSmoothingIsOn) {
  open(300, 200);
  send(16, 2, sines(16, 2, 1024));
  const WindowPicture before = picture();
  ViewModel empty = m_model;
  empty.received = false;
  EXPECT_EQ("", differences(empty.picture(), before));
  tick();
  expectPicture("a waveform is not smoothed");
}

TEST_F(Waveforms, ChannelsTakeTheirColoursFromTheTable) {
  open(300, 200);
  putSmooth(false);
  for (LONG index = 1; index <= 18; ++index) {
    const auto shade = static_cast<std::uint32_t>(index * 13);
    ASSERT_EQ(S_OK, m_view->put_LineColor(index, static_cast<OLE_COLOR>(0x200000 + shade)));  // blue, green, red
    m_model.lineColours[static_cast<std::size_t>(index)] = (shade << 16) + 0x20;
  }
  send(16, 18, sines(16, 18, 1024));
  expectPicture();
}

}  // namespace
}  // namespace av::test
