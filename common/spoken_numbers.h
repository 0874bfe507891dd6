#pragma once

#include <string>
#include <string_view>

namespace av {

// Numbers as a person reads them aloud, for screen readers: plain English, '.' before decimals whatever the locale, a
// true minus sign (U+2212) and a space before the unit. Screen readers pronounce them in the user's own voice.

/// What no sound at all is called.
inline constexpr std::u16string_view spokenSilence = u"silence";

/// Levels that round to less than this count as silence in all controls: the least step of 16 bits.
inline constexpr int quietestSpokenDb = -90;

/// Whether a level in dB is more than silence. A level that is no number is none.
constexpr bool isAudible(double levelDb) noexcept { return levelDb >= quietestSpokenDb - 0.5; }

/// A level in whole decibels, halves away from zero: "−3 dB", "0 dB". Beyond ±999 dB, that limit.
std::u16string spokenLevel(double levelDb);

/// A frequency: whole Hz as long as they come to less than 1000, from there on kHz with one decimal: "440 Hz", "1.0 kHz".
/// What is below 0 or no number counts as 0, what is beyond 1e10 Hz as that.
std::u16string spokenFrequency(double hz);

/// A number from −1 to 1 with two decimals: "0.85", "−0.30", never "−0.00". Beyond ±1, that limit; 0 for no number.
std::u16string spokenCorrelation(double value);

/// A whole number from 0 up.
std::u16string spokenCount(unsigned value);

}  // namespace av
