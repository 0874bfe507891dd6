#pragma once

#include "common/wave_format.h"

#include <cstdint>

namespace av {

/// The stream's header fields as the last accepted block gave them.
struct StreamFormat {
  std::uint16_t formatTag = formatTagPcm;
  std::uint16_t channels = 2;
  std::uint32_t samplesPerSec = 44100;
  std::uint32_t avgBytesPerSec = 176000;  ///< not 176400: kept as it always was, nothing reads it
  std::uint16_t blockAlign = 4;
  std::uint16_t bitsPerSample = 16;
  std::uint16_t extraSize = 0;

  friend bool operator==(const StreamFormat&, const StreamFormat&) = default;
};

constexpr StreamFormat streamFormatOf(const AudioFormatBlock& header) noexcept {
  return {header.wFormatTag,  header.nChannels,      header.nSamplesPerSec, header.nAvgBytesPerSec,
          header.nBlockAlign, header.wBitsPerSample, header.cbSize};
}

}  // namespace av
