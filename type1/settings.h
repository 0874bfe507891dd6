#pragma once

#include "common/property_rule.h"
#include "common/relaxed.h"
#include "gfx/argb.h"
#include "gfx/saturate.h"

#include <array>
#include <cstdint>
#include <optional>

namespace av::type1 {

inline constexpr int maxChannels = 18;

/// Everything a host can set on the view, with its defaults, save the scale font (an object of the platform).
/// Booleans are automation booleans (0 or −1 from well-behaved hosts) and come back as they were put.
/// `Relaxed` fields are those that the analysis uses, which may run on a thread of the host's.
struct ViewSettings {
  Relaxed<std::int32_t> visualizationType = 1;
  Relaxed<std::int16_t> visualizationSmooth = std::int16_t{-1};
  Argb backColor = opaqueBlack;
  Argb gridColor = argbFromRgb(169, 169, 169);
  Argb scaleColor = opaqueBlack;  ///< the shell reads the system's button-face colour once at construction
  Argb borderColor = opaqueBlack;
  /// Index 0 is the text colour, index c the line colour of channel c − 1: hosts rely on the shared table.
  // clang-format off
  std::array<Argb, maxChannels + 1> textAndLineColors = {
      opaqueBlack,
      argbFromRgb(240, 128, 128), argbFromRgb(255, 255, 0), argbFromRgb(0, 128, 0),
      argbFromRgb(0, 0, 255),     argbFromRgb(138, 43, 226), argbFromRgb(0, 255, 255),
      argbFromRgb(255, 140, 0),   argbFromRgb(255, 0, 255),  argbFromRgb(64, 224, 208),
      opaqueBlack, opaqueBlack, opaqueBlack, opaqueBlack, opaqueBlack,
      opaqueBlack, opaqueBlack, opaqueBlack, opaqueBlack};
  // clang-format on
  std::int16_t scaleXVisible = -1;
  std::int16_t scaleYVisible = -1;
  std::int32_t scaleYMin = 0;    ///< percent of the dynamic range
  std::int32_t scaleYMax = 100;  ///< percent of the dynamic range
  std::int16_t gridVisible = -1;
  Relaxed<double> dynamicRangeDb = 90.308733622833976;  ///< 20·log10(32767); every accepted block overwrites it
  std::int32_t borderType = 0;
  Relaxed<std::int32_t> fftWindowSize = 1024;  ///< N: a power of two from 64 to 16384
  Relaxed<std::int32_t> fftWindowType = 0;
  std::int32_t fftViewType = 1;
};

inline constexpr std::int32_t minWindowSize = 64;
inline constexpr std::int32_t maxWindowSize = 16384;

/// The transform length that a put of `FFTWindowSize` gives: clamped to 64 .. 16384, then the power of two that is nearest
/// on a logarithmic scale (midpoints at 2^(k + 0.5): 90 gives 64, 91 gives 128).
std::int32_t roundWindowSize(std::int32_t value) noexcept;

/// `LineColor(channel)` as an automation colour; empty for an index outside 0 .. 18. Index 0 is the text colour.
std::optional<std::uint32_t> lineColor(const ViewSettings& settings, std::int32_t channel) noexcept;

/// Puts `LineColor(channel)`; empty, with nothing changed, for an index outside 0 .. 18.
std::optional<Effects> putLineColor(ViewSettings& settings, std::int32_t channel, std::uint32_t oleColor) noexcept;

/// The view's property table. Rows that are a `PropertyRule` are served by `applyPut` and `applyGet`; the bare rows
/// (`TextColor`, `LineColor`, `ScaleFont`) by functions of their own.
namespace rule {

template <class Wire, class Field = Wire>
using ViewRule = PropertyRule<ViewSettings, Wire, Field>;
using LongRule = ViewRule<std::int32_t>;
using SharedLongRule = ViewRule<std::int32_t, Relaxed<std::int32_t>>;
using BoolRule = ViewRule<std::int16_t>;
using ColorRule = ViewRule<std::uint32_t>;

inline constexpr Effects relayoutAndRedraw = Effects::relayout | Effects::redraw;

/// The put runs wholly under the drawing lock (after the control's mutex).
inline constexpr SharedLongRule visualizationType{{"VisualizationType", 5, Effects::reset | relayoutAndRedraw},
                                                  &ViewSettings::visualizationType,
                                                  plainCodec<std::int32_t>};
inline constexpr ViewRule<std::int16_t, Relaxed<std::int16_t>> visualizationSmooth{
    {"VisualizationSmooth", 6, relayoutAndRedraw}, &ViewSettings::visualizationSmooth, plainCodec<std::int16_t>};
inline constexpr ColorRule backColor{{"BackColor", 10, Effects::redraw}, &ViewSettings::backColor, swappedColourCodec};
inline constexpr ColorRule gridColor{{"GridColor", 11, Effects::redraw}, &ViewSettings::gridColor, swappedColourCodec};
inline constexpr ColorRule scaleColor{
    {"ScaleColor", 12, Effects::redraw}, &ViewSettings::scaleColor, swappedColourCodec};
inline constexpr PropertyRow textColor{"TextColor", 13, Effects::redraw};  ///< `LineColor` at index 0
inline constexpr ColorRule borderColor{
    {"BorderColor", 14, Effects::redraw}, &ViewSettings::borderColor, swappedColourCodec};
inline constexpr PropertyRow lineColor{"LineColor", 15, Effects::redraw};  ///< see `putLineColor`
inline constexpr BoolRule scaleXVisible{
    {"ScaleXVisible", 20, relayoutAndRedraw}, &ViewSettings::scaleXVisible, plainCodec<std::int16_t>};
inline constexpr BoolRule scaleYVisible{
    {"ScaleYVisible", 21, relayoutAndRedraw}, &ViewSettings::scaleYVisible, plainCodec<std::int16_t>};
/// The shell keeps the font object; rebuild: the drawing font made from the old one is discarded.
inline constexpr PropertyRow scaleFont{"ScaleFont", 22, Effects::rebuild | relayoutAndRedraw};
inline constexpr LongRule scaleYMin{
    {"ScaleYMin", 23, relayoutAndRedraw}, &ViewSettings::scaleYMin, plainCodec<std::int32_t>};
inline constexpr LongRule scaleYMax{
    {"ScaleYMax", 24, relayoutAndRedraw}, &ViewSettings::scaleYMax, plainCodec<std::int32_t>};
inline constexpr BoolRule gridVisible{
    {"GridVisible", 25, relayoutAndRedraw}, &ViewSettings::gridVisible, plainCodec<std::int16_t>};
/// Whole dB on the interface, a double inside: 90.3 reads as 90.
inline constexpr ViewRule<std::int32_t, Relaxed<double>> dynamicRange{
    {"DynamicRange", 30, relayoutAndRedraw},
    &ViewSettings::dynamicRangeDb,
    {[](std::int32_t decibels) { return static_cast<double>(decibels); }, truncToInt}};
inline constexpr LongRule borderType{
    {"BorderType", 31, Effects::redraw}, &ViewSettings::borderType, plainCodec<std::int32_t>};
/// The stored value is the rounded one. No relayout.
inline constexpr SharedLongRule fftWindowSize{
    {"FFTWindowSize", 40, Effects::reallocate | Effects::reset | Effects::redraw},
    &ViewSettings::fftWindowSize,
    {roundWindowSize, plainCodec<std::int32_t>.toWire}};
/// Nothing follows: the next block uses it.
inline constexpr SharedLongRule fftWindowType{
    {"FFTWindowType", 41, Effects::none}, &ViewSettings::fftWindowType, plainCodec<std::int32_t>};
inline constexpr LongRule fftViewType{
    {"FFTViewType", 42, relayoutAndRedraw}, &ViewSettings::fftViewType, plainCodec<std::int32_t>};

/// Every row, in the order in which the accessors stand in the interface.
inline constexpr std::array<const PropertyRow*, 19> table = {
    &visualizationType, &visualizationSmooth, &backColor,     &gridColor,     &scaleColor, &textColor, &borderColor,
    &lineColor,         &scaleXVisible,       &scaleYVisible, &scaleFont,     &scaleYMin,  &scaleYMax, &gridVisible,
    &dynamicRange,      &borderType,          &fftWindowSize, &fftWindowType, &fftViewType};

}  // namespace rule
}  // namespace av::type1
