#include "player/win/look.h"

#include "player/value_text.h"
#include "player/win/text.h"

#include <map>

namespace avplayer {

namespace {

std::string presetName(const HostedControl& control, const Setting& setting) {
  return std::string(shortName(control.kind())) + "." + narrow(setting.name());
}

std::string scaledText(const std::string& text, int fromDpi, int toDpi) {
  const auto value = parseWhole(text);
  return value ? formatWhole(MulDiv(*value, toDpi, fromDpi)) : text;
}

using Wanted = std::map<std::string, std::string>;

/// Puts what differs; what failed goes to `problems`.
void putDifferences(HostedControl& control, const Wanted& wanted, LookProblems& problems) {
  for (const Setting& setting : control.settings()) {
    if (!setting.inPresets()) continue;
    const auto found = wanted.find(presetName(control, setting));
    std::string current;
    if (found == wanted.end() || (SUCCEEDED(control.get(setting, current).result) && current == found->second))
      continue;
    const Answer answer = control.put(setting, found->second);
    if (FAILED(answer.result))
      problems.push_back(wide(found->first) + L" = " + wide(found->second) + L": " + hexText(answer.result) + L" " +
                         answer.text);
  }
}

}  // namespace

Preset captureLook(const Controls& controls, std::string name, int dpi) {
  Preset preset{std::move(name), dpi, {}};
  for (const HostedControl& control : controls) {
    for (const Setting& setting : control.settings()) {
      std::string text;
      if (setting.inPresets() && SUCCEEDED(control.get(setting, text).result) && !text.empty())
        preset.values.push_back({presetName(control, setting), text});
    }
  }
  return preset;
}

LookProblems applyLook(Controls& controls, const Preset& defaults, const Preset& preset, int dpi) {
  Wanted wanted, unknown;
  for (const PresetValue& value : defaults.values) wanted[value.property] = value.value;
  for (const PresetValue& value : preset.values) unknown[value.property] = value.value;
  for (const HostedControl& control : controls) {
    for (const Setting& setting : control.settings()) {
      const auto found = unknown.find(presetName(control, setting));
      if (found == unknown.end() || !setting.inPresets()) continue;
      const bool length = setting.rule && setting.rule->length;
      wanted[found->first] = length ? scaledText(found->second, preset.dpi, dpi) : found->second;
      unknown.erase(found);
    }
  }
  LookProblems problems;
  for (HostedControl& control : controls) {
    // What one property takes depends on others (the meter's line count on its border), so a second round puts what the
    // first one could not.
    LookProblems early;
    putDifferences(control, wanted, early);
    putDifferences(control, wanted, problems);
  }
  for (const auto& [name, value] : unknown) problems.push_back(L"no property is called " + wide(name));
  return problems;
}

}  // namespace avplayer
