#pragma once

#include "wave/byte_source.h"
#include "wave/pcm_samples.h"
#include "wave/wave_header.h"

#include <cstddef>
#include <cstdint>
#include <vector>

namespace av::wave {

/// Reads the samples behind a header piece by piece, as blocks hold them; nothing is read ahead.
class WaveReader {
 public:
  /// `file` outlives the reader.
  WaveReader(ByteSource& file, const WaveHeader& header);

  /// What blocks of this file are: floating-point samples become integers of 32 bits.
  [[nodiscard]] const PcmFormat& blockFormat() const noexcept { return m_blockFormat; }
  [[nodiscard]] std::uint64_t frameCount() const noexcept { return m_frameCount; }
  /// The frame that the next read begins with.
  [[nodiscard]] std::uint64_t position() const noexcept { return m_position; }
  /// At most frameCount().
  void setPosition(std::uint64_t frame) noexcept { m_position = frame; }
  /// How many frames a read may ask for: a block's bytes have to fit 31 bits.
  [[nodiscard]] std::uint64_t mostFramesOfABlock() const noexcept;

  /// The next `frames` frames, or those that are left: none at the end. Where the file has become shorter than its
  /// header says, what is there. `frames` is at most mostFramesOfABlock(). Throws std::bad_alloc and what the source
  /// throws; the position stays then.
  std::vector<std::uint8_t> read(std::uint64_t frames);

 private:
  ByteSource& m_file;
  SampleKind m_kind;
  unsigned m_fileBits;
  std::size_t m_fileFrameBytes;
  std::uint64_t m_dataOffset;
  std::uint64_t m_frameCount;
  PcmFormat m_blockFormat;
  std::uint64_t m_position = 0;
};

}  // namespace av::wave
