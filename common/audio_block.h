#pragma once

#include "common/wave_format.h"

#include <cstdint>
#include <optional>

namespace av {

/// One block as it comes out of a host's buffer object: interleaved samples in the host's memory, valid only while the
/// host's interfaces are held.
struct AudioBlock {
  AudioFormatBlock format;
  const std::uint8_t* samples = nullptr;  ///< first sample byte; never null in an accepted block
  std::int32_t sampleBytes = 0;           ///< bytes that may be read; zero or negative: no frames
};

/// Whole frames in `sampleBytes` bytes: bytes ÷ channels ÷ (bits ÷ 8), each an integer division in that order, so a
/// trailing partial frame is ignored. Negative byte counts give zero or negative counts.
/// Empty for 0 channels or fewer than 8 bits, where there is no such number; such a block is dropped.
constexpr std::optional<std::int32_t> frameCount(const AudioFormatBlock& format, std::int32_t sampleBytes) noexcept {
  const std::int32_t bytesPerSample = format.wBitsPerSample / 8;
  if (format.nChannels == 0 || bytesPerSample == 0) return std::nullopt;
  return sampleBytes / format.nChannels / bytesPerSample;
}

}  // namespace av
