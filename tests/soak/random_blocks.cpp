#include "tests/soak/random_blocks.h"

#include <mmreg.h>

#include <algorithm>
#include <climits>
#include <cmath>
#include <cstring>

namespace av::soak {
namespace {

enum class Sound { silence, tone, noise, fullScale };

/// Samples of `bits` bits, little-endian, all channels alike but for their sign.
std::vector<std::uint8_t> samplesOf(RandomSource& random, int bits, int channels, int frames) {
  const Sound sound = random.oneOf<Sound>({Sound::silence, Sound::tone, Sound::tone, Sound::noise, Sound::fullScale});
  const double step = static_cast<double>(random.between(1, 3000)) / 1000.0;
  const double highest = std::ldexp(1.0, bits - 1) - 1;
  const double amplitude = highest * static_cast<double>(random.between(1, 100)) / 100.0;
  std::vector<std::uint8_t> bytes;
  bytes.reserve(static_cast<std::size_t>(frames * channels * (bits / 8)));
  for (int frame = 0; frame < frames; ++frame) {
    double value = 0;
    if (sound == Sound::tone) value = amplitude * std::sin(step * frame);
    if (sound == Sound::noise) value = amplitude * static_cast<double>(random.between(-1000, 1000)) / 1000.0;
    if (sound == Sound::fullScale) value = frame / 32 % 2 == 0 ? highest : -highest - 1;
    for (int channel = 0; channel < channels; ++channel) {
      const double signedValue = channel % 2 == 0 ? value : -value;
      const auto sample = static_cast<std::int64_t>(std::clamp(signedValue, -highest - 1, highest));
      for (int byte = 0; byte < bits / 8; ++byte)
        bytes.push_back(static_cast<std::uint8_t>(static_cast<std::uint64_t>(sample) >> (8 * byte)));
    }
  }
  return bytes;
}

WAVEFORMATEX pcm(int bits, int channels, DWORD rateHz) {
  WAVEFORMATEX format{};
  format.wFormatTag = WAVE_FORMAT_PCM;
  format.nChannels = static_cast<WORD>(channels);
  format.nSamplesPerSec = rateHz;
  format.wBitsPerSample = static_cast<WORD>(bits);
  format.nBlockAlign = static_cast<WORD>(channels * (bits / 8));
  format.nAvgBytesPerSec = rateHz * format.nBlockAlign;
  return format;
}

SoakBlock ordinary(RandomSource& random) {
  const int bits = random.oneOf<int>({16, 16, 16, 24, 32});
  const int channels = random.oneOf<int>({1, 2, 2, 2, 6});
  // X-Y views join every two channels by one line a frame, which some systems draw slowly.
  const int mostFrames = channels > 2 ? 512 : 2048;
  const int frames = random.chance(50) ? random.oneOf<int>({256, 512, 1024, 2048}) : random.upTo(2048);
  const WAVEFORMATEX format = pcm(bits, channels, random.oneOf<DWORD>({8000, 44100, 48000, 96000}));
  SoakBlock block{samplesOf(random, bits, channels, std::min(frames, mostFrames)), nullptr};
  if (random.chance(25)) {
    std::vector<std::uint8_t> packed(sizeof format + block.bytes.size());
    std::memcpy(packed.data(), &format, sizeof format);
    std::copy(block.bytes.begin(), block.bytes.end(), packed.begin() + sizeof format);
    block.bytes = std::move(packed);
    block.object = avhost::packedAudio(block.bytes.data(), static_cast<LONG>(block.bytes.size()));
  } else {
    block.object = avhost::audioFrames(format, block.bytes.data(), static_cast<LONG>(block.bytes.size()));
  }
  return block;
}

SoakBlock strange(RandomSource& random) {
  WAVEFORMATEX format = pcm(16, 2, 48000);
  if (random.chance(40)) format.wFormatTag = random.oneOf<WORD>({0, 1, 2, 3, 6, 0x55, 0xFFFE, 0xFFFF});
  if (random.chance(40)) format.wBitsPerSample = static_cast<WORD>(random.upTo(64));
  if (random.chance(40)) format.nChannels = random.oneOf<WORD>({0, 1, 2, 3, 18, 19, 255, 65535});
  if (random.chance(40)) format.nBlockAlign = static_cast<WORD>(random.upTo(65535));
  if (random.chance(40)) format.nSamplesPerSec = random.oneOf<DWORD>({0, 1, 100, 44100, 192000, 0xFFFFFFFF});
  if (random.chance(40)) format.nAvgBytesPerSec = random.oneOf<DWORD>({0, 1, 176400, 0xFFFFFFFF});
  SoakBlock block{std::vector<std::uint8_t>(static_cast<std::size_t>(random.upTo(8192))), nullptr};
  for (std::uint8_t& byte : block.bytes) byte = static_cast<std::uint8_t>(random.upTo(255));
  const LONG size = static_cast<LONG>(block.bytes.size());
  const LONG stated = random.oneOf<LONG>({size, size, size, size / 2, size / 3, 1, 0, -1, LONG_MIN});
  const void* const memory = random.chance(5) ? nullptr : block.bytes.data();
  if (random.chance(50)) block.object = avhost::audioFrames(format, memory, std::min(stated, size));
  else block.object.reset(new avhost::PackedAudioData(memory, size, std::min(stated, size)));
  return block;
}

}  // namespace

SoakBlock randomBlock(RandomSource& random) { return random.chance(85) ? ordinary(random) : strange(random); }

}  // namespace av::soak
