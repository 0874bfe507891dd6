#pragma once

// WAV files as bytes, written apart from what reads them: every field can be set to anything.

#include <cstdint>
#include <cstring>
#include <string>
#include <vector>

namespace av::support {

using Bytes = std::vector<std::uint8_t>;

inline void append(Bytes& bytes, std::uint64_t value, int count) {
  for (int i = 0; i < count; ++i) bytes.push_back(static_cast<std::uint8_t>(value >> (8 * i)));
}

inline void append(Bytes& bytes, const Bytes& more) { bytes.insert(bytes.end(), more.begin(), more.end()); }

inline void appendName(Bytes& bytes, const char* name) { bytes.insert(bytes.end(), name, name + 4); }

/// The content of a format chunk.
struct WavFormat {
  std::uint16_t tag = 1;
  std::uint16_t channels = 2;
  std::uint32_t rate = 44100;
  std::uint16_t bits = 16;
  int blockAlign = -1;  // −1: as it should be

  Bytes bytes() const {
    const unsigned frame = channels * (bits / 8u);
    Bytes result;
    append(result, tag, 2);
    append(result, channels, 2);
    append(result, rate, 4);
    append(result, rate * frame, 4);
    append(result, blockAlign < 0 ? frame : static_cast<unsigned>(blockAlign), 2);
    append(result, bits, 2);
    return result;
  }
};

inline Bytes extensible(WavFormat format, std::uint16_t subformat) {
  format.tag = 0xFFFE;
  Bytes result = format.bytes();
  append(result, 22, 2);
  append(result, format.bits, 2);
  append(result, 3, 4);
  append(result, subformat, 2);
  append(result, {0x00, 0x00, 0x00, 0x00, 0x10, 0x00, 0x80, 0x00, 0x00, 0xAA, 0x00, 0x38, 0x9B, 0x71});
  return result;
}

inline Bytes chunk(const char* name, const Bytes& content, std::int64_t claimedSize = -1) {
  Bytes result;
  appendName(result, name);
  append(result, claimedSize < 0 ? content.size() : static_cast<std::uint64_t>(claimedSize), 4);
  append(result, content);
  if (content.size() % 2 != 0) result.push_back(0);
  return result;
}

inline Bytes riff(const std::vector<Bytes>& chunks, std::int64_t claimedSize = -1) {
  Bytes body;
  appendName(body, "WAVE");
  for (const Bytes& one : chunks) append(body, one);
  Bytes result;
  appendName(result, "RIFF");
  append(result, claimedSize < 0 ? body.size() : static_cast<std::uint64_t>(claimedSize), 4);
  append(result, body);
  return result;
}

/// A whole file of that format around those samples.
inline Bytes wavFile(const WavFormat& format, const Bytes& samples) {
  return riff({chunk("fmt ", format.bytes()), chunk("data", samples)});
}

/// Little-endian samples.
template <class Sample>
Bytes bytesOf(const std::vector<Sample>& samples) {
  Bytes bytes(samples.size() * sizeof(Sample));
  if (!bytes.empty()) std::memcpy(bytes.data(), samples.data(), bytes.size());
  return bytes;
}

inline std::string asText(const Bytes& bytes) { return {bytes.begin(), bytes.end()}; }

}  // namespace av::support
