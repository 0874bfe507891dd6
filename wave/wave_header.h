#pragma once

#include "wave/byte_source.h"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace av::wave {

enum class SampleKind { integer, floatingPoint };

/// What a WAV file's header says, and where its samples lie.
struct WaveHeader {
  SampleKind kind = SampleKind::integer;
  std::uint16_t channels = 0;       ///< 1 to 18
  std::uint16_t bitsPerSample = 0;  ///< 8, 16, 24, 32; of floating-point samples 32, 64
  std::uint32_t sampleRateHz = 0;   ///< 1 to 10,000,000
  /// The wave format as it stands in the file, at least the 18 bytes of the standard header (a 16-byte one is completed
  /// with a zero extension size), at most 180.
  std::vector<std::uint8_t> format;
  std::uint64_t dataOffset = 0;
  std::uint64_t dataBytes = 0;  ///< a whole number of frames, perhaps none

  [[nodiscard]] std::size_t bytesPerFrame() const noexcept { return std::size_t{channels} * (bitsPerSample / 8u); }
  [[nodiscard]] std::uint64_t frameCount() const noexcept { return dataBytes / bytesPerFrame(); }
};

/// Either a header or, in `problem`, why there is none: a lower-case phrase without a full stop.
struct HeaderResult {
  std::optional<WaveHeader> header;
  std::string problem;
};

/// Reads the header of a WAV file. Chunks that are neither "fmt " nor "data" are skipped wherever they stand; one of odd
/// size may lack its padding byte. A data chunk that claims more than there is gives what there is, and so does the size
/// that streaming writers leave open (0xFFFFFFFF, or 0 under a RIFF size that does not fit the file either). The long
/// variant (RF64) takes the size from its "ds64" chunk. A trailing partial frame is cut off.
HeaderResult readHeader(ByteSource& file);

}  // namespace av::wave
