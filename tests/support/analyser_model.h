#pragma once

#include "support/pcm.h"
#include "support/pcm_oracle.h"
#include "type3/settings.h"

#include <cmath>
#include <cstddef>
#include <cstdint>
#include <vector>

// The spectrum analyser's way from a block to heights, array by array and step by step.

namespace av::test {

struct MixedBlock {
  std::vector<double> samples;
  double fullScale = 0;
};

inline MixedBlock mixedBlock(const Pcm& pcm, std::size_t fftLength) {
  const int bits = pcm.format.wBitsPerSample;
  const int channels = pcm.format.nChannels;
  MixedBlock mixed{std::vector<double>(fftLength), 0};
  const std::size_t frameSize = static_cast<std::size_t>(channels * bits / 8);
  const std::size_t frames = pcm.bytes.size() / frameSize;
  if (bits == 16) mixed.fullScale = 32768;
  if (bits == 32) mixed.fullScale = 2147483648.0;
  for (std::size_t frame = 0; frame < frames && frame < fftLength; ++frame) {
    double sum = 0;
    for (int channel = 0; channel < channels; ++channel) {
      const std::uint8_t* const at =
          &pcm.bytes[frame * frameSize + static_cast<std::size_t>(channel) * static_cast<std::size_t>(bits / 8)];
      switch (bits) {
        case 8: sum += 128.0 - *at; break;
        case 24: sum += static_cast<double>(frames); break;
        case 16:
        case 32: sum += static_cast<double>(oracle::twosComplementSample(at, bits)); break;
        default: break;
      }
    }
    if (bits == 8) mixed.fullScale = 128;
    if (bits == 24) mixed.fullScale = 8388608;
    mixed.samples[frame] = sum / channels;
  }
  return mixed;
}

/// The band buffer after a block; `spectrum` has `fftLength` / 2 entries.
inline std::vector<double> bandBuffer(const type3::AnalyserSettings& s, int fftLength, std::uint32_t sampleRate,
                                      const std::vector<double>& spectrum, double fullScale) {
  const int L = s.lineCount;
  const int half = fftLength / 2;
  const int sides = s.alignmentX != 0 ? 2 : 1;
  const int bandCount = sides == 2 ? L / 2 + L % 2 : L;
  std::vector<double> bands(static_cast<std::size_t>(L));
  const auto entry = [&](int k) { return k < half ? spectrum.at(static_cast<std::size_t>(k)) : 0.0; };
  const auto amplitude = [&](double sum, int count) {
    const float mean = static_cast<float>(sum / count);
    const float root = static_cast<float>(std::sqrt(static_cast<double>(mean)));
    return root / fullScale;
  };

  if (s.xScaleType == 0) {
    const double nyquist = (sampleRate == 0 ? 44100.0 : static_cast<double>(sampleRate)) * 0.5;
    const double step = (nyquist / L) / (nyquist / half) * sides;
    int index = 0;
    for (int b = 0; b < bandCount; ++b) {
      const double exact = (b + 1) * step;
      double end = std::floor(exact);
      const double rest = exact - end;
      if (rest > 0.5 || (rest == 0.5 && std::fmod(end, 2.0) != 0)) end += 1;
      double sum = 0;
      int count = 0;
      while (index < end && index < half) {
        sum += entry(index);
        ++index;
        ++count;
      }
      bands[static_cast<std::size_t>(b)] = amplitude(sum, count);
    }
  } else {
    const float exponent = static_cast<float>(sides) / static_cast<float>(L - 1);
    const float r =
        static_cast<float>(std::pow(static_cast<long double>(half - 1), static_cast<long double>(exponent)));
    bands[0] = amplitude(entry(0), 1);
    for (int i = 1; i < bandCount; ++i) {
      int top = static_cast<int>(std::pow(static_cast<double>(r), static_cast<double>(i)));
      if (top < i) top = i;
      double upper = 1;
      for (int n = 0; n < i; ++n) upper *= static_cast<double>(r);
      double lower = 1;
      for (int n = 0; n < i - 1; ++n) lower *= static_cast<double>(r);
      int width = static_cast<int>(upper - lower);
      if (width < 1) width = 1;
      double sum = 0;
      int bin = top + 1;
      for (int n = 0; n < width; ++n) sum += entry(bin--);
      bands[static_cast<std::size_t>(i)] = amplitude(sum, width);
    }
  }

  if (sides == 2) {
    const int mid = L / 2;
    const auto at = [&](int i) -> double& { return bands[static_cast<std::size_t>(i)]; };
    if (L % 2 != 0) at(L - 1) = at(mid);
    for (int i = 0; i < mid; ++i) at(mid + i) = at(i);
    if (L % 2 == 0) {
      for (int j = 0; j < mid; ++j) at(mid - 1 - j) = at(mid + j);
    } else {
      for (int j = 0; j <= mid; ++j) at(mid - j) = at(mid + j);
    }
  }
  return bands;
}

inline int columnHeight(const type3::AnalyserSettings& s, double band, int fftLength, int H) {
  const double top = -s.scaleYMin;
  const double bottom = -s.scaleYMax;
  const double range = s.scaleYMax - s.scaleYMin;
  if (range <= 0) return 0;
  double dB = bottom;
  if (band > 0) {
    const float argument = static_cast<float>(band / fftLength * 2);
    const float logarithm = static_cast<float>(std::log10(static_cast<double>(argument)));
    dB = 20.0 * logarithm;
  }
  if (dB < bottom) dB = bottom;
  if (dB > top) dB = top;
  const double q = std::trunc((dB - bottom) / (s.alignmentY != 0 ? 2 : 1));
  int h = static_cast<int>(q / range * H);
  if (s.spotIntervalPx > 0) {
    const int pitch = s.spotHeightPx + s.spotIntervalPx;
    const int n = static_cast<int>(std::ceil(static_cast<double>(h) / pitch));
    h = n > 0 ? n * pitch - s.spotIntervalPx : 0;
  }
  return h;
}

}  // namespace av::test
