#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <vector>

namespace avdemo {

/// A PCM recording taken out of a WAV file: integer samples of 8, 16, 24 or 32 bits, 1 to 18 channels.
struct WavRecording {
  std::uint16_t channels = 0;
  std::uint16_t bitsPerSample = 0;
  std::uint32_t sampleRateHz = 0;
  /// The wave format as it stands in the file, at least the 18 bytes of the standard header (a 16-byte one is completed
  /// with a zero extension size), at most 180.
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

/// Reads a WAV file's bytes. Chunks that are neither "fmt " nor "data" are skipped wherever they stand. A data chunk
/// that claims more than there is gives what there is, and so does the size that streaming writers leave open
/// (0xFFFFFFFF, or 0 under a RIFF size that does not fit the file either). A trailing partial frame is cut off.
WavResult readWav(std::span<const std::uint8_t> file);

}  // namespace avdemo
