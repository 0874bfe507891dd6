#include "player/preset_file.h"

#include "player/value_text.h"

#include <algorithm>

namespace avplayer {

namespace {

constexpr std::size_t longestName = 60;
constexpr int lowestDpi = 48;
constexpr int highestDpi = 960;
constexpr std::string_view byteOrderMark = "\xEF\xBB\xBF";

bool isPropertyName(std::string_view name) {
  const auto isAllowed = [](char c) {
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') || c == '_' || c == '.' ||
           c == '(' || c == ')';
  };
  const std::size_t dot = name.find('.');
  return dot != std::string_view::npos && dot > 0 && dot + 1 < name.size() &&
         std::all_of(name.begin(), name.end(), isAllowed);
}

bool isValue(std::string_view value) {
  return !value.empty() &&
         std::none_of(value.begin(), value.end(), [](char c) { return static_cast<unsigned char>(c) < 32; });
}

class Reader {
 public:
  PresetFile read(std::string_view text) {
    if (text.starts_with(byteOrderMark)) text.remove_prefix(byteOrderMark.size());
    while (!text.empty()) {
      const std::size_t end = std::min(text.find('\n'), text.size());
      ++m_line;
      readLine(trimmed(text.substr(0, end)));
      text.remove_prefix(std::min(end + 1, text.size()));
    }
    return std::move(m_file);
  }

 private:
  void readLine(std::string_view line) {
    if (line.empty() || line[0] == '#' || line[0] == ';') return;
    if (line[0] == '[') readName(line);
    else readValue(line);
  }

  void readName(std::string_view line) {
    m_inPreset = false;
    const std::string_view name = line.back() == ']' ? line.substr(1, line.size() - 2) : std::string_view();
    if (!isPresetName(name)) return complain("no name of a preset in brackets; its lines are left out");
    const auto sameName = [&](const Preset& preset) { return preset.name == name; };
    std::erase_if(m_file.presets, sameName);
    m_file.presets.push_back({std::string(name), 96, {}});
    m_inPreset = true;
  }

  void readValue(std::string_view line) {
    const std::size_t equals = line.find('=');
    if (equals == std::string_view::npos) return complain("neither [NAME] nor PROPERTY = VALUE");
    if (!m_inPreset) {
      if (m_file.presets.empty() && m_file.problems.empty()) complain("a value before the first [NAME]");
      return;
    }
    const std::string_view property = trimmed(line.substr(0, equals));
    const std::string_view value = trimmed(line.substr(equals + 1));
    if (sameWord(property, "dpi")) return readDpi(value);
    if (!isPropertyName(property)) return complain("no property is called \"" + std::string(property) + "\"");
    if (!isValue(value)) return complain("no value");
    store(property, value);
  }

  void readDpi(std::string_view value) {
    const auto dpi = parseWhole(value);
    if (!dpi || *dpi < lowestDpi || *dpi > highestDpi) return complain("dpi is a number from 48 to 960");
    m_file.presets.back().dpi = *dpi;
  }

  void store(std::string_view property, std::string_view value) {
    std::vector<PresetValue>& values = m_file.presets.back().values;
    const auto same =
        std::find_if(values.begin(), values.end(), [&](const PresetValue& v) { return v.property == property; });
    if (same != values.end()) same->value = value;
    else values.push_back({std::string(property), std::string(value)});
  }

  void complain(std::string text) { m_file.problems.push_back({m_line, std::move(text)}); }

  PresetFile m_file;
  std::size_t m_line = 0;
  bool m_inPreset = false;
};

}  // namespace

PresetFile parsePresets(std::string_view text) { return Reader().read(text); }

std::string formatPresets(std::span<const Preset> presets) {
  std::string text =
      "# Presets of the player of the QELAudioVisualization4 controls. One value a line; # begins a remark.\n";
  for (const Preset& preset : presets) {
    text += "\n[" + preset.name + "]\ndpi = " + formatWhole(preset.dpi) + "\n";
    for (const PresetValue& value : preset.values) text += value.property + " = " + value.value + "\n";
  }
  return text;
}

bool isPresetName(std::string_view name) {
  if (name.empty() || name.size() > longestName || trimmed(name) != name) return false;
  return std::none_of(name.begin(), name.end(),
                      [](char c) { return static_cast<unsigned char>(c) < 32 || c == '[' || c == ']'; });
}

const Preset* findPreset(std::span<const Preset> presets, std::string_view name) {
  const auto found =
      std::find_if(presets.begin(), presets.end(), [&](const Preset& preset) { return preset.name == name; });
  return found == presets.end() ? nullptr : &*found;
}

}  // namespace avplayer
