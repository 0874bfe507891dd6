#pragma once

#include "common/property_rule.h"

#include <array>
#include <cstdint>
#include <limits>
#include <optional>

namespace av::type3 {

inline constexpr std::int32_t fewestLines = 4;
inline constexpr std::int32_t mostLines = 200;

/// Everything a host can set on the spectrum analyser, with its defaults, save what belongs to the transform (its length,
/// window and window parameter) and the scale font, an object of the platform.
/// Booleans are automation booleans and come back as they were put; only −1 counts as true. Colours are GDI colour values
/// (0x00BBGGRR), as the system translated them.
struct AnalyserSettings {
  std::int16_t scaleXVisible = -1;
  std::int16_t scaleYVisible = -1;
  std::int32_t scaleYMax = 100;  ///< dB below full scale at the lower end of the columns
  std::int32_t scaleYMin = 0;    ///< dB below full scale at their upper end
  std::uint32_t backColor = 0x000000;
  std::uint32_t backLineHighColor = 0x000055;
  std::uint32_t backLineMidColor = 0x005555;
  std::uint32_t backLineLowColor = 0x005500;
  std::uint32_t lineHighColor = 0x0000FF;
  std::uint32_t lineMidColor = 0x00FFFF;
  std::uint32_t lineLowColor = 0x00FF00;
  std::int32_t midPointPercent = 60;   ///< where the middle zone begins
  std::int32_t highPointPercent = 80;  ///< where the high zone begins
  std::int32_t lineIntervalPx = 2;     ///< between two columns
  std::int32_t spotIntervalPx = 1;     ///< between two segments; 0: columns are not segmented
  std::int32_t spotHeightPx = 2;       ///< of a segment, a spot and a tick
  std::int32_t lineCount = 60;
  std::int16_t tickVisible = -1;
  std::int32_t dynamicRangeDb = 96;     ///< the most labels that the level scale may have
  std::uint32_t scaleColor = 0x000000;  ///< the shell reads the system's button-face colour once at construction
  std::uint32_t borderColor = 0x000000;
  std::int32_t borderType = 0;
  std::int16_t autoRepaint = -1;
  std::int32_t xScaleType = 0;  ///< 0 linear, 1 logarithmic
  std::uint32_t tickColor = 0xFFFF00;
  std::int32_t alignmentX = 0;  ///< 1: mirrored about the centre column
  std::int32_t alignmentY = 0;  ///< 1: columns grow up and down from the middle
  std::int32_t viewType = 0;    ///< 0 columns, 2 spots; 1 and 3 the same with gradients
  std::int16_t autoSize = -1;   ///< nothing but a redraw follows it

