#pragma once

#include "player/control_kind.h"

#include <cstdint>
#include <span>
#include <string_view>

namespace avplayer {

/// A value that has a name of its own.
struct Choice {
  std::int32_t value;
  std::string_view name;
};

/// What the type library cannot say of a property: the type library has names, types and help texts, this table adds
/// ranges, the names of values, and where on the panel a property belongs. A property without a rule is edited too.
struct PropertyRule {
  ControlKind control;
  std::string_view name;
  std::string_view group;  ///< the heading under which it stands
  std::span<const Choice> choices = {};
  std::string_view unit = {};
  std::int32_t step = 1;        ///< of the arrows beside a number
  bool length = false;          ///< pixels: grows with the display's DPI
  bool inPresets = true;        ///< false: blocks overwrite it, or it is no matter of looks
  std::int32_t firstIndex = 0;  ///< of a property with an index
  std::int32_t lastIndex = 0;
};

/// Null for a property that the table does not know.
const PropertyRule* findRule(ControlKind control, std::string_view name);

/// All rows.
std::span<const PropertyRule> propertyRules();

/// The headings in their order on the panel; a property without a rule stands under the last one.
std::span<const std::string_view> propertyGroups();

/// The heading of a property: that of its rule, or the last one.
std::size_t groupOf(const PropertyRule* rule);

/// The name of a value, or an empty text.
std::string_view choiceName(const PropertyRule* rule, std::int32_t value);

}  // namespace avplayer
