#pragma once

#include <cstddef>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace avplayer {

// Looks of all three controls, saved by name. The file is text, UTF-8, one value a line:
//
//   # a remark
//   [Evening]
//   dpi = 96
//   View.BackColor = #0D1117
//   View.LineColor(1) = #58A6FF
//   Meter.LineType = 1

/// One line: a property of a control and its value as text.
struct PresetValue {
  std::string property;  ///< such as "View.LineColor(1)"
  std::string value;
  friend bool operator==(const PresetValue&, const PresetValue&) = default;
};

struct Preset {
  std::string name;
  int dpi = 96;  ///< of the display that its lengths in pixels were chosen on
  std::vector<PresetValue> values;
  friend bool operator==(const Preset&, const Preset&) = default;
};

/// A line that could not be read, counted from 1.
struct PresetProblem {
  std::size_t line = 0;
  std::string text;
};

struct PresetFile {
  std::vector<Preset> presets;
  std::vector<PresetProblem> problems;
};

/// Reads what can be read: a line that makes no sense becomes a problem and is left out. Of two presets of the same name
/// and of two values of the same property the later one counts.
PresetFile parsePresets(std::string_view text);

/// The text that `parsePresets` reads back as the same presets.
std::string formatPresets(std::span<const Preset> presets);

/// Whether a preset may be called so: 1 to 60 bytes without control characters and brackets, no blank at the ends.
bool isPresetName(std::string_view name);

/// The preset of that name, or null. Names differ by case.
const Preset* findPreset(std::span<const Preset> presets, std::string_view name);

}  // namespace avplayer
