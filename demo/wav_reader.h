#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <vector>

namespace avdemo {

/// A recording taken out of a WAV file, as samples that every control reads: integers of 8, 16 or 32 bits, 1 to 18
/// channels.
struct WavRecording {
  std::uint16_t channels = 0;
  std::uint16_t bitsPerSample = 0;      ///< of the samples here: 24 bits and floating point are 32 bits now
  std::uint16_t fileBitsPerSample = 0;  ///< of those in the file
  std::uint32_t sampleRateHz = 0;
  /// The wave format of the samples: as it stands in the file, at least the 18 bytes of the standard header and at most
  /// 180, where the samples are those of the file; otherwise that of plain PCM.
  std::vector<std::uint8_t> format;
  /// Interleaved samples, a whole number of frames and at least one.
  std::vector<std::uint8_t> samples;

  std::size_t bytesPerFrame() const noexcept { return std::size_t{channels} * (bitsPerSample / 8u); }
  std::size_t frameCount() const noexcept { return samples.size() / bytesPerFrame(); }
  /// One sample on a scale of −1 to below 1.
  double sample(std::size_t frame, std::size_t channel) const noexcept;
};

/// Either a recording or, in `problem`, why there is none: a lower-case phrase without a full stop.
struct WavResult {
  std::optional<WavRecording> recording;
  std::string problem;
};

/// Reads a WAV file's bytes, as av::wave::readHeader describes it; a file without a whole frame is refused too.
WavResult readWav(std::span<const std::uint8_t> file);

}  // namespace avdemo
