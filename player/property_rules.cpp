#include "player/property_rules.h"

#include <algorithm>

namespace avplayer {

namespace {

constexpr std::string_view shape = "Shape";
constexpr std::string_view analysis = "Analysis";
constexpr std::string_view scales = "Scales and border";
constexpr std::string_view ticks = "Peak ticks";
constexpr std::string_view colours = "Colours";
constexpr std::string_view other = "Other";
constexpr std::string_view groups[] = {shape, analysis, scales, ticks, colours, other};

constexpr Choice viewTypes[] = {{1, "1 Waveform"},    {2, "2 Spectrum"}, {3, "3 Bars, red"},   {4, "4 Bars, blue"},
                                {5, "5 Bars, green"}, {6, "6 X-Y"},      {7, "7 X-Y, balance"}};
constexpr Choice centredWindows[] = {
    {0, "0 None"}, {1, "1 Parabolic"}, {2, "2 Triangular"}, {3, "3 Hann"}, {4, "4 Hamming"}};
constexpr Choice viewAxes[] = {{1, "1 Linear"}, {2, "2 Octaves"}};
constexpr Choice meterAxes[] = {{0, "0 Linear"}, {1, "1 Logarithmic"}};
constexpr Choice borders[] = {{0, "0 None"}, {1, "1 Line"}, {2, "2 Two-tone"}, {3, "3 Two-tone, reversed"}};
constexpr Choice lineTypes[] = {{0, "0 Bars"},         {1, "1 Bars, graded"}, {2, "2 Dots"},
                                {3, "3 Dots, graded"}, {4, "4 Graph"},        {5, "5 Graph, smooth"}};
constexpr Choice columnTypes[] = {{0, "0 Columns"}, {1, "1 Columns, graded"}, {2, "2 Spots"}, {3, "3 Spots, graded"}};
constexpr Choice frequencyOrders[] = {{0, "0 Low to high"}, {1, "1 Mirrored"}};
constexpr Choice growths[] = {{0, "0 From the bottom"}, {1, "1 From the middle"}};
// 0, 1 and 2 are taken too, but the next block then ends the process: no choice for a panel.
constexpr Choice transformLengths[] = {{256, "256"},   {512, "512"},   {1024, "1024"},   {2048, "2048"},
                                       {4096, "4096"}, {8192, "8192"}, {16384, "16384"}, {32768, "32768"}};
constexpr Choice viewLengths[] = {{64, "64"},     {128, "128"},   {256, "256"},   {512, "512"},    {1024, "1024"},
                                  {2048, "2048"}, {4096, "4096"}, {8192, "8192"}, {16384, "16384"}};
constexpr Choice analyserWindows[] = {{0, "0 Boxcar"},          {1, "1 Hamming"},       {2, "2 Hann"},
                                      {3, "3 Bartlett"},        {4, "4 Bartlett-Hann"}, {5, "5 Blackman"},
                                      {6, "6 Blackman-Harris"}, {7, "7 Bohman"},        {8, "8 Nuttall"},
                                      {9, "9 Triangular"},      {10, "10 Kaiser"}};

constexpr PropertyRule choice(ControlKind control, std::string_view name, std::string_view group,
                              std::span<const Choice> choices) {
  return {.control = control, .name = name, .group = group, .choices = choices};
}
constexpr PropertyRule number(ControlKind control, std::string_view name, std::string_view group, std::string_view unit,
                              std::int32_t step = 1) {
  return {.control = control, .name = name, .group = group, .unit = unit, .step = step};
}
constexpr PropertyRule length(ControlKind control, std::string_view name, std::string_view group) {
  return {.control = control, .name = name, .group = group, .unit = "px", .length = true};
}
constexpr PropertyRule plain(ControlKind control, std::string_view name, std::string_view group) {
  return {.control = control, .name = name, .group = group};
}
constexpr PropertyRule notSaved(ControlKind control, std::string_view name, std::string_view group,
                                std::string_view unit = {}) {
  return {.control = control, .name = name, .group = group, .unit = unit, .inPresets = false};
}

constexpr auto view = ControlKind::view;
constexpr auto meter = ControlKind::meter;
constexpr auto analyser = ControlKind::analyser;

constexpr PropertyRule rules[] = {
    choice(view, "VisualizationType", shape, viewTypes),
    plain(view, "VisualizationSmooth", shape),
    plain(view, "GridVisible", scales),
    plain(view, "ScaleXVisible", scales),
    plain(view, "ScaleYVisible", scales),
    plain(view, "ScaleFont", scales),
    number(view, "ScaleYMin", scales, "%", 5),
    number(view, "ScaleYMax", scales, "%", 5),
    choice(view, "BorderType", scales, borders),
    notSaved(view, "DynamicRange", analysis, "dB"),
    choice(view, "FFTWindowSize", analysis, viewLengths),
    choice(view, "FFTWindowType", analysis, centredWindows),
    choice(view, "FFTViewType", analysis, viewAxes),
    plain(view, "BackColor", colours),
    plain(view, "GridColor", colours),
    plain(view, "ScaleColor", colours),
    plain(view, "TextColor", colours),
    plain(view, "BorderColor", colours),
    // Index 0 is TextColor, which has a row of its own.
    {.control = view, .name = "LineColor", .group = colours, .firstIndex = 1, .lastIndex = 18},

    choice(meter, "LineType", shape, lineTypes),
    number(meter, "LineCount", shape, {}),
    length(meter, "LineInterval", shape),
    length(meter, "SpotHeight", shape),
    length(meter, "SpotInterval", shape),
    // The two alignments have changed names with the analyser: hosts know them so.
    choice(meter, "AlignmentX", shape, growths),
    choice(meter, "AlignmentY", shape, frequencyOrders),
    notSaved(meter, "AutoSize", shape),
    notSaved(meter, "FFTWindowSize", analysis),
    choice(meter, "FFTWindowType", analysis, centredWindows),
    choice(meter, "FFTViewType", analysis, meterAxes),
    choice(meter, "BorderType", scales, borders),
    length(meter, "BorderWidth", scales),
    plain(meter, "TickVisible", ticks),
    number(meter, "TickDelayTime", ticks, "ms", 50),
    number(meter, "TickReleaseTime", ticks, "ms", 5),
    number(meter, "MidPoint", colours, "%", 5),
    number(meter, "HighPoint", colours, "%", 5),
    plain(meter, "BackColor", colours),
    plain(meter, "BorderColor", colours),
    plain(meter, "LineLowColor", colours),
    plain(meter, "LineMidColor", colours),
    plain(meter, "LineHighColor", colours),
    plain(meter, "BackLineLowColor", colours),
    plain(meter, "BackLineMidColor", colours),
    plain(meter, "BackLineHighColor", colours),
    notSaved(meter, "AutoRepaint", other),

    choice(analyser, "ViewType", shape, columnTypes),
    number(analyser, "LineCount", shape, {}),
    length(analyser, "LineInterval", shape),
    length(analyser, "SpotHeight", shape),
    length(analyser, "SpotInterval", shape),
    choice(analyser, "AlignmentX", shape, frequencyOrders),
    choice(analyser, "AlignmentY", shape, growths),
    choice(analyser, "FFTLength", analysis, transformLengths),
    choice(analyser, "FFTWindowType", analysis, analyserWindows),
    plain(analyser, "FFTWindowName", analysis),
    plain(analyser, "FFTWindowCount", analysis),
    plain(analyser, "HasWindowParam", analysis),
    plain(analyser, "FFTWindowParam", analysis),
    choice(analyser, "XScaleType", analysis, meterAxes),
    number(analyser, "DynamicRange", scales, "dB", 6),
    number(analyser, "ScaleYMin", scales, "dB", 6),
    number(analyser, "ScaleYMax", scales, "dB", 6),
    plain(analyser, "ScaleXVisible", scales),
    plain(analyser, "ScaleYVisible", scales),
    plain(analyser, "ScaleFont", scales),
    choice(analyser, "BorderType", scales, borders),
    plain(analyser, "TickVisible", ticks),
    plain(analyser, "TickColor", ticks),
    number(analyser, "MidPoint", colours, "%", 5),
    number(analyser, "HighPoint", colours, "%", 5),
    plain(analyser, "BackColor", colours),
    plain(analyser, "ScaleColor", colours),
    plain(analyser, "BorderColor", colours),
    plain(analyser, "LineLowColor", colours),
    plain(analyser, "LineMidColor", colours),
    plain(analyser, "LineHighColor", colours),
    plain(analyser, "BackLineLowColor", colours),
    plain(analyser, "BackLineMidColor", colours),
    plain(analyser, "BackLineHighColor", colours),
    plain(analyser, "AutoRepaint", other),
    plain(analyser, "AutoSize", other),
};

}  // namespace

const PropertyRule* findRule(ControlKind control, std::string_view name) {
  const auto found = std::find_if(std::begin(rules), std::end(rules), [&](const PropertyRule& rule) {
    return rule.control == control && rule.name == name;
  });
  return found == std::end(rules) ? nullptr : found;
}

std::span<const PropertyRule> propertyRules() { return rules; }

std::span<const std::string_view> propertyGroups() { return groups; }

std::size_t groupOf(const PropertyRule* rule) {
  const std::string_view group = rule ? rule->group : other;
  return static_cast<std::size_t>(std::find(std::begin(groups), std::end(groups), group) - std::begin(groups));
}

std::string_view choiceName(const PropertyRule* rule, std::int32_t value) {
  if (!rule) return {};
  for (const Choice& choice : rule->choices)
    if (choice.value == value) return choice.name;
  return {};
}

}  // namespace avplayer
