#pragma once

#include "common/property_rule.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <optional>

namespace av::fuzz {

/// What the documentation promises of a property: which values it takes and what a get answers then.
struct Promise {
  enum class Kind { asGiven, clamped, refused, colour, windowSize };
  Kind kind = Kind::asGiven;
  std::int64_t lowest = 0;
  std::int64_t highest = 0;

  /// What a get answers after a put of `value`; empty where the put is refused.
  std::optional<std::int64_t> answer(std::int64_t value) const {
    switch (kind) {
      case Kind::clamped: return std::clamp(value, lowest, highest);
      case Kind::refused: return value < lowest || value > highest ? std::nullopt : std::optional(value);
      case Kind::colour: return value & 0xFFFFFF;
      case Kind::windowSize: return nearestPowerOfTwo(std::clamp<std::int64_t>(value, 64, 16384));
      default: return value;
    }
  }

 private:
  /// On the logarithmic scale: 2^k for values from 2^(k − 0.5) on, whose squares are 2^(2k − 1).
  static std::int64_t nearestPowerOfTwo(std::int64_t value) {
    std::int64_t power = 64;
    while (value * value >= 2 * power * power) power *= 2;
    return power;
  }
};

inline constexpr Promise asGiven{};
inline constexpr Promise swappedColour{Promise::Kind::colour};
inline constexpr Promise nearestWindowSize{Promise::Kind::windowSize};
constexpr Promise clampedTo(std::int64_t lowest, std::int64_t highest) {
  return {Promise::Kind::clamped, lowest, highest};
}
constexpr Promise refusedOutside(std::int64_t lowest, std::int64_t highest) {
  return {Promise::Kind::refused, lowest, highest};
}
inline constexpr std::int64_t noLimit = std::numeric_limits<std::int32_t>::max();

/// A row of a property table whose value type does not matter any more.
template <class Settings>
struct PropertyAccess {
  const PropertyRow* row;
  Promise promise;
  std::int64_t (*toWire)(std::int32_t);  ///< what a host's number is on the interface
  std::optional<Effects> (*put)(Settings&, std::int64_t);
  std::int64_t (*get)(const Settings&);
};

template <const auto& rule, class Settings, class Wire, class Field>
constexpr PropertyAccess<Settings> accessTo(const PropertyRule<Settings, Wire, Field>&, Promise promise) {
  return {&rule, promise, [](std::int32_t value) { return static_cast<std::int64_t>(static_cast<Wire>(value)); },
          [](Settings& settings, std::int64_t value) { return applyPut(rule, settings, static_cast<Wire>(value)); },
          [](const Settings& settings) { return static_cast<std::int64_t>(applyGet(rule, settings)); }};
}

/// The row of a rule, with what it promises.
template <const auto& rule>
constexpr auto access(Promise promise = asGiven) {
  return accessTo<rule>(rule, promise);
}

}  // namespace av::fuzz
