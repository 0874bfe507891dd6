#pragma once

#include <array>
#include <cstdint>
#include <span>

namespace av::dsp {

/// One of the windows that the spectrum analyser offers.
struct AnalysisWindow {
  std::int32_t id;    ///< equals the row's index
  const char* name;   ///< as hosts show it to their users
  bool hasParameter;  ///< see WindowParameter
};

inline constexpr std::uint32_t kaiserWindow = 10;

inline constexpr std::array<AnalysisWindow, 11> WindowTable = {{{0, "Boxcar", false},
                                                                {1, "Hamming", false},
                                                                {2, "Hann", false},
                                                                {3, "Bartlett", false},
                                                                {4, "Bartlett-Hann", false},
                                                                {5, "Blackman", false},
                                                                {6, "Blackman-Harris", false},
                                                                {7, "Bohman", false},
                                                                {8, "Nuttall", false},
                                                                {9, "Triangular", false},
                                                                {kaiserWindow, "Kaiser", true}}};

/// The adjustable value of a window with its bounds, both inclusive.
struct WindowParameter {
  double value = 0.0;
  double minimum = 0.0;
  double maximum = 0.0;
};

/// Kaiser's beta at first. The other windows have no parameter: all zero.
inline constexpr WindowParameter kaiserDefaults{4.0, 1.0, 10.0};

/// Fills in the coefficients of a window of `coefficients.size()` samples; `kaiserBeta` is read for Kaiser only. A type
/// above 10 leaves the coefficients as they are. Fewer than two samples have no window: a single one gets 1.
///
/// Several windows differ from the textbook's of the same name, and the constants of the cosine sums are rounded to
/// single precision. All of that is kept, as the displayed levels depend on it:
///   - Bartlett-Hann divides i by N − 1 in whole numbers, so all coefficients but the last are the same, below zero;
///   - Bohman takes no absolute value, so its first half is not the mirror image of its second one and begins at −2;
///   - Triangular of an even length ends below zero, at −1/N;
///   - Kaiser divides by I0(beta) inside the Bessel function, which makes it nearly flat, 1 at the edges.
void fillAnalysisWindow(std::uint32_t type, double kaiserBeta, std::span<double> coefficients) noexcept;

/// Mean square of the coefficients; 0 of none.
double windowPower(std::span<const double> coefficients) noexcept;

}  // namespace av::dsp
