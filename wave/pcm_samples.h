#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

namespace av::wave {

inline constexpr unsigned mostChannels = 18;                      // what the controls show
inline constexpr std::uint32_t highestSampleRateHz = 10'000'000;  // beyond any converter: a damaged header
inline constexpr std::uint32_t mostBlockBytes = 0x7FFFFFFF;       // what the controls' buffer interface can say

/// What integer samples of a block are: 8 (unsigned), 16, 24 or 32 bits.
struct PcmFormat {
  std::uint16_t channels = 2;
  std::uint32_t sampleRateHz = 44100;
  std::uint16_t bitsPerSample = 16;

  /// Width of a sample in a block. 24 bits are kept as 32, the lowest eight of them zero: of the controls only the view
  /// reads packed 24-bit samples.
  [[nodiscard]] constexpr unsigned storedBits() const noexcept { return bitsPerSample == 24 ? 32 : bitsPerSample; }
  [[nodiscard]] constexpr std::size_t storedFrameBytes() const noexcept { return channels * (storedBits() / 8u); }
  /// Of a packed frame, as files hold it.
  [[nodiscard]] constexpr std::size_t packedFrameBytes() const noexcept { return channels * (bitsPerSample / 8u); }
  bool operator==(const PcmFormat&) const = default;
};

/// The integers that samples of that width can be: 0 to 255 for 8 bits, else −2^(bits−1) to 2^(bits−1) − 1.
struct IntegerRange {
  double lowest, highest;
};
[[nodiscard]] IntegerRange integerRange(unsigned bits) noexcept;

/// A number of full scale ±1 as an integer of that width: times 2^(bits−1), rounded to nearest (halves upwards), clipped
/// to the range; 8-bit integers count from 128. No number (NaN) is silence.
[[nodiscard]] std::int32_t integerFromUnit(double value, unsigned bits) noexcept;

// Into stored samples. `bits` is the width that the samples have, 8, 16, 24 or 32.

/// Appends one sample on its own integer scale, which it must lie on.
void storeInteger(std::int32_t value, unsigned bits, std::vector<std::uint8_t>& stored);
/// Appends packed little-endian integers; a trailing partial sample is left out.
void storePacked(std::span<const std::uint8_t> packed, unsigned bits, std::vector<std::uint8_t>& stored);
/// Appends little-endian floating-point samples of 32 or 64 bits as integers of 32 bits.
void storeFloats(std::span<const std::uint8_t> packed, unsigned floatBits, std::vector<std::uint8_t>& stored);

/// One stored sample on the scale of −1 to below 1. `index` counts samples, which must be there.
[[nodiscard]] double unitSample(std::span<const std::uint8_t> stored, unsigned bits, std::size_t index) noexcept;

}  // namespace av::wave
