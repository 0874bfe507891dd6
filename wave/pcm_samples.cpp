#include "wave/pcm_samples.h"

#include <algorithm>
#include <bit>
#include <cmath>

namespace av::wave {

namespace {

constexpr unsigned offset8 = 128;  // silence of unsigned samples

double fullScale(unsigned bits) noexcept { return static_cast<double>(std::uint64_t{1} << (bits - 1)); }

void appendLittleEndian(std::uint32_t value, unsigned bytes, std::vector<std::uint8_t>& to) {
  for (unsigned i = 0; i < bytes; ++i) to.push_back(static_cast<std::uint8_t>(value >> (8 * i)));
}

std::uint64_t littleEndian(const std::uint8_t* bytes, unsigned count) noexcept {
  std::uint64_t value = 0;
  for (unsigned i = 0; i < count; ++i) value |= static_cast<std::uint64_t>(bytes[i]) << (8 * i);
  return value;
}

double floatAt(const std::uint8_t* bytes, unsigned bits) noexcept {
  if (bits == 64) return std::bit_cast<double>(littleEndian(bytes, 8));
  return static_cast<double>(std::bit_cast<float>(static_cast<std::uint32_t>(littleEndian(bytes, 4))));
}

}  // namespace

IntegerRange integerRange(unsigned bits) noexcept {
  if (bits == 8) return {0, 255};
  return {-fullScale(bits), fullScale(bits) - 1};
}

std::int32_t integerFromUnit(double value, unsigned bits) noexcept {
  const double offset = bits == 8 ? offset8 : 0;
  if (std::isnan(value)) return static_cast<std::int32_t>(offset);
  const IntegerRange range = integerRange(bits);
  const double rounded = std::floor(value * fullScale(bits) + 0.5) + offset;
  return static_cast<std::int32_t>(std::clamp(rounded, range.lowest, range.highest));
}

void storeInteger(std::int32_t value, unsigned bits, std::vector<std::uint8_t>& stored) {
  const auto raw = static_cast<std::uint32_t>(value);
  if (bits == 24) appendLittleEndian(raw << 8, 4, stored);
  else appendLittleEndian(raw, bits / 8, stored);
}

void storePacked(std::span<const std::uint8_t> packed, unsigned bits, std::vector<std::uint8_t>& stored) {
  const std::size_t sampleBytes = bits / 8u;
  const std::span<const std::uint8_t> whole = packed.first(packed.size() - packed.size() % sampleBytes);
  if (bits != 24) {
    stored.insert(stored.end(), whole.begin(), whole.end());
    return;
  }
  stored.reserve(stored.size() + whole.size() / 3 * 4);
  for (std::size_t at = 0; at < whole.size(); at += 3) {
    stored.push_back(0);
    stored.insert(stored.end(), &whole[at], &whole[at] + 3);
  }
}

void storeFloats(std::span<const std::uint8_t> packed, unsigned floatBits, std::vector<std::uint8_t>& stored) {
  const std::size_t sampleBytes = floatBits / 8u;
  const std::size_t count = packed.size() / sampleBytes;
  stored.reserve(stored.size() + count * 4);
  for (std::size_t i = 0; i < count; ++i) {
    const double value = floatAt(&packed[i * sampleBytes], floatBits);
    appendLittleEndian(static_cast<std::uint32_t>(integerFromUnit(value, 32)), 4, stored);
  }
}

double unitSample(std::span<const std::uint8_t> stored, unsigned bits, std::size_t index) noexcept {
  const unsigned width = bits == 24 ? 4 : bits / 8;
  // The sample's bytes at the top of 32 bits, so that its sign bit is the word's.
  auto raw = static_cast<std::uint32_t>(littleEndian(&stored[index * width], width) << (32 - 8 * width));
  if (bits == 8) raw ^= 0x80000000u;
  return static_cast<std::int32_t>(raw) / 2147483648.0;
}

}  // namespace av::wave
