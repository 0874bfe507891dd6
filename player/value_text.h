#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace avplayer {

// Property values as text, the same in the panel and in the preset file. UTF-8. Parsing ignores blanks around the text
// and is empty where it is not what is asked for.

std::string formatWhole(std::int32_t value);
std::optional<std::int32_t> parseWhole(std::string_view text);

/// As short as the value allows without becoming another one.
std::string formatReal(float value);
/// Decimal point or comma.
std::optional<float> parseReal(std::string_view text);

/// "true" and "false"; also read: 1, 0, yes, no, on, off in any case.
std::string formatBoolean(bool value);
std::optional<bool> parseBoolean(std::string_view text);

/// An automation colour: "#RRGGBB", or "system N" for one that the system's settings decide.
std::string formatColour(std::uint32_t oleColour);
/// The '#' may be left out.
std::optional<std::uint32_t> parseColour(std::string_view text);

/// What a font is made of.
struct FontText {
  std::string face;
  double points = 8;
  bool bold = false;
  bool italic = false;
  bool underline = false;
  bool strikeout = false;
  friend bool operator==(const FontText&, const FontText&) = default;
};

/// Such as "Arial, 7 pt, bold italic".
std::string formatFont(const FontText& font);
/// The face must not be empty and the size lie from 1 to 200 points.
std::optional<FontText> parseFont(std::string_view text);

/// `text` without blanks at its ends.
std::string_view trimmed(std::string_view text);

/// Whether two texts are the same but for the case of the Latin letters.
bool sameWord(std::string_view a, std::string_view b);

}  // namespace avplayer
