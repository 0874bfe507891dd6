#pragma once

#include <FuzzedDataProvider.h>

#include <cstdint>
#include <limits>

namespace av::fuzz {

/// Takes values one after the other from an input; see clang's own header.
using Input = FuzzedDataProvider;

/// A property value as hosts of all kinds put it: sensible ones often, the integers' limits and what lies next to them
/// often enough.
inline std::int32_t anyLong(Input& input) {
  static constexpr std::int32_t edges[] = {0,
                                           1,
                                           -1,
                                           2,
                                           3,
                                           4,
                                           5,
                                           99,
                                           100,
                                           101,
                                           200,
                                           201,
                                           64,
                                           16384,
                                           32766,
                                           32767,
                                           32768,
                                           -2,
                                           -32767,
                                           -32768,
                                           48000,
                                           48001,
                                           999999,
                                           1000000,
                                           std::numeric_limits<std::int32_t>::max(),
                                           std::numeric_limits<std::int32_t>::max() - 1,
                                           std::numeric_limits<std::int32_t>::min(),
                                           std::numeric_limits<std::int32_t>::min() + 1};
  switch (input.ConsumeIntegralInRange<int>(0, 3)) {
    case 0: return input.PickValueInArray(edges);
    case 1: return input.ConsumeIntegralInRange<std::int32_t>(-1000, 40000);
    case 2: return input.ConsumeIntegral<std::int32_t>();
    default: return input.ConsumeIntegralInRange<std::int32_t>(-5, 120);
  }
}

/// An automation boolean: 0, −1 or, rarely, something else.
inline std::int16_t anyBoolean(Input& input) {
  static constexpr std::int16_t usual[] = {0, -1, -1, 1, 2, -32768};
  return input.PickValueInArray(usual);
}

/// Samples a second, the usual ones more often than others.
inline std::uint32_t anySampleRate(Input& input) {
  static constexpr std::uint32_t usual[] = {44100, 48000, 8000, 11025, 22050, 96000, 192000, 0, 1, 0xFFFFFFFF};
  return input.ConsumeBool() ? input.PickValueInArray(usual) : input.ConsumeIntegral<std::uint32_t>();
}

}  // namespace av::fuzz
