#include "common/sample_scale.h"
#include "dsp/analysis_windows.h"
#include "dsp/centred_windows.h"
#include "dsp/hartley.h"
#include "dsp/levels.h"
#include "dsp/radix4_hartley.h"
#include "dsp/spectrum_analyzer.h"
#include "results/result_kinds.h"

#include <algorithm>
#include <array>
#include <initializer_list>

namespace av::test {
namespace {

constexpr std::array<int, 17> windowLengths{1, 2, 3, 4, 5, 7, 15, 16, 31, 64, 100, 255, 512, 1000, 1023, 1024, 4096};

std::vector<double> centredWindows(std::initializer_list<int> types) {
  std::vector<double> values;
  for (const int type : types)
    for (const int length : windowLengths)
      for (int i = 0; i < length; ++i) values.push_back(dsp::centredWindowWeight(type, i, length));
  return values;
}

std::vector<double> analysisWindows(std::initializer_list<std::uint32_t> types,
                                    std::initializer_list<double> betas = {0.0}) {
  std::vector<double> values;
  for (const std::uint32_t type : types) {
    for (const double beta : betas) {
      for (const int length : windowLengths) {
        std::vector<double> window(static_cast<std::size_t>(length));
        dsp::fillAnalysisWindow(type, beta, window);
        append(values, window);
        values.push_back(dsp::windowPower(window));
      }
    }
  }
  return values;
}

std::vector<double> straightWindows() {
  std::vector<double> values = centredWindows({0, 1, 2});
  append(values, analysisWindows({0, 3, 4, 9}));
  return values;
}
std::vector<double> raisedCosines() { return centredWindows({3, 4}); }
std::vector<double> cosineWindows() { return analysisWindows({1, 2, 5, 6, 7, 8}); }
std::vector<double> kaiserWindows() { return analysisWindows({dsp::kaiserWindow}, {1.0, 2.5, 4.0, 7.0, 10.0}); }

std::vector<double> levelsOfGivenTransforms() {
  std::vector<double> values;
  unsigned seed = 0;
  for (const std::size_t length : {2u, 3u, 64u, 100u, 1024u, 4095u, 16384u}) {
    for (const int bits : {8, 16, 24, 32}) {
      for (const double range : {1e-200, 1e-6, 32767.0, 1e12}) {
        std::vector<double> transform = numbers(length, range, ++seed);
        if (length > 20) transform[7] = transform[length - 7] = 0.0;
        std::vector<double> floored = transform;
        dsp::hartleyBinsToLevels(transform, fullScaleValue(bits));
        dsp::hartleyBinsToLevels(floored, fullScaleValue(bits), -91.0);
        append(values, transform);
        append(values, floored);
      }
    }
  }
  return values;
}

/// Scaled by a power of two, so that the largest lies between 0.5 and 1.
void appendScaled(std::vector<double>& to, std::span<const double> values) {
  double largest = 0;
  for (const double value : values) largest = std::max(largest, std::fabs(value));
  int exponent = 0;
  std::frexp(largest, &exponent);
  for (const double value : values) to.push_back(std::ldexp(value, -exponent));
}

std::vector<double> hartleyTransforms() {
  std::vector<double> values;
  for (int length = 64; length <= 16384; length *= 2) {
    std::vector<double> transform = numbers(static_cast<std::size_t>(length), 1, 5);
    dsp::HartleyTransform(length).transform(transform);
    appendScaled(values, transform);
  }
  return values;
}

std::vector<double> meterTransforms() {
  std::vector<double> values;
  for (const int length : {16, 100, 256, 441, 512, 1000, 1024, 2048, 4096, 8000, 16384, 48000}) {
    std::vector<double> buffer = numbers(dsp::Radix4Hartley::bufferLength, 1, 6);
    dsp::Radix4Hartley().transform(std::span<double, dsp::Radix4Hartley::bufferLength>(buffer), length);
    buffer.resize(static_cast<std::size_t>(length));
    appendScaled(values, buffer);
  }
  return values;
}

/// Through each of the windows.
std::vector<double> powerSpectra(std::initializer_list<std::uint32_t> windows) {
  std::vector<double> values;
  dsp::CSpectrumAnalyzer analyzer;
  for (const std::uint32_t window : windows) {
    for (std::int32_t length = 4; length <= 65536; length *= 4) {
      analyzer.SetWindowType(window);
      analyzer.SetLength(length);
      std::vector<double> samples = numbers(static_cast<std::size_t>(length), 1, 7);
      std::vector<double> power(samples.size() / 2);
      analyzer.ComputePowerSpectrum(samples, power);
      appendScaled(values, power);
    }
  }
  return values;
}

std::vector<double> plainSpectra() { return powerSpectra({0, 3}); }
std::vector<double> windowedSpectra() { return powerSpectra({1, 2, 5, 6, 7, 8, dsp::kaiserWindow}); }

}  // namespace

std::vector<ResultKind> transformResults() {
  return {{"windows without cosines", MadeWith::arithmetic, "", straightWindows},
          {"levels of given transforms", MadeWith::arithmetic, "dB", levelsOfGivenTransforms},
          {"raised cosines (the view and the meter)", MadeWith::mathsLibrary, "", raisedCosines},
          {"cosine sums and Bohman (the analyser)", MadeWith::mathsLibrary, "", cosineWindows},
          {"Kaiser (the analyser)", MadeWith::mathsLibrary, "", kaiserWindows},
          {"the view's transforms", MadeWith::mathsLibrary, "of the largest bin", hartleyTransforms},
          {"the meter's transforms", MadeWith::mathsLibrary, "of the largest bin", meterTransforms},
          {"power spectra through windows without cosines", MadeWith::mathsLibrary, "of the largest bin", plainSpectra},
          {"power spectra through the others", MadeWith::mathsLibrary, "of the largest bin", windowedSpectra}};
}

}  // namespace av::test
