#include "common/spoken_numbers.h"

#include <algorithm>
#include <cmath>

namespace av {
namespace {

constexpr char16_t minus = u'\u2212';

/// `value`, or the limit that it passes; 0 for no number.
double within(double lowest, double value, double highest) noexcept {
  return std::isnan(value) ? 0.0 : std::clamp(value, lowest, highest);
}

/// Decimal digits. The library's own conversion to wide text asks the locale or makes another width of character.
std::u16string digits(long long value) {
  const std::string narrow = std::to_string(value);
  return {narrow.begin(), narrow.end()};
}

}  // namespace

std::u16string spokenLevel(double levelDb) {
  const long whole = std::lround(within(-999.0, levelDb, 999.0));
  std::u16string text;
  if (whole < 0) text += minus;
  return text + digits(std::labs(whole)) + u" dB";
}

std::u16string spokenFrequency(double hz) {
  const double heard = within(0.0, hz, 1e10);
  if (const long whole = std::lround(std::min(heard, 1000.0)); whole < 1000) return digits(whole) + u" Hz";
  const long tenths = std::lround(heard / 100);
  return digits(tenths / 10) + u'.' + digits(tenths % 10) + u" kHz";
}

std::u16string spokenCorrelation(double value) {
  const long hundredths = std::lround(within(-1.0, value, 1.0) * 100);
  const long size = std::labs(hundredths);
  std::u16string text;
  if (hundredths < 0) text += minus;
  return text + digits(size / 100) + u'.' + digits(size % 100 / 10) + digits(size % 10);
}

std::u16string spokenCount(unsigned value) { return digits(value); }

}  // namespace av
