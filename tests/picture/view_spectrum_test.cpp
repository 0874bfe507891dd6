// Linear spectra of the finished control, pixel by pixel, smoothed and not.

#include "picture/view_picture_fixture.h"

namespace av::test {
namespace {

class LinearSpectra : public ViewPictures {
 protected:
  /// After these the levels stand still to the last bit, whether or not they count as converged: a level that falls to a
  /// whole number of dB comes to rest one bit above it and is animated for ever.
  static constexpr int manySteps = 160;
};

TEST_F(LinearSpectra, ACurveThatIsOneRowOffWouldBeNoticed) {
  open(300, 200);
  putSmooth(false);
  putType(2);
  send(16, 2, sines(16, 2, 1024));
  expectPicture();
  EXPECT_NE("", differences(m_model.picture(1), picture()));
  EXPECT_NE("", differences(m_model.picture(-1), picture()));
}

TEST_F(LinearSpectra, AreExactForEveryWindowSizeAndWindow) {
  open(500, 300);
  putSmooth(false);
  putType(2);
  for (int size = 64; size <= 16384; size *= 2) {
    putWindowSize(size);
    for (const int window : {0, 1, 2, 3, 4, 5, -1}) {
      ASSERT_EQ(S_OK, m_view->put_FFTWindowType(window));
      m_model.windowType = window;
      send(16, 2, window % 2 == 0 ? sines(16, 2, size) : noiseBytes(16, 2, size, 5));
      EXPECT_EQ("", differences(m_model.picture(), picture())) << size << ", window " << window;
    }
  }
}

TEST_F(LinearSpectra, AreExactForEveryDepthAndNumberOfChannels) {
  open(500, 301);
  putSmooth(false);
  putType(2);
  for (const bool scales : {true, false}) {
    showScales(scales);
    for (const int bits : {8, 16, 24, 32}) {
      for (const int channels : {1, 2, 3, 18}) {
        send(bits, channels, noiseBytes(bits, channels, 1024, static_cast<std::uint32_t>(bits + channels)));
        EXPECT_EQ("", differences(m_model.picture(), picture())) << bits << " bits, " << channels << " channels";
      }
    }
  }
}

TEST_F(LinearSpectra, FollowScaleAndDynamicRangeAndABlockOverwritesTheRange) {
  open(400, 303);
  putSmooth(false);
  putType(2);
  const Bytes block = noiseBytes(16, 2, 1024, 11);
  send(16, 2, block);
  putDynamicRange(60);
  expectPicture("60 dB");
  const struct { int lowest, highest; } scales[] = {{0, 50}, {20, 80}, {33, 34}, {-50, 120}, {0, 300}};
  for (const auto& scale : scales) {
    putScaleY(scale.lowest, scale.highest);
    EXPECT_EQ("", differences(m_model.picture(), picture())) << scale.lowest << " to " << scale.highest;
  }
  putScaleY(0, 100);
  send(16, 2, block);
  LONG range = 0;
  EXPECT_EQ(S_OK, m_view->get_DynamicRange(&range));
  EXPECT_EQ(90, range);
  expectPicture("90 dB again");
}

TEST_F(LinearSpectra, ShowTheirFloorAtOnceWhenTheTypeIsPut) {
  for (const bool smooth : {false, true}) {
    if (!m_container.window()) open(300, 200);
    putSmooth(smooth);
    putType(1);
    send(16, 2, sines(16, 2, 1024));
    putType(2);
    EXPECT_EQ(-400, m_model.display[0][100]);
    expectPicture();
    // The floor is the plot's bottom row, which belongs to no strip.
    EXPECT_EQ(0xFFFF00u, picture().at(10, m_model.plotHeight));
  }
}

TEST_F(LinearSpectra, TheWindowTypeIsStoredUntilTheNextBlock) {
  open(300, 200);
  putSmooth(false);
  putType(2);
  const Bytes block = noiseBytes(16, 2, 1024, 3);
  send(16, 2, block);
  const WindowPicture before = picture();
  ASSERT_EQ(S_OK, m_view->put_FFTWindowType(3));
  InvalidateRect(m_container.controlWindow(), nullptr, FALSE);
  UpdateWindow(m_container.controlWindow());
  EXPECT_EQ(before, picture());
  m_model.windowType = 3;
  send(16, 2, block);
  EXPECT_NE(before, picture());
  expectPicture();
}

TEST_F(LinearSpectra, SilenceIsTheFloor) {
  open(300, 200);
  putSmooth(false);
  putType(2);
  putDynamicRange(300);
  send(16, 2, Bytes(4096, 0));
  putDynamicRange(300);
  EXPECT_EQ(-200.0, m_model.analysis[1][511]);
  expectPicture();
}

TEST_F(LinearSpectra, RiseByHalvesAndFallByQuarters) {
  open(300, 240);
  putType(2);
  ASSERT_EQ(S_OK, m_view->put_DynamicRange(90));
  send(16, 2, noiseBytes(16, 2, 1024, 17));
  EXPECT_EQ(-400, m_model.display[0][100]);
  for (int step = 0; step < manySteps; ++step) {
    tick();
    ASSERT_EQ("", differences(m_model.picture(), picture())) << "rising, step " << step;
  }
  const WindowPicture atRest = picture();

  Bytes quieter = noiseBytes(16, 2, 1024, 17);
  for (std::size_t i = 1; i < quieter.size(); i += 2) {
    const auto loud = static_cast<std::int16_t>(quieter[i - 1] | quieter[i] << 8);
    const auto quiet = static_cast<std::int16_t>(loud / 50);
    quieter[i - 1] = static_cast<std::uint8_t>(quiet & 0xFF);
    quieter[i] = static_cast<std::uint8_t>(quiet >> 8 & 0xFF);
  }
  send(16, 2, quieter);
  EXPECT_EQ(atRest, picture());
  int stepsThatShowed = 0;
  WindowPicture last = atRest;
  for (int step = 0; step < manySteps; ++step) {
    tick();
    const WindowPicture now = picture();
    ASSERT_EQ("", differences(m_model.picture(), now)) << "falling, step " << step;
    if (now != last) ++stepsThatShowed;
    last = now;
  }
  EXPECT_GT(stepsThatShowed, 10);  // 34 dB are 90 rows: three quarters of them are left after each step
}

TEST_F(LinearSpectra, ChannelsThatJoinResetAllOfThem) {
  open(300, 240);
  putType(2);
  send(16, 1, noiseBytes(16, 1, 1024, 1));
  tick(12);
  expectPicture("mono");
  send(16, 3, noiseBytes(16, 3, 1024, 2));
  tick();
  expectPicture("three channels, the first of them from the floor again");
  tick(4);
  expectPicture();
}

TEST_F(LinearSpectra, TheTimersOwnTicksEndInTheSamePicture) {
  open(300, 240);
  putType(2);
  send(16, 2, noiseBytes(16, 2, 1024, 23));
  for (int step = 0; step < manySteps; ++step) m_model.tick();
  EXPECT_TRUE(avhost::pumpUntil(20000, [&] { return differences(m_model.picture(), picture()).empty(); }))
      << differences(m_model.picture(), picture());
}

}  // namespace
}  // namespace av::test
