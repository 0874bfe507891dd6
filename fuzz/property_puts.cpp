// Sequences of puts of any values, against the documented ranges: what a get answers, what stays as it was.

#include "fuzz/check.h"
#include "fuzz/input.h"
#include "fuzz/property_tables.h"
#include "fuzz/targets.h"
#include "type2/names.h"

#include <string>
#include <vector>

namespace av::fuzz {
namespace {

template <class Settings, std::size_t count>
void putSome(Input& input, Settings& settings, const std::array<PropertyAccess<Settings>, count>& rows) {
  std::array<std::int64_t, count> known;
  for (std::size_t i = 0; i < count; ++i) known[i] = rows[i].get(settings);
  for (int puts = input.ConsumeIntegralInRange<int>(1, 12); puts > 0; --puts) {
    const auto index = input.ConsumeIntegralInRange<std::size_t>(0, count - 1);
    const auto& row = rows[index];
    const std::int64_t value = row.toWire(anyLong(input));
    const auto expected = row.promise.answer(value);
    const auto effects = row.put(settings, value);
    require(effects.has_value() == expected.has_value(), "values within the range are taken and no others");
    require(!effects || *effects == row.row->effects, "what follows a put is what the table says");
    if (expected) known[index] = *expected;
    for (std::size_t i = 0; i < count; ++i)
      require(rows[i].get(settings) == known[i], "a put changes its own property, a refused one nothing");
  }
}

void putLineColours(Input& input) {
  type1::ViewSettings settings;
  for (int puts = input.ConsumeIntegralInRange<int>(1, 8); puts > 0; --puts) {
    const std::int32_t channel = anyLong(input);
    const auto colour = input.ConsumeIntegral<std::uint32_t>();
    const auto before = settings.textAndLineColors;
    const bool taken = type1::putLineColor(settings, channel, colour).has_value();
    require(taken == (channel >= 0 && channel <= 18), "there are 19 colours");
    require(type1::lineColor(settings, channel) == (taken ? std::optional(colour & 0xFFFFFF) : std::nullopt),
            "a colour comes back without its high byte");
    for (std::int32_t i = 0; i < 19; ++i) {
      const auto index = static_cast<std::size_t>(i);
      require((taken && i == channel) || settings.textAndLineColors[index] == before[index], "the others stay");
    }
  }
}

void limitLines(Input& input) {
  type2::MeterSettings settings;
  settings.lineInterval = std::max(anyLong(input), 0);
  settings.borderWidthPx = anyLong(input);
  const std::int32_t width = anyLong(input);
  const std::int32_t value = anyLong(input);
  std::int64_t limit = 48000;
  if (width > 0) {
    const std::int64_t inner = width - 2 * std::int64_t{settings.borderWidthPx} - 2;
    limit = std::min(limit, settings.lineInterval > 0 ? inner / settings.lineInterval / 2 : inner);
  }
  limit = std::max<std::int64_t>(limit, 3);
  require(type2::clampLineCount(settings, value, width) == std::clamp<std::int64_t>(value, 3, limit),
          "line counts are limited by the inner width");
}

void putColours(Input& input) {
  type3::AnalyserSettings settings;
  const type3::AnalyserSettings before = settings;
  const auto result = input.ConsumeIntegral<std::int32_t>();
  const auto translated = input.ConsumeIntegral<std::uint32_t>();
  const auto put = type3::putColour(type3::rule::tickColor, settings, 7, [&](std::uint32_t, std::uint32_t* colour) {
    *colour = translated;
    return result;
  });
  require(put.result == result, "the translation's answer is passed on");
  require(result < 0 ? settings == before : settings.tickColor == translated, "a failed translation changes nothing");
}

void lookUpLengths(Input& input) {
  const std::int32_t value = anyLong(input);
  std::int64_t power = 1;
  while (power < value) power *= 2;
  require(type3::isFftLength(value) == (value == 0 || (value > 0 && power == value)), "lengths are powers of two or 0");
}

char lower(char letter) { return letter >= 'A' && letter <= 'Z' ? static_cast<char>(letter - 'A' + 'a') : letter; }

/// A name of the table with its case changed, or with a letter more or less, or any text.
void lookUpNames(Input& input) {
  const auto& row = *type2::rule::table[input.ConsumeIntegralInRange<std::size_t>(0, type2::rule::table.size() - 1)];
  static constexpr std::string_view prefixes[] = {"", "get_", "put_", "GET_", "get", "get_put_"};
  const std::string_view prefix = input.PickValueInArray(prefixes);
  std::string known(prefix);
  known += row.name;
  std::string name = input.ConsumeIntegralInRange<int>(0, 7) == 0 ? input.ConsumeRandomLengthString(40) : known;
  const auto flips = input.ConsumeIntegral<std::uint32_t>();
  for (std::size_t i = 0; i < name.size(); ++i)
    if (flips >> i % 32 & 1)
      name[i] = name[i] >= 'a' && name[i] <= 'z' ? static_cast<char>(name[i] - 32) : lower(name[i]);
  const bool cut = input.ConsumeIntegralInRange<int>(0, 7) == 0;
  if (cut && !name.empty()) name.pop_back();

  std::wstring wide;
  for (const char letter : name) wide.push_back(static_cast<wchar_t>(static_cast<unsigned char>(letter)));
  const auto found = type2::dispIdOfName(wide);
  const bool same = std::equal(name.begin(), name.end(), known.begin(), known.end(),
                               [](char a, char b) { return lower(a) == lower(b); });
  if (same && prefix.size() != 3 && prefix.size() != 8) require(found == row.dispId, "a name is found in any case");
  if (!found) return;
  // Whatever is found is one of the names.
  std::string text;
  for (const char letter : name) text.push_back(lower(letter));
  bool listed = text == "pval" || *found >= 0xaae61;
  if (text.starts_with("get_") || text.starts_with("put_")) text.erase(0, 4);
  for (const PropertyRow* each : type2::rule::table) {
    std::string other;
    for (const char letter : each->name) other.push_back(lower(letter));
    listed = listed || (other == text && each->dispId == *found);
  }
  require(listed, "no other name is found");
}

}  // namespace

void propertyPuts(Bytes bytes) {
  Input input(bytes.data(), bytes.size());
  switch (input.ConsumeIntegralInRange<int>(0, 7)) {
    case 0: {
      type1::ViewSettings settings;
      return putSome(input, settings, viewRows);
    }
    case 1: {
      type2::MeterSettings settings;
      return putSome(input, settings, meterRows);
    }
    case 2: {
      type3::AnalyserSettings settings;
      return putSome(input, settings, analyserRows);
    }
    case 3: return putLineColours(input);
    case 4: return limitLines(input);
    case 5: return putColours(input);
    case 6: return lookUpLengths(input);
    default: return lookUpNames(input);
  }
}

}  // namespace av::fuzz
