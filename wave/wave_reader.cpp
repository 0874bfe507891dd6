#include "wave/wave_reader.h"

#include <algorithm>

namespace av::wave {

WaveReader::WaveReader(ByteSource& file, const WaveHeader& header)
    : m_file(file),
      m_kind(header.kind),
      m_fileBits(header.bitsPerSample),
      m_fileFrameBytes(header.bytesPerFrame()),
      m_dataOffset(header.dataOffset),
      m_frameCount(header.frameCount()),
      m_blockFormat{header.channels, header.sampleRateHz, header.bitsPerSample} {
  if (m_kind == SampleKind::floatingPoint) m_blockFormat.bitsPerSample = 32;
}

std::uint64_t WaveReader::mostFramesOfABlock() const noexcept {
  return mostBlockBytes / std::max(m_fileFrameBytes, m_blockFormat.storedFrameBytes());
}

std::vector<std::uint8_t> WaveReader::read(std::uint64_t frames) {
  const std::uint64_t count = std::min(frames, m_frameCount - m_position);
  std::vector<std::uint8_t> packed(static_cast<std::size_t>(count) * m_fileFrameBytes);
  const std::size_t there = m_file.read(m_dataOffset + m_position * m_fileFrameBytes, packed);
  const std::size_t framesThere = there / m_fileFrameBytes;
  packed.resize(framesThere * m_fileFrameBytes);
  std::vector<std::uint8_t> stored;
  if (m_kind == SampleKind::integer && m_fileBits == m_blockFormat.storedBits()) stored.swap(packed);
  else if (m_kind == SampleKind::integer) storePacked(packed, m_fileBits, stored);
  else storeFloats(packed, m_fileBits, stored);
  m_position += framesThere;
  return stored;
}

}  // namespace av::wave
