#pragma once

#include "common/relaxed.h"
#include "gfx/argb.h"

#include <algorithm>
#include <cstdint>
#include <optional>
#include <string_view>
#include <type_traits>

namespace av {

/// What follows a put once the value is stored, as flags. The shell carries them out in the order in which they stand
/// here, the lowest bit first.
enum class Effects : unsigned {
  none = 0,
  reallocate = 1u << 0,  ///< analysis and point arrays are allocated anew for the stored size
  reset = 1u << 1,       ///< analysis results go back to their reset value
  rebuild = 1u << 2,     ///< prepared pictures or fonts are discarded and made again
  relayout = 1u << 3,    ///< the layout is computed again
  redraw = 1u << 4,      ///< a redraw request
};

constexpr Effects operator|(Effects a, Effects b) noexcept {
  return static_cast<Effects>(static_cast<unsigned>(a) | static_cast<unsigned>(b));
}

/// Whether `effects` contains every flag of `flags`.
constexpr bool has(Effects effects, Effects flags) noexcept {
  return (static_cast<unsigned>(effects) & static_cast<unsigned>(flags)) == static_cast<unsigned>(flags);
}

/// What every row of a property table has, also the rows whose put and get are written out.
struct PropertyRow {
  std::string_view name;
  std::int32_t dispId = 0;
  Effects effects = Effects::none;
};

/// Which values a put accepts.
template <class Wire>
struct PropertyCheck {
  enum class Kind {
    asGiven,  ///< every value, stored as it is
    clamp,    ///< every value, brought to the nearest bound
    refuse,   ///< values inside the bounds only; any other changes nothing
  };
  Kind kind = Kind::asGiven;
  Wire lowest{};   ///< inclusive
  Wire highest{};  ///< inclusive
};

template <class Wire>
constexpr PropertyCheck<Wire> clampTo(Wire lowest, Wire highest) noexcept {
  return {PropertyCheck<Wire>::Kind::clamp, lowest, highest};
}

template <class Wire>
constexpr PropertyCheck<Wire> refuseOutside(Wire lowest, Wire highest) noexcept {
  return {PropertyCheck<Wire>::Kind::refuse, lowest, highest};
}

/// How a value travels between the interface (`Wire`) and the settings (`Stored`).
template <class Wire, class Stored>
struct PropertyCodec {
  Stored (*toStored)(Wire);
  Wire (*toWire)(Stored);
};

/// The value is the same on both sides.
template <class Value>
inline constexpr PropertyCodec<Value, Value> plainCodec{[](Value value) { return value; },
                                                        [](Value value) { return value; }};

/// 0x00BBGGRR on the interface, opaque ARGB in the settings; the system-colour flag is not resolved but lost.
inline constexpr PropertyCodec<std::uint32_t, Argb> swappedColourCodec{argbFromOleColor, oleColorFromArgb};

namespace detail {

template <class T>
struct BareValue {
  using type = T;
};
template <class T>
struct BareValue<Relaxed<T>> {
  using type = T;
};

}  // namespace detail

/// One plain row of a property table: the put checks, converts and stores, the get converts back.
/// `Field` is the settings' member as declared; `Wire` the automation type in portable spelling (long is std::int32_t,
/// VARIANT_BOOL std::int16_t, OLE_COLOR std::uint32_t, float float).
template <class Settings, class Wire, class Field = Wire>
struct PropertyRule : PropertyRow {
  using Stored = typename detail::BareValue<Field>::type;

  Field Settings::*field = nullptr;
  PropertyCodec<Wire, Stored> codec{};
  PropertyCheck<Wire> check{};
};

/// A put: stores the value in its field and returns what has to follow; empty where the value was refused, in which case
/// nothing has changed.
template <class Settings, class Wire, class Field>
constexpr std::optional<Effects> applyPut(const PropertyRule<Settings, Wire, Field>& rule, Settings& settings,
                                          std::type_identity_t<Wire> value) {
  using Kind = typename PropertyCheck<Wire>::Kind;
  const auto& check = rule.check;
  if (check.kind == Kind::refuse && !(value >= check.lowest && value <= check.highest)) return std::nullopt;
  if (check.kind == Kind::clamp) value = std::clamp(value, check.lowest, check.highest);
  settings.*rule.field = rule.codec.toStored(value);
  return rule.effects;
}

/// A get: the stored value as the interface hands it out.
template <class Settings, class Wire, class Field>
constexpr Wire applyGet(const PropertyRule<Settings, Wire, Field>& rule, const Settings& settings) {
  return rule.codec.toWire(settings.*rule.field);
}

}  // namespace av
