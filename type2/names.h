#pragma once

#include <cstdint>
#include <optional>
#include <string_view>

namespace av::type2 {

/// The dispatch identifier behind a name of the level meter, upper and lower case alike: of each of its 27 properties the
/// name and the names of both accessors ("LineType", "get_LineType", "put_LineType"), the parameter name "pVal", which
/// is argument 0, and the five methods. Empty for any other name.
std::optional<std::int32_t> dispIdOfName(std::wstring_view name) noexcept;

}  // namespace av::type2