  friend bool operator==(const AnalyserSettings&, const AnalyserSettings&) = default;
};

/// Whether an automation boolean switches something on in this control: only −1 does.
constexpr bool isTrue(std::int16_t boolean) noexcept { return boolean == -1; }

/// Whether a put of `FFTLength` is accepted: every power of two, and 0.
/// **With 0, 1 and 2 the next block ends the process**, which is how hosts have always known it.
constexpr bool isFftLength(std::int32_t value) noexcept { return value >= 0 && (value & (value - 1)) == 0; }

/// The analyser's property table. Rows that are a `PropertyRule` are served by `applyPut` and `applyGet`, colours by
/// `putColour`; the bare rows go to the transform, to the platform's font, or are read only.
///
/// `relayout` is followed by a rebuild of the column images here, whatever the row says.
namespace rule {

template <class Wire>
using AnalyserRule = PropertyRule<AnalyserSettings, Wire>;
using LongRule = AnalyserRule<std::int32_t>;
using BoolRule = AnalyserRule<std::int16_t>;
using ColorRule = AnalyserRule<std::uint32_t>;

inline constexpr Effects relayoutAndRedraw = Effects::relayout | Effects::redraw;
inline constexpr Effects rebuildAndRedraw = Effects::rebuild | Effects::redraw;
inline constexpr PropertyCheck<std::int32_t> notNegative = refuseOutside(0, std::numeric_limits<std::int32_t>::max());
inline constexpr PropertyCheck<std::int32_t> percent = refuseOutside(0, 100);

inline constexpr BoolRule scaleXVisible{
    {"ScaleXVisible", 6, relayoutAndRedraw}, &AnalyserSettings::scaleXVisible, plainCodec<std::int16_t>};
inline constexpr BoolRule scaleYVisible{
    {"ScaleYVisible", 7, relayoutAndRedraw}, &AnalyserSettings::scaleYVisible, plainCodec<std::int16_t>};
inline constexpr LongRule scaleYMax{
    {"ScaleYMax", 8, relayoutAndRedraw}, &AnalyserSettings::scaleYMax, plainCodec<std::int32_t>, notNegative};
inline constexpr LongRule scaleYMin{
    {"ScaleYMin", 9, relayoutAndRedraw}, &AnalyserSettings::scaleYMin, plainCodec<std::int32_t>, notNegative};
/// See `isFftLength`. Reallocate: the analysis is made anew for the length; nothing is redrawn.
inline constexpr PropertyRow fftLength{"FFTLength", 10, Effects::reallocate};
/// No rebuild: gaps keep the colour that they were cut in until the images are made anew.
inline constexpr ColorRule backColor{
    {"BackColor", 11, Effects::redraw}, &AnalyserSettings::backColor, plainCodec<std::uint32_t>};
inline constexpr ColorRule backLineHighColor{
    {"BackLineHighColor", 12, rebuildAndRedraw}, &AnalyserSettings::backLineHighColor, plainCodec<std::uint32_t>};
inline constexpr ColorRule backLineMidColor{
    {"BackLineMidColor", 13, rebuildAndRedraw}, &AnalyserSettings::backLineMidColor, plainCodec<std::uint32_t>};
inline constexpr ColorRule backLineLowColor{
    {"BackLineLowColor", 14, rebuildAndRedraw}, &AnalyserSettings::backLineLowColor, plainCodec<std::uint32_t>};
inline constexpr ColorRule lineHighColor{
    {"LineHighColor", 15, rebuildAndRedraw}, &AnalyserSettings::lineHighColor, plainCodec<std::uint32_t>};
inline constexpr ColorRule lineMidColor{
    {"LineMidColor", 16, rebuildAndRedraw}, &AnalyserSettings::lineMidColor, plainCodec<std::uint32_t>};
inline constexpr ColorRule lineLowColor{
    {"LineLowColor", 17, rebuildAndRedraw}, &AnalyserSettings::lineLowColor, plainCodec<std::uint32_t>};
inline constexpr LongRule midPoint{
    {"MidPoint", 18, rebuildAndRedraw}, &AnalyserSettings::midPointPercent, plainCodec<std::int32_t>, percent};
inline constexpr LongRule highPoint{
    {"HighPoint", 19, rebuildAndRedraw}, &AnalyserSettings::highPointPercent, plainCodec<std::int32_t>, percent};
inline constexpr LongRule lineInterval{
    {"LineInterval", 20, rebuildAndRedraw}, &AnalyserSettings::lineIntervalPx, plainCodec<std::int32_t>, notNegative};
inline constexpr LongRule spotInterval{
    {"SpotInterval", 21, rebuildAndRedraw}, &AnalyserSettings::spotIntervalPx, plainCodec<std::int32_t>, notNegative};
inline constexpr LongRule spotHeight{
    {"SpotHeight", 22, rebuildAndRedraw}, &AnalyserSettings::spotHeightPx, plainCodec<std::int32_t>, notNegative};
/// Reallocate: bands and column records are made anew, all silent.
inline constexpr LongRule lineCount{{"LineCount", 23, Effects::reallocate | rebuildAndRedraw},
                                    &AnalyserSettings::lineCount,
                                    plainCodec<std::int32_t>,
                                    refuseOutside(fewestLines, mostLines)};
/// Ticks that are switched off do not fall either: the line list is told.
inline constexpr BoolRule tickVisible{
    {"TickVisible", 24, Effects::redraw}, &AnalyserSettings::tickVisible, plainCodec<std::int16_t>};
inline constexpr LongRule dynamicRange{{"DynamicRange", 25, relayoutAndRedraw},
                                       &AnalyserSettings::dynamicRangeDb,
                                       plainCodec<std::int32_t>,
                                       refuseOutside(0, 200)};
/// The shell keeps the font object and discards the drawing font that was made from the old one.
inline constexpr PropertyRow scaleFont{"ScaleFont", 26, relayoutAndRedraw};
inline constexpr ColorRule scaleColor{
    {"ScaleColor", 27, Effects::redraw}, &AnalyserSettings::scaleColor, plainCodec<std::uint32_t>};
inline constexpr ColorRule borderColor{
    {"BorderColor", 28, Effects::redraw}, &AnalyserSettings::borderColor, plainCodec<std::uint32_t>};
inline constexpr LongRule borderType{
    {"BorderType", 29, Effects::redraw}, &AnalyserSettings::borderType, plainCodec<std::int32_t>, refuseOutside(0, 3)};
/// The next block is seen through the window; nothing is redrawn.
inline constexpr PropertyRow fftWindowType{"FFTWindowType", 30, Effects::none};
inline constexpr PropertyRow fftWindowCount{"FFTWindowCount", 31, Effects::none};
inline constexpr PropertyRow fftWindowName{"FFTWindowName", 32, Effects::none};
inline constexpr PropertyRow hasWindowParam{"HasWindowParam", 33, Effects::none};
inline constexpr PropertyRow fftWindowParam{"FFTWindowParam", 34, Effects::none};
inline constexpr BoolRule autoRepaint{
    {"AutoRepaint", 35, Effects::none}, &AnalyserSettings::autoRepaint, plainCodec<std::int16_t>};
inline constexpr LongRule xScaleType{
    {"XScaleType", 36, Effects::redraw}, &AnalyserSettings::xScaleType, plainCodec<std::int32_t>, refuseOutside(0, 1)};
inline constexpr ColorRule tickColor{
    {"TickColor", 37, Effects::redraw}, &AnalyserSettings::tickColor, plainCodec<std::uint32_t>};
/// The bands are mirrored from the next block on.
inline constexpr LongRule alignmentX{
    {"AlignmentX", 38, Effects::redraw}, &AnalyserSettings::alignmentX, plainCodec<std::int32_t>, refuseOutside(0, 1)};
/// Between layout and redraw the column heights are computed anew from the bands of the last block.
inline constexpr LongRule alignmentY{{"AlignmentY", 39, relayoutAndRedraw},
                                     &AnalyserSettings::alignmentY,
                                     plainCodec<std::int32_t>,
                                     refuseOutside(0, 1)};
inline constexpr LongRule viewType{
    {"ViewType", 40, rebuildAndRedraw}, &AnalyserSettings::viewType, plainCodec<std::int32_t>, refuseOutside(0, 3)};
inline constexpr BoolRule autoSize{
    {"AutoSize", 41, Effects::redraw}, &AnalyserSettings::autoSize, plainCodec<std::int16_t>};

/// Every row, in the order in which the accessors stand in the interface.
inline constexpr std::array<const PropertyRow*, 36> table = {
    &scaleXVisible,     &scaleYVisible,    &scaleYMax,        &scaleYMin,      &fftLength,      &backColor,
    &backLineHighColor, &backLineMidColor, &backLineLowColor, &lineHighColor,  &lineMidColor,   &lineLowColor,
    &midPoint,          &highPoint,        &lineInterval,     &spotInterval,   &spotHeight,     &lineCount,
    &tickVisible,       &dynamicRange,     &scaleFont,        &scaleColor,     &borderColor,    &borderType,
    &fftWindowType,     &fftWindowCount,   &fftWindowName,    &hasWindowParam, &fftWindowParam, &autoRepaint,
    &xScaleType,        &tickColor,        &alignmentX,       &alignmentY,     &viewType,       &autoSize};

}  // namespace rule

/// What a put of a colour answers.
struct ColourPut {
  std::int32_t result = 0;          ///< the translation's own; negative: it failed and nothing has changed
  Effects effects = Effects::none;  ///< what has to follow
};

/// A put of a colour. `translate(oleColour, &colour)` is the system's colour translation (no palette): it writes a GDI
/// colour value and returns an HRESULT. Whatever it writes when it fails is not kept.
template <class Translate>
ColourPut putColour(const rule::ColorRule& rule, AnalyserSettings& settings, std::uint32_t oleColour,
                    Translate&& translate) {
  std::uint32_t colour = 0;
  const std::int32_t result = translate(oleColour, &colour);
  if (result < 0) return {result, Effects::none};
  return {result, *applyPut(rule, settings, colour)};
}

}  // namespace av::type3
