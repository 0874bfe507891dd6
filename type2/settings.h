#pragma once

#include "common/property_rule.h"
#include "common/relaxed.h"
#include "gfx/argb.h"

#include <array>
#include <cstdint>
#include <limits>

namespace av::type2 {

inline constexpr std::int32_t fewestLines = 3;
/// No block is longer: more lines than frames could never show anything.
inline constexpr std::int32_t mostLines = 48000;

/// Everything a host can set on the level meter, with its defaults, save `LineCount`, which the line list holds, and
/// `AutoRepaint`, which is always on.
/// Booleans are automation booleans (0 or −1 from well-behaved hosts) and come back as they were put.
/// `Relaxed` fields are those that the analysis uses, which may run on a thread of the host's.
struct MeterSettings {
  std::int32_t lineType = 0;
  std::int32_t lineInterval = 1;  ///< pixels between two lines
  Argb backColor = opaqueBlack;
  Argb borderColor = opaqueBlack;
  Argb lineLowColor = argbFromRgb(0, 255, 0);
  Argb lineMidColor = argbFromRgb(255, 255, 0);
  Argb lineHighColor = argbFromRgb(255, 0, 0);
  Argb backLineLowColor = argbFromRgb(0, 85, 0);
  Argb backLineMidColor = argbFromRgb(85, 85, 0);
  Argb backLineHighColor = argbFromRgb(85, 0, 0);
  std::int32_t tickDelayTimeMs = 200;  ///< lines that are made later hold for 1000 ms all the same
  std::int32_t tickReleaseTimeMs = 10;
  std::int16_t tickVisible = 1;   ///< on for any value but 0; the first get answers 1, not −1
  std::int32_t spotHeightPx = 2;  ///< height of a segment; of the pen in the graphs
  std::int32_t spotIntervalPx = 1;
  std::int32_t midPointPercent = 60;   ///< where the middle zone begins
  std::int32_t highPointPercent = 80;  ///< where the high zone begins
  Relaxed<std::int32_t> alignmentY = 0;
  std::int32_t alignmentX = 0;
  std::int32_t borderType = 0;
  std::int32_t borderWidthPx = 0;
  std::int16_t autoSize = 0;
  Relaxed<std::int32_t> fftWindowSize = 256;  ///< every accepted block overwrites it with its analysis length
  Relaxed<std::int32_t> fftWindowType = 3;
  Relaxed<std::int32_t> fftViewType = 0;
};

/// `AutoRepaint` as every get answers it: the put does nothing, hosts rely on the timer's repaint.
inline constexpr std::int16_t autoRepaint = -1;

/// The line count that a put of `value` gives in a control of `widthPx` pixels: at least 3; where the width is known
/// (above 0), at most half the inner width over `LineInterval`, whole numbers in that order, or one line a pixel where
/// the interval is 0; never above `mostLines`. A limit below 3 is 3.
std::int32_t clampLineCount(const MeterSettings& settings, std::int32_t value, int widthPx) noexcept;

/// The meter's property table. Rows that are a `PropertyRule` are served by `applyPut` and `applyGet`. A put of
/// `LineCount` goes to the line list, one of `AutoRepaint` nowhere; the three tick rows store and tell the line list.
namespace rule {

template <class Wire, class Field = Wire>
using MeterRule = PropertyRule<MeterSettings, Wire, Field>;
using LongRule = MeterRule<std::int32_t>;
using SharedLongRule = MeterRule<std::int32_t, Relaxed<std::int32_t>>;
using BoolRule = MeterRule<std::int16_t>;
using ColorRule = MeterRule<std::uint32_t>;

inline constexpr Effects relayoutAndRedraw = Effects::relayout | Effects::redraw;
inline constexpr Effects rebuildAndRedraw = Effects::rebuild | Effects::redraw;
inline constexpr PropertyCheck<std::int32_t> notNegative = clampTo(0, std::numeric_limits<std::int32_t>::max());
inline constexpr PropertyCheck<std::int32_t> percent = clampTo(0, 100);

inline constexpr LongRule lineType{
    {"LineType", 7, Effects::rebuild | relayoutAndRedraw}, &MeterSettings::lineType, plainCodec<std::int32_t>};
inline constexpr LongRule lineInterval{
    {"LineInterval", 8, relayoutAndRedraw}, &MeterSettings::lineInterval, plainCodec<std::int32_t>, notNegative};
inline constexpr PropertyRow lineCount{"LineCount", 9, relayoutAndRedraw};  ///< see `clampLineCount`
inline constexpr ColorRule backColor{
    {"BackColor", 11, rebuildAndRedraw}, &MeterSettings::backColor, swappedColourCodec};
inline constexpr ColorRule borderColor{
    {"BorderColor", 13, Effects::redraw}, &MeterSettings::borderColor, swappedColourCodec};
inline constexpr ColorRule lineLowColor{
    {"LineLowColor", 14, rebuildAndRedraw}, &MeterSettings::lineLowColor, swappedColourCodec};
inline constexpr ColorRule lineMidColor{
    {"LineMidColor", 15, rebuildAndRedraw}, &MeterSettings::lineMidColor, swappedColourCodec};
inline constexpr ColorRule lineHighColor{
    {"LineHighColor", 16, rebuildAndRedraw}, &MeterSettings::lineHighColor, swappedColourCodec};
inline constexpr ColorRule backLineLowColor{
    {"BackLineLowColor", 17, rebuildAndRedraw}, &MeterSettings::backLineLowColor, swappedColourCodec};
inline constexpr ColorRule backLineMidColor{
    {"BackLineMidColor", 18, rebuildAndRedraw}, &MeterSettings::backLineMidColor, swappedColourCodec};
inline constexpr ColorRule backLineHighColor{
    {"BackLineHighColor", 19, rebuildAndRedraw}, &MeterSettings::backLineHighColor, swappedColourCodec};
/// The lines that exist take the hold time over.
inline constexpr LongRule tickDelayTime{
    {"TickDelayTime", 30, Effects::none}, &MeterSettings::tickDelayTimeMs, plainCodec<std::int32_t>};
/// The fall starts, also while ticks are switched off.
inline constexpr LongRule tickReleaseTime{
    {"TickReleaseTime", 31, Effects::none}, &MeterSettings::tickReleaseTimeMs, plainCodec<std::int32_t>};
/// Ticks that are switched off do not fall either.
inline constexpr BoolRule tickVisible{
    {"TickVisible", 32, Effects::redraw}, &MeterSettings::tickVisible, plainCodec<std::int16_t>};
inline constexpr LongRule spotHeight{
    {"SpotHeight", 33, relayoutAndRedraw}, &MeterSettings::spotHeightPx, plainCodec<std::int32_t>, notNegative};
inline constexpr LongRule spotInterval{
    {"SpotInterval", 34, relayoutAndRedraw}, &MeterSettings::spotIntervalPx, plainCodec<std::int32_t>, notNegative};
inline constexpr LongRule midPoint{
    {"MidPoint", 35, rebuildAndRedraw}, &MeterSettings::midPointPercent, plainCodec<std::int32_t>, percent};
inline constexpr LongRule highPoint{
    {"HighPoint", 36, rebuildAndRedraw}, &MeterSettings::highPointPercent, plainCodec<std::int32_t>, percent};
inline constexpr SharedLongRule alignmentY{
    {"AlignmentY", 40, rebuildAndRedraw}, &MeterSettings::alignmentY, plainCodec<std::int32_t>};
inline constexpr LongRule alignmentX{
    {"AlignmentX", 41, rebuildAndRedraw}, &MeterSettings::alignmentX, plainCodec<std::int32_t>};
inline constexpr LongRule borderType{
    {"BorderType", 45, Effects::redraw}, &MeterSettings::borderType, plainCodec<std::int32_t>};
inline constexpr LongRule borderWidth{
    {"BorderWidth", 46, relayoutAndRedraw}, &MeterSettings::borderWidthPx, plainCodec<std::int32_t>};
inline constexpr PropertyRow autoRepaint{"AutoRepaint", 50, Effects::none};
inline constexpr BoolRule autoSize{
    {"AutoSize", 51, Effects::relayout}, &MeterSettings::autoSize, plainCodec<std::int16_t>};
/// Nothing follows a put of these: the next block uses or overwrites them.
inline constexpr SharedLongRule fftWindowSize{
    {"FFTWindowSize", 60, Effects::none}, &MeterSettings::fftWindowSize, plainCodec<std::int32_t>};
inline constexpr SharedLongRule fftWindowType{
    {"FFTWindowType", 61, Effects::none}, &MeterSettings::fftWindowType, plainCodec<std::int32_t>};
inline constexpr SharedLongRule fftViewType{
    {"FFTViewType", 62, Effects::none}, &MeterSettings::fftViewType, plainCodec<std::int32_t>};

/// Every row, in the order in which the accessors stand in the interface.
inline constexpr std::array<const PropertyRow*, 27> table = {
    &lineType,        &lineInterval,  &lineCount,        &backColor,        &borderColor,       &lineLowColor,
    &lineMidColor,    &lineHighColor, &backLineLowColor, &backLineMidColor, &backLineHighColor, &tickDelayTime,
    &tickReleaseTime, &tickVisible,   &spotHeight,       &spotInterval,     &midPoint,          &highPoint,
    &alignmentY,      &alignmentX,    &borderType,       &borderWidth,      &autoRepaint,       &autoSize,
    &fftWindowSize,   &fftWindowType, &fftViewType};

}  // namespace rule
}  // namespace av::type2
