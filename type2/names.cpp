#include "type2/names.h"

#include "type2/settings.h"

#include <algorithm>

namespace av::type2 {
namespace {

struct NamedId {
  std::string_view name;
  std::int32_t dispId;
};

constexpr NamedId otherNames[] = {
    {"pVal", 0},          {"_OnTimer", 0xaae61},           {"SendAudioData", 0xaae62},
    {"Repaint", 0xaae63}, {"SetAdditionalParam", 0xaae64}, {"GetAdditionalParam", 0xaae65},
};

/// The names are ASCII, and so is the only case that is folded.
constexpr wchar_t lower(wchar_t letter) noexcept {
  return letter >= L'A' && letter <= L'Z' ? static_cast<wchar_t>(letter - L'A' + L'a') : letter;
}

bool isSameName(std::wstring_view asked, std::string_view known) noexcept {
  return std::equal(asked.begin(), asked.end(), known.begin(), known.end(), [](wchar_t a, char b) {
    return lower(a) == lower(static_cast<wchar_t>(static_cast<unsigned char>(b)));
  });
}

}  // namespace

std::optional<std::int32_t> dispIdOfName(std::wstring_view name) noexcept {
  for (const NamedId& other : otherNames) {
    if (isSameName(name, other.name)) return other.dispId;
  }
  constexpr std::size_t prefixLength = 4;
  const std::wstring_view prefix = name.substr(0, prefixLength);
  if (isSameName(prefix, "get_") || isSameName(prefix, "put_")) name.remove_prefix(prefixLength);
  for (const PropertyRow* row : rule::table) {
    if (isSameName(name, row->name)) return row->dispId;
  }
  return std::nullopt;
}

}  // namespace av::type2
