#include "player/value_text.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>

namespace avplayer {

namespace {

constexpr std::uint32_t systemColourFlag = 0x80000000u;

bool isBlank(char c) { return c == ' ' || c == '\t' || c == '\r' || c == '\n'; }
char lowered(char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c; }

template <class Number>
std::string formatNumber(Number value) {
  std::array<char, 64> buffer{};
  const auto* end = std::to_chars(buffer.data(), buffer.data() + buffer.size(), value).ptr;
  return {static_cast<const char*>(buffer.data()), end};
}

/// The whole text as one number.
template <class Number, class... Base>
std::optional<Number> parseNumber(std::string_view text, Base... base) {
  text = trimmed(text);
  if (text.size() > 1 && text[0] == '+' && text[1] != '-') text.remove_prefix(1);
  Number value{};
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value, base...);
  if (error != std::errc() || end != text.data() + text.size() || text.empty()) return std::nullopt;
  return value;
}

std::optional<double> parseDouble(std::string_view text) {
  std::string number(trimmed(text));
  if (std::count(number.begin(), number.end(), ',') == 1 && number.find('.') == std::string::npos)
    std::replace(number.begin(), number.end(), ',', '.');
  const auto value = parseNumber<double>(number);
  return value && std::isfinite(*value) ? value : std::nullopt;
}

/// Takes the text up to the next `separator` off `rest`.
std::string_view takeField(std::string_view& rest, char separator) {
  const std::size_t end = std::min(rest.find(separator), rest.size());
  const std::string_view field = rest.substr(0, end);
  rest.remove_prefix(std::min(end + 1, rest.size()));
  return trimmed(field);
}

bool readStyle(FontText& font, std::string_view word) {
  if (sameWord(word, "bold")) font.bold = true;
  else if (sameWord(word, "italic")) font.italic = true;
  else if (sameWord(word, "underline")) font.underline = true;
  else if (sameWord(word, "strikeout")) font.strikeout = true;
  else return false;
  return true;
}

}  // namespace

std::string_view trimmed(std::string_view text) {
  while (!text.empty() && isBlank(text.front())) text.remove_prefix(1);
  while (!text.empty() && isBlank(text.back())) text.remove_suffix(1);
  return text;
}

bool sameWord(std::string_view a, std::string_view b) {
  return std::equal(a.begin(), a.end(), b.begin(), b.end(), [](char x, char y) { return lowered(x) == lowered(y); });
}

std::string formatWhole(std::int32_t value) { return formatNumber(value); }
std::optional<std::int32_t> parseWhole(std::string_view text) { return parseNumber<std::int32_t>(text); }

std::string formatReal(float value) { return formatNumber(value); }

std::optional<float> parseReal(std::string_view text) {
  const auto value = parseDouble(text);
  if (!value) return std::nullopt;
  const float narrow = static_cast<float>(*value);
  return std::isfinite(narrow) ? std::optional(narrow) : std::nullopt;
}

std::string formatBoolean(bool value) { return value ? "true" : "false"; }

std::optional<bool> parseBoolean(std::string_view text) {
  const std::string_view word = trimmed(text);
  for (const std::string_view yes : {"true", "yes", "on", "1"})
    if (sameWord(word, yes)) return true;
  for (const std::string_view no : {"false", "no", "off", "0"})
    if (sameWord(word, no)) return false;
  return std::nullopt;
}

std::string formatColour(std::uint32_t oleColour) {
  if (oleColour & systemColourFlag) return "system " + formatNumber(oleColour & 0xFF);
  constexpr char digits[] = "0123456789ABCDEF";
  std::string text = "#";
  for (const int shift : {4, 0, 12, 8, 20, 16}) text += digits[oleColour >> shift & 15];  // the lowest byte is red
  return text;
}

std::optional<std::uint32_t> parseColour(std::string_view text) {
  text = trimmed(text);
  constexpr std::string_view system = "system ";
  if (text.size() > system.size() && sameWord(text.substr(0, system.size()), system)) {
    const auto number = parseNumber<std::uint32_t>(text.substr(system.size()));
    return number && *number <= 0xFF ? std::optional(systemColourFlag | *number) : std::nullopt;
  }
  if (!text.empty() && text[0] == '#') text.remove_prefix(1);
  if (text.size() != 6 || text.find_first_not_of("0123456789ABCDEFabcdef") != std::string_view::npos)
    return std::nullopt;
  const auto rgb = parseNumber<std::uint32_t>(text, 16);
  if (!rgb) return std::nullopt;
  return (*rgb & 0xFF) << 16 | (*rgb & 0xFF00) | *rgb >> 16;
}

std::string formatFont(const FontText& font) {
  std::string text = font.face + ", " + formatNumber(font.points) + " pt";
  std::string styles;
  const auto add = [&styles](bool on, const char* word) {
    if (!on) return;
    if (!styles.empty()) styles += ' ';
    styles += word;
  };
  add(font.bold, "bold");
  add(font.italic, "italic");
  add(font.underline, "underline");
  add(font.strikeout, "strikeout");
  return styles.empty() ? text : text + ", " + styles;
}

std::optional<FontText> parseFont(std::string_view text) {
  FontText font;
  font.face = std::string(takeField(text, ','));
  std::string_view size = takeField(text, ',');
  if (size.size() > 2 && sameWord(size.substr(size.size() - 2), "pt")) size.remove_suffix(2);
  const auto points = parseDouble(size);
  if (font.face.empty() || !points || *points < 1 || *points > 200) return std::nullopt;
  font.points = *points;
  text = trimmed(text);
  while (!text.empty()) {
    const std::string_view word = takeField(text, ' ');
    if (!word.empty() && !readStyle(font, word)) return std::nullopt;
  }
  return font;
}

}  // namespace avplayer
