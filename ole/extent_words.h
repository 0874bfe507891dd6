#pragma once

#include <cstdint>
#include <optional>

namespace av::ole {

/// A persisted extent as it lies in a stream: three little-endian words, as every Windows is.
struct ExtentWords {
  std::uint32_t version = 0;
  std::uint32_t cx = 0;
  std::uint32_t cy = 0;
};

/// The version that is written. Readers refuse what a later version wrote.
inline constexpr std::uint32_t extentVersion = 0x00000800;

/// The largest word that an extent can have: LONG_MAX of Windows.
inline constexpr std::uint32_t largestExtent = 0x7FFFFFFF;

/// Reads twelve bytes and not one more. `read(to, bytes, got)` reads like IStream::Read and returns its HRESULT.
/// The words are those of a stream that a control could have written; otherwise they are missing, and `result` is the
/// stream's own failure or `refused`.
template <class Result, class Read>
std::optional<ExtentWords> readExtentWords(Read&& read, Result refused, Result& result) {
  ExtentWords words;
  std::uint32_t got = 0;
  // The version first and alone: what follows it in a foreign stream is not ours to consume.
  result = read(&words.version, std::uint32_t{sizeof words.version}, got);
  if (result < 0) return std::nullopt;
  if (got != sizeof words.version || words.version > extentVersion) {
    result = refused;
    return std::nullopt;
  }
  constexpr std::uint32_t lengthBytes = sizeof words - sizeof words.version;
  result = read(&words.cx, lengthBytes, got);
  if (result < 0) return std::nullopt;
  if (got != lengthBytes || words.cx > largestExtent || words.cy > largestExtent) {
    result = refused;
    return std::nullopt;
  }
  return words;
}

}  // namespace av::ole
