#pragma once

#include "support/pcm.h"
#include "support/pcm_oracle.h"
#include "support/radix4_oracle.h"

#include <cmath>
#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

// The level meter's way from a block to its bands, step by step and slowly, with a buffer that keeps its state as the
// meter's does. Every step is written in double precision and in the order in which the meter defines it, so that
// results are compared to the bit.

namespace av::test {

/// How many frames are analysed, by functions that are good to the last bit of a double: each step in long double, then
/// rounded.
inline int exactAnalysisLength(int frames) {
  const auto lnF = static_cast<double>(std::log(static_cast<long double>(frames)));
  const auto ln4 = static_cast<double>(std::log(4.0L));
  const double quotient = lnF / ln4;
  return static_cast<int>(static_cast<double>(std::exp2(2.0L * static_cast<long double>(quotient))));
}

/// Weights of the meter's windows.
inline double meterWindow(int type, std::size_t index, std::size_t length) {
  const auto n = static_cast<double>(index);
  const auto N = static_cast<double>(length);
  const double pi = 3.14159265358979323846;
  if (type == 1) {
    const double u = (2 * n - N) / N;
    return 1 - u * u;
  }
  if (type == 2) {
    const std::size_t h = length / 2;
    if (index < h) return (n - 0.5 * N) * 2 / N + 1;
    if (index > h) return 1 - (n - 0.5 * N) * 2 / N;
    return 1;
  }
  if (type == 3) return 0.5 + 0.5 * std::cos((n - 0.5 * N) * 2 * pi / N);
  if (type == 4) return 0.5400000214576721 + 0.46000000834465027 * std::cos((n - 0.5 * N) * 2 * pi / N);
  return 1;
}

/// Whole powers by repeated squaring.
inline double squaredPower(double base, unsigned exponent) {
  double result = 1;
  double square = base;
  while (exponent != 0) {
    if (exponent & 1) result = result * square;
    square = square * square;
    exponent >>= 1;
  }
  return result;
}

/// The bands of `lineCount` lines from levels at positions 1 to M (position 0 is not used).
inline std::vector<double> foldedBands(const std::vector<double>& levels, int lineCount, int mode) {
  const int M = static_cast<int>(levels.size()) - 1;
  const auto L = static_cast<double>(lineCount);
  const auto at = [&](int position) { return levels.at(static_cast<std::size_t>(position > M ? M : position)); };
  std::vector<double> lines(static_cast<std::size_t>(lineCount), NAN);
  const auto write = [&](int line, double value) { lines.at(static_cast<std::size_t>(line)) = value; };
  const auto upward = [&](int start, int c) {
    double sum = 0;
    for (int p = start; p < start + c; ++p) sum += at(p);
    return sum / static_cast<double>(c);
  };
  const auto logarithmic = [&](double r, int i) {
    const double ri = squaredPower(r, static_cast<unsigned>(i));
    const double before = squaredPower(r, static_cast<unsigned>(i - 1));
    const int top = static_cast<int>(ri) > i ? static_cast<int>(ri) : i;
    const int c = static_cast<int>(ri - before) > 1 ? static_cast<int>(ri - before) : 1;
    double sum = 0;
    int position = top + 1;
    for (int n = 0; n < c; ++n) sum += at(position--);
    return sum / static_cast<double>(c);
  };

  if (M < 1) return lines;
  if (mode == 1) {
    const double s = 2.0 * M / (L + 1);
    for (int i = 0; i <= (lineCount + 1) / 2 - 1; ++i) {
      const double v = upward(static_cast<int>(s * i + 1.0), static_cast<int>(s));
      write(lineCount / 2 + i, v);
      write((lineCount - 1) / 2 - i, v);
    }
  } else if (mode == 2) {
    const double r = std::pow(static_cast<double>(M), 1 / (L - 1));
    write(0, at(1));
    for (int i = 1; i <= lineCount - 1; ++i) write(i, logarithmic(r, i));
  } else if (mode == 3) {
    const double r = std::pow(static_cast<double>(M), 2 / (L - 1));
    write(lineCount / 2, at(1));
    write((lineCount - 1) / 2, at(1));
    for (int i = 1; i <= (lineCount + 1) / 2 - 1; ++i) {
      const double v = logarithmic(r, i);
      write(lineCount / 2 + i, v);
      write((lineCount - 1) / 2 - i, v);
    }
  } else {
    const double s = M / L;
    for (int i = 0; i <= lineCount - 1; ++i) write(i, upward(static_cast<int>(i * s + 1.0), static_cast<int>(s)));
  }
  return lines;
}

/// Writes the levels of the bins over the first half of a transform, from position 1 on; nothing is below −91 dB.
inline void literalLevels(std::span<double> transform, double fullScale) {
  const auto N = static_cast<double>(transform.size());
  for (std::size_t k = 1; k < transform.size() / 2; ++k) {
    const double a = (transform[k] + transform[transform.size() - k]) / N;
    const double b = (transform[k] - transform[transform.size() - k]) / N;
    const double p = a * a + b * b;
    double level = -91.0;
    if (p != 0) {
      level = 20 * std::log10(std::sqrt(p) / fullScale);
      if (!(level >= -91.0)) level = -91.0;
    }
    transform[k] = level;
  }
}

class MeterModel {
 public:
  /// The bands after one block of at least `lineCount` frames, of which `length` are analysed.
  /// `toLevels`: another literalLevels.
  template <class ToLevels = decltype(literalLevels)>
  std::vector<double> bands(const Pcm& pcm, std::size_t length, int windowType, int lineCount, int mode,
                            ToLevels&& toLevels = literalLevels) {
    const int bits = pcm.format.wBitsPerSample;
    const int channels = pcm.format.nChannels;
    if (bits == 8 || bits == 16 || bits == 32) {
      std::vector<double> sums(length);
      for (int channel = 0; channel < channels; ++channel) {
        const auto samples = oracle::decodedChannel(pcm.bytes, channels, bits, channel, length, false);
        for (std::size_t i = 0; i < length; ++i) sums[i] += samples[i];
      }
      for (std::size_t i = 0; i < length; ++i) m_buffer.at(i) = sums[i] / channels;
    }
    for (std::size_t i = 0; i < length; ++i) m_buffer.at(i) *= meterWindow(windowType, i, length);
    literalRadix4(m_buffer, length);

    toLevels(std::span(m_buffer).first(length), std::pow(2.0, bits - 1) - 1);
    const std::size_t h = length / 2;
    return foldedBands({m_buffer.begin(), m_buffer.begin() + static_cast<std::ptrdiff_t>(h < 1 ? 1 : h)}, lineCount,
                       mode);
  }

 private:
  std::vector<double> m_buffer = std::vector<double>(49152);
};

}  // namespace av::test
