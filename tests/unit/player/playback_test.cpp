// Playing into a device that the test plays the part of, with the time passed in.

#include "player/playback.h"

#include <gtest/gtest.h>

#include <deque>
#include <memory>

namespace avplayer {
namespace {

constexpr std::uint32_t rateHz = 1000;  // a frame a millisecond

std::shared_ptr<const Sound> ramp(std::int64_t frames) {
  auto sound = std::make_shared<Sound>();
  sound->sampleRateHz = rateHz;
  sound->channels = 1;
  for (std::int64_t i = 0; i < frames; ++i) sound->samples.push_back(static_cast<std::int16_t>(i));
  return sound;
}

/// A device of three buffers. The test moves its time.
struct FakeDevice final : SoundDevice {
  struct State {
    bool there = true, opens = true, isOpen = false, paused = false, frozen = false;
    int opened = 0, closed = 0;
    std::int64_t queued = 0, played = 0;
    std::vector<std::int16_t> heard;  ///< left channel, since the last open or empty
    std::deque<std::int64_t> ends;
  };
  explicit FakeDevice(State& s) : state(s) {}
  bool open(std::uint32_t rate) override {
    EXPECT_EQ(rateHz, rate);
    if (!state.opens) return false;
    state.isOpen = true;
    ++state.opened;
    reset();
    return true;
  }
  void close() override {
    EXPECT_TRUE(state.isOpen);
    state.isOpen = false;
    ++state.closed;
  }
  int freeBuffers() override { return usable() ? 3 - static_cast<int>(state.ends.size()) : -1; }
  bool write(std::span<const std::int16_t> stereo) override {
    if (!usable()) return false;
    EXPECT_LT(state.ends.size(), 3u);
    for (std::size_t i = 0; i < stereo.size(); i += 2) state.heard.push_back(stereo[i]);
    state.queued += static_cast<std::int64_t>(stereo.size() / 2);
    state.ends.push_back(state.queued);
    return true;
  }
  std::optional<std::int64_t> playedFrames() override { return usable() ? std::optional(state.played) : std::nullopt; }
  bool empty() override {
    reset();
    return usable();
  }
  bool pause() override { return usable() && (state.paused = true); }
  bool resume() override {
    state.paused = false;
    return usable();
  }
  void reset() {
    state.queued = state.played = 0;
    state.heard.clear();
    state.ends.clear();
  }
  bool usable() const {
    EXPECT_TRUE(state.isOpen) << "asked while closed";
    return state.there;
  }
  State& state;
};

class DevicePlayback : public testing::Test {
 protected:
  void load(std::int64_t frames) { playback.load(ramp(frames), now); }
  /// Time passes in steps of 10 ms, for the device too.
  void pass(int ms) {
    for (int i = 0; i < ms; i += 10) {
      now += 10;
      if (device.isOpen && device.there && !device.paused && !device.frozen)
        device.played = std::min(device.queued, device.played + 10);
      while (!device.ends.empty() && device.ends.front() <= device.played) device.ends.pop_front();
      playback.step(now);
    }
  }
  FakeDevice::State device;
  double now = 5000;
  Playback playback{std::make_unique<FakeDevice>(device)};
};

TEST_F(DevicePlayback, PlaysEveryFrameOnceAndStopsAtTheEnd) {
  load(1000);
  EXPECT_FALSE(playback.isPlaying());
  playback.play(now);
  pass(500);
  EXPECT_EQ(500, playback.position());
  EXPECT_TRUE(playback.isPlaying());
  pass(600);
  EXPECT_FALSE(playback.isPlaying());
  EXPECT_EQ(1000, playback.position());
  EXPECT_EQ(ramp(1000)->samples, device.heard);
  EXPECT_EQ(Output::device, playback.output());
}

TEST_F(DevicePlayback, BeginsAgainAfterTheEnd) {
  load(200);
  playback.play(now);
  pass(400);
  playback.play(now);
  EXPECT_TRUE(playback.isPlaying());
  pass(50);
  EXPECT_EQ(50, playback.position());
}

TEST_F(DevicePlayback, LoopsWithoutAGap) {
  load(130);
  playback.setLoop(true, now);
  playback.play(now);
  pass(1000);
  EXPECT_TRUE(playback.isPlaying());
  EXPECT_EQ(1000 % 130, playback.position());
  for (std::size_t i = 0; i < device.heard.size(); ++i)
    ASSERT_EQ(static_cast<std::int16_t>(i % 130), device.heard[i]) << i;
}

TEST_F(DevicePlayback, StopsAtTheEndWhenTheLoopIsEndedInTheMiddle) {
  load(130);
  playback.setLoop(true, now);
  playback.play(now);
  pass(300);
  playback.setLoop(false, now);
  EXPECT_EQ(300 % 130, playback.position());
  pass(200);
  EXPECT_EQ(130, playback.position());
  EXPECT_FALSE(playback.isPlaying());
}

TEST_F(DevicePlayback, SeeksToTheVeryFrame) {
  load(1000);
  playback.play(now);
  pass(100);
  playback.seek(700, now);
  EXPECT_EQ(700, playback.position());
  pass(50);
  EXPECT_EQ(750, playback.position());
  EXPECT_EQ(700, device.heard.at(0));
  playback.seek(-5, now);
  EXPECT_EQ(0, playback.position());
  playback.seek(5000, now);
  EXPECT_EQ(1000, playback.position());
}

TEST_F(DevicePlayback, GoesOnWhereItWasPaused) {
  load(1000);
  playback.play(now);
  pass(210);
  playback.pause(now);
  pass(500);
  EXPECT_EQ(210, playback.position());
  playback.play(now);
  EXPECT_EQ(210, device.heard.at(0));
  pass(40);
  EXPECT_EQ(250, playback.position());
  EXPECT_EQ(1, device.opened);
}

TEST_F(DevicePlayback, GoesOnSilentlyWhereTheDeviceWasLost) {
  load(1000);
  playback.play(now);
  pass(300);
  device.there = false;
  pass(10);
  EXPECT_EQ(Output::lost, playback.output());
  EXPECT_EQ(1, device.closed);
  const std::int64_t lostAt = playback.position();
  EXPECT_EQ(300, lostAt);
  pass(200);
  EXPECT_EQ(lostAt + 200, playback.position());
  EXPECT_TRUE(playback.isPlaying());
  // It is there again with the next play.
  device.there = true;
  playback.pause(now);
  playback.play(now);
  EXPECT_EQ(Output::device, playback.output());
  EXPECT_EQ(2, device.opened);
}

TEST_F(DevicePlayback, TakesADeviceThatStandsStillForLost) {
  load(10000);
  playback.play(now);
  pass(300);
  device.frozen = true;
  pass(1500);
  EXPECT_EQ(Output::device, playback.output());
  EXPECT_EQ(300, playback.position());
  pass(600);
  EXPECT_EQ(Output::lost, playback.output());
  pass(100);
  EXPECT_GT(playback.position(), 300);
}

TEST_F(DevicePlayback, TakesADeviceThatStandsStillAfterTheLastFrameForTheEnd) {
  load(300);
  playback.play(now);
  pass(290);
  device.frozen = true;  // a converter that swallows the last frames
  pass(2500);
  EXPECT_FALSE(playback.isPlaying());
  EXPECT_EQ(300, playback.position());
  EXPECT_EQ(Output::device, playback.output());
}

TEST_F(DevicePlayback, SurvivesALateStep) {
  load(1000);
  playback.play(now);
  pass(100);
  now += 900;  // the queue ran dry: the device stands where it was empty
  device.played = device.queued;
  device.ends.clear();
  const std::int64_t dryAt = device.queued;
  playback.step(now);
  EXPECT_EQ(dryAt, playback.position());
  EXPECT_EQ(Output::device, playback.output());
  pass(100);
  EXPECT_EQ(dryAt + 100, playback.position());
}

TEST_F(DevicePlayback, PlaysByTheClockWithoutADevice) {
  device.opens = false;
  load(1000);
  playback.play(now);
  EXPECT_EQ(Output::none, playback.output());
  pass(400);
  EXPECT_EQ(400, playback.position());
  pass(700);
  EXPECT_EQ(1000, playback.position());
  EXPECT_FALSE(playback.isPlaying());
}

TEST_F(DevicePlayback, ClosesTheDeviceWithItself) {
  {
    FakeDevice::State own;
    {
      Playback inner(std::make_unique<FakeDevice>(own));
      inner.load(ramp(1000), 0);
      inner.play(0);
      EXPECT_TRUE(own.isOpen);
    }
    EXPECT_FALSE(own.isOpen);
  }
}

TEST(SilentPlayback, FollowsTheClock) {
  Playback playback(nullptr);
  playback.load(ramp(1000), 100);
  playback.play(100);
  EXPECT_EQ(Output::silent, playback.output());
  playback.step(350);
  EXPECT_EQ(250, playback.position());
  playback.pause(400);
  playback.step(900);
  EXPECT_EQ(300, playback.position());
  playback.setLoop(true, 900);
  playback.play(900);
  playback.step(2000);
  EXPECT_EQ(400, playback.position());
}

TEST(SilentPlayback, HasNothingToPlayWithoutASound) {
  Playback playback(nullptr);
  playback.play(0);
  playback.seek(10, 0);
  playback.step(10);
  EXPECT_FALSE(playback.isPlaying());
  EXPECT_EQ(0, playback.position());
}

}  // namespace
}  // namespace avplayer
