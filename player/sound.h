#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

namespace avplayer {

/// A recording as the player keeps it: interleaved 16-bit samples, whatever the file had. All three controls read these
/// (two of them read no 24-bit samples), and so does every sound device.
struct Sound {
  std::uint32_t sampleRateHz = 44100;
  std::uint16_t channels = 2;
  std::vector<std::int16_t> samples;

  std::int64_t frameCount() const noexcept { return static_cast<std::int64_t>(samples.size() / channels); }
  double lengthS() const noexcept { return static_cast<double>(frameCount()) / sampleRateHz; }
};

/// The `frames` frames that end at frame `end` (exclusive), in the sound's own channels: what was heard last. Silence
/// stands before its begin and behind its end.
void copyBlock(const Sound& sound, std::int64_t end, std::int64_t frames, std::vector<std::int16_t>& block);

/// The highest sample of all channels in the `frames` frames that end at `end`, in dB of full scale; −100 and below is
/// told as −100.
double peakLevelDb(const Sound& sound, std::int64_t end, std::int64_t frames);

/// What is heard: `frames` frames from `begin`, left and right. One channel is heard on both sides, of more than two the
/// first two. Returns how many frames there were.
std::int64_t copyStereo(const Sound& sound, std::int64_t begin, std::int64_t frames, std::vector<std::int16_t>& stereo);

/// For when no file is opened: a few bars of music from nothing but formulas, in stereo, made to be looped.
Sound demonstrationSound();

}  // namespace avplayer
