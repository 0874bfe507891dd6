#include "player/sound.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>

namespace avplayer {

void copyBlock(const Sound& sound, std::int64_t end, std::int64_t frames, std::vector<std::int16_t>& block) {
  const std::size_t channels = sound.channels;
  block.assign(static_cast<std::size_t>(std::max<std::int64_t>(frames, 0)) * channels, 0);
  const std::int64_t begin = end - frames;
  const std::int64_t first = std::max<std::int64_t>(begin, 0);
  const std::int64_t last = std::min(end, sound.frameCount());
  if (first >= last) return;
  const auto from = static_cast<std::ptrdiff_t>(static_cast<std::size_t>(first) * channels);
  const auto to = static_cast<std::ptrdiff_t>(static_cast<std::size_t>(last) * channels);
  const auto at = static_cast<std::ptrdiff_t>(static_cast<std::size_t>(first - begin) * channels);
  std::copy(sound.samples.begin() + from, sound.samples.begin() + to, block.begin() + at);
}

double peakLevelDb(const Sound& sound, std::int64_t end, std::int64_t frames) {
  constexpr double silenceDb = -100;
  const std::int64_t first = std::max<std::int64_t>(end - frames, 0);
  const std::int64_t last = std::min(end, sound.frameCount());
  int highest = 0;
  for (std::int64_t i = first * sound.channels; i < last * sound.channels; ++i)
    highest = std::max(highest, std::abs(int{sound.samples[static_cast<std::size_t>(i)]}));
  return highest == 0 ? silenceDb : std::max(silenceDb, 20 * std::log10(highest / 32768.0));
}

std::int64_t copyStereo(const Sound& sound, std::int64_t begin, std::int64_t frames,
                        std::vector<std::int16_t>& stereo) {
  const std::int64_t count = std::clamp<std::int64_t>(sound.frameCount() - begin, 0, frames);
  stereo.resize(static_cast<std::size_t>(count) * 2);
  const std::size_t channels = sound.channels;
  const std::size_t right = channels > 1 ? 1 : 0;
  for (std::size_t i = 0; i < static_cast<std::size_t>(count); ++i) {
    const std::size_t frame = (static_cast<std::size_t>(begin) + i) * channels;
    stereo[2 * i] = sound.samples[frame];
    stereo[2 * i + 1] = sound.samples[frame + right];
  }
  return count;
}

}  // namespace avplayer
