#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <span>
#include <vector>

namespace av::test {

/// A picture as plain pixels, 0x00RRGGBB, row by row from the top.
struct PixelsView {
  int width = 0;
  int height = 0;
  std::span<const std::uint32_t> pixels;
};

/// How far two pictures are apart.
struct PictureDifference {
  bool sameSize = false;
  std::size_t pixels = 0;
  std::size_t equalPixels = 0;
  int worstChannel = 255;  ///< largest difference of a red, green or blue value

  double equalPercent() const {
    return pixels ? 100.0 * static_cast<double>(equalPixels) / static_cast<double>(pixels) : 0;
  }

  /// What an accepted picture allows the one drawn today: another build of the maths library or of the text rasteriser
  /// may move a sample or the shade of a letter's edge. A line or a letter that is elsewhere, missing or of another
  /// colour differs by more in a channel than that.
  static constexpr double leastEqualPercent = 99.5;
  static constexpr int mostInAChannel = 48;

  bool matches() const {
    // In whole numbers: 99.5 % is exact.
    return sameSize && 1000 * equalPixels >= 995 * pixels && worstChannel <= mostInAChannel;
  }
};

inline int channelDifference(std::uint32_t a, std::uint32_t b, int shift) {
  return std::abs(static_cast<int>(a >> shift & 0xFF) - static_cast<int>(b >> shift & 0xFF));
}

inline PictureDifference comparePictures(const PixelsView& expected, const PixelsView& actual) {
  PictureDifference found;
  found.sameSize = expected.width == actual.width && expected.height == actual.height &&
                   expected.pixels.size() == actual.pixels.size();
  found.pixels = expected.pixels.size();
  if (!found.sameSize) return found;
  found.worstChannel = 0;
  for (std::size_t i = 0; i < found.pixels; ++i) {
    if (expected.pixels[i] == actual.pixels[i]) {
      ++found.equalPixels;
      continue;
    }
    for (const int shift : {0, 8, 16}) {
      found.worstChannel = std::max(found.worstChannel, channelDifference(expected.pixels[i], actual.pixels[i], shift));
    }
  }
  return found;
}

/// The difference of two pictures of one size for the eye: black where they are equal, and even a difference of 1 in a
/// channel is plain to see.
inline std::vector<std::uint32_t> amplifiedDifference(const PixelsView& expected, const PixelsView& actual) {
  std::vector<std::uint32_t> result(expected.pixels.size());
  for (std::size_t i = 0; i < result.size() && i < actual.pixels.size(); ++i) {
    for (const int shift : {0, 8, 16}) {
      const int off = channelDifference(expected.pixels[i], actual.pixels[i], shift);
      const int shown = off == 0 ? 0 : std::min(255, 80 + 4 * off);
      result[i] |= static_cast<std::uint32_t>(shown) << shift;
    }
  }
  return result;
}

}  // namespace av::test
