#pragma once

#include <windows.h>

#include <cstdint>
#include <vector>

namespace av::support {

/// A wave format header as 18 bytes, little-endian.
struct WaveHeader {
  unsigned tag = 1;
  unsigned channels = 2;
  unsigned sampleRateHz = 44100;
  unsigned bits = 16;
  unsigned extraBytes = 0;

  std::vector<BYTE> bytes() const {
    std::vector<BYTE> result;
    const auto append = [&](unsigned value, int count) {
      for (int i = 0; i < count; ++i) result.push_back(static_cast<BYTE>(value >> (8 * i)));
    };
    append(tag, 2);
    append(channels, 2);
    append(sampleRateHz, 4);
    append(sampleRateHz * channels * (bits / 8), 4);
    append(channels * (bits / 8), 2);
    append(bits, 2);
    append(extraBytes, 2);
    return result;
  }
};

/// `count` bytes 1, 2, 3, ... that no zeroed memory resembles.
inline std::vector<BYTE> countedBytes(std::size_t count) {
  std::vector<BYTE> result;
  for (std::size_t i = 0; i < count; ++i) result.push_back(static_cast<BYTE>(i % 251 + 1));
  return result;
}

inline std::vector<BYTE> operator+(std::vector<BYTE> left, const std::vector<BYTE>& right) {
  left.insert(left.end(), right.begin(), right.end());
  return left;
}

}  // namespace av::support
