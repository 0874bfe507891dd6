// Measures the levels that the controls give to known sounds, and their error against a direct transform in long double,
// and prints the tables of docs/levels.md.

#include "tests/programs/exact_spectrum.h"
#include "tests/support/counting_lock.h"
#include "tests/support/pcm.h"
#include "type1/analysis.h"
#include "type2/analysis.h"
#include "type3/analysis.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <random>
#include <span>
#include <string>
#include <vector>

namespace {

using namespace av;
using test::makePcm;
using test::Pcm;

constexpr double turn = 6.283185307179586476925286766559;
constexpr int fullScale = 32767;

int sineSample(double bin, int length, int frame) {
  return static_cast<int>(std::lround(fullScale * std::sin(turn * bin * frame / length + 0.3)));
}

/// 16 bits, one channel, a full-scale sine in the middle of a bin, or between two.
Pcm sine(double bin, int length) {
  return makePcm(16, 1, length, [=](int frame, int) { return sineSample(bin, length, frame); });
}

/// The levels of bins 1 and up that each control gives to a block of as many frames as it is analysed with. Element k is
/// bin k; element 0 means nothing.
std::vector<double> viewLevels(const Pcm& pcm, int length, int windowType) {
  test::CountingLock lock;
  type1::ViewSettings settings;
  type1::ViewAnalysis analysis(lock);
  settings.visualizationType = 2;
  settings.fftWindowSize = length;
  settings.fftWindowType = windowType;
  analysis.resizeWindow(settings);
  analysis.accept(pcm.block(), settings);
  const auto levels = analysis.signal().analysis[0].first(static_cast<std::size_t>(length / 2));
  return {levels.begin(), levels.end()};
}

std::vector<double> meterLevels(const Pcm& pcm, int length, int windowType) {
  test::CountingLock lock;
  LineList lines(lock);
  type2::MeterSettings settings;
  settings.fftWindowType = windowType;
  lines.SetLineCount(length / 2 - 1);  // a line a bin
  type2::MeterAnalysis analysis(lines);
  analysis.accept(pcm.block(), settings, 0);
  std::vector<double> levels(1);
  lines.withLines([&](std::span<const LineInfo> all) {
    for (const LineInfo& line : all) levels.push_back(line.value);
  });
  return levels;
}

enum class Scaling { ofTheWindowBefore, itsOwn };

std::vector<double> analyserLevels(const Pcm& pcm, int windowType, float kaiserBeta, Scaling scaling) {
  constexpr int length = 256;
  test::CountingLock lock;
  LineList columns(lock);
  type3::AnalyserAnalysis analysis(columns);
  type3::AnalyserSettings settings;
  settings.lineCount = length / 2;  // a column a bin
  analysis.setLineCount(settings.lineCount);
  analysis.setFftLength(length);
  analysis.setWindowType(windowType);
  analysis.setWindowParam(kaiserBeta);
  analysis.setWindowType(windowType);
  if (scaling == Scaling::itsOwn) analysis.setFftLength(length);
  analysis.accept(pcm.block(), settings, 100, 0);
  std::vector<double> levels;
  for (const double band : analysis.bands()) levels.push_back(20 * std::log10(band / length * 2));
  return levels;
}

double highest(const std::vector<double>& levels) { return *std::max_element(levels.begin() + 1, levels.end()); }

/// Two decimals; no minus before zero.
std::string decibels(double level) {
  if (level <= -90.995) return "nothing";
  char text[32];
  std::snprintf(text, sizeof text, "%.2f", std::abs(level) < 0.005 ? 0.0 : level);
  std::string shown = text;
  return shown[0] == '-' ? "−" + shown.substr(1) : shown;
}

void printCentredWindows() {
  constexpr int length = 1024;
  std::printf("| `FFTWindowType` of view and level meter | tone on a bin | tone between two bins |\n|---|---:|---:|\n");
  const char* names[] = {"0, none", "1, parabolic", "2, triangular", "3, Hann", "4, Hamming"};
  for (int type = 0; type < 5; ++type) {
    const double on = highest(viewLevels(sine(100, length), length, type));
    const double between = highest(viewLevels(sine(100.5, length), length, type));
    const double meter = highest(meterLevels(sine(100, length), length, type));
    if (std::abs(on - meter) > 1e-9) throw std::runtime_error("view and meter differ");
    std::printf("| %s | %s | %s |\n", names[type], decibels(on).c_str(), decibels(between).c_str());
  }
}

void printAnalyserWindows() {
  std::printf(
      "\n| `FFTWindowType` of the analyser | on a bin, put alone | between two bins, put alone | on a bin, `FFTLength` "
      "put "
      "after it | between two bins |\n|---|---:|---:|---:|---:|\n");
  const auto row = [](int type, const std::string& name, float beta) {
    std::printf("| %s |", name.c_str());
    for (const Scaling scaling : {Scaling::ofTheWindowBefore, Scaling::itsOwn}) {
      for (const double bin : {37.0, 37.5})
        std::printf(" %s |", decibels(highest(analyserLevels(sine(bin, 256), type, beta, scaling))).c_str());
    }
    std::printf("\n");
  };
  for (int type = 0; type < 10; ++type)
    row(type, std::to_string(type) + ", " + dsp::WindowTable[static_cast<std::size_t>(type)].name, 0);
  for (const float beta : {1.0f, 4.0f, 10.0f}) {
    char name[32];
    std::snprintf(name, sizeof name, "10, Kaiser, β = %g", static_cast<double>(beta));
    row(10, name, beta);
  }
}

void printSquare() {
  // 64 frames a period: bin 4 of 256, 16 of 1024.
  const auto square = [](int length) {
    return makePcm(16, 1, length, [](int frame, int) { return frame / 32 % 2 == 0 ? fullScale : -fullScale; });
  };
  const std::vector<double> view = viewLevels(square(1024), 1024, 0);
  const std::vector<double> meter = meterLevels(square(1024), 1024, 3);
  const std::vector<double> analyser = analyserLevels(square(256), 2, 0, Scaling::itsOwn);
  std::printf("\n| Full-scale square wave, 64 frames a period | its 1st | 3rd | 5th partial |\n|---|---:|---:|---:|\n");
  const auto row = [](const char* name, const std::vector<double>& levels, std::size_t bin) {
    std::printf("| %s | %s | %s | %s |\n", name, decibels(levels[bin]).c_str(), decibels(levels[3 * bin]).c_str(),
                decibels(levels[5 * bin]).c_str());
  };
  row("view, no window", view, 16);
  row("level meter, Hann", meter, 16);
  row("analyser, Hann", analyser, 4);
}

void printMixing() {
  struct Case {
    const char* name;
    int channels;
    int (*sign)(int channel);
  };
  const Case cases[] = {{"one channel", 1, [](int) { return 1; }},
                        {"two equal channels", 2, [](int) { return 1; }},
                        {"one of two, the other silent", 2, [](int channel) { return channel == 0 ? 1 : 0; }},
                        {"two in opposite phase", 2, [](int channel) { return channel == 0 ? 1 : -1; }},
                        {"one of six, the others silent", 6, [](int channel) { return channel == 0 ? 1 : 0; }}};
  std::printf("\n| Full-scale tone in | view, first channel | level meter | analyser |\n|---|---:|---:|---:|\n");
  for (const Case& row : cases) {
    const auto of = [&](int length, double bin) {
      return makePcm(16, row.channels, length, [&, length, bin](int frame, int channel) {
        return row.sign(channel) * sineSample(bin, length, frame);
      });
    };
    std::printf("| %s | %s | %s | %s |\n", row.name, decibels(highest(viewLevels(of(1024, 100), 1024, 0))).c_str(),
                decibels(highest(meterLevels(of(1024, 100), 1024, 0))).c_str(),
                decibels(highest(analyserLevels(of(256, 37), 2, 0, Scaling::itsOwn))).c_str());
  }
}

void printMeterLengths() {
  std::printf(
      "\n| Frames in a block to the level meter | strongest bin of a full-scale tone on a bin | lies at |\n"
      "|---:|---:|---|\n");
  for (const int frames : {256, 512, 1000, 1024, 2048, 4096, 8192, 16384}) {
    const int length = type2::analysisLength(frames);
    const int bin = length / 10;
    const std::vector<double> levels = meterLevels(sine(bin, length), length, 0);
    const auto at = std::max_element(levels.begin() + 1, levels.end()) - levels.begin();
    std::printf("| %d | %s | %s |\n", frames, decibels(levels[static_cast<std::size_t>(at)]).c_str(),
                at == bin ? "its own frequency" : "another frequency");
  }
}

/// The next power of ten, with room for twice the error: the last bits of builds and maths libraries differ, what can be
/// relied on does not.
std::string bound(double error) {
  char text[32];
  std::snprintf(text, sizeof text, "below 1e%+03d", static_cast<int>(std::ceil(std::log10(2 * error))));
  return text;
}

struct Errors {
  double power = 0;    ///< of any bin's power, over that of the strongest bin
  double levelDb = 0;  ///< of any bin's level above −80 dB
};

/// `levels[k]` against the exact spectrum, for k from 1.
Errors compare(const std::vector<double>& levels, const std::vector<long double>& exact) {
  Errors errors;
  const auto strongest = static_cast<double>(*std::max_element(exact.begin() + 1, exact.end()));
  for (std::size_t k = 1; k < levels.size(); ++k) {
    const auto wanted = static_cast<double>(exact[k]);
    errors.power = std::max(errors.power, std::abs(std::pow(10, levels[k] / 10) - wanted) / strongest);
    const double wantedDb = 10 * std::log10(wanted);
    if (wantedDb > -80) errors.levelDb = std::max(errors.levelDb, std::abs(levels[k] - wantedDb));
  }
  return errors;
}

std::vector<double> analyserSpectrum(const std::vector<double>& samples) {
  dsp::CSpectrumAnalyzer analyzer;
  const auto length = static_cast<std::int32_t>(samples.size());
  analyzer.SetWindowType(0);
  analyzer.SetLength(length);
  std::vector<double> windowed = samples, power(samples.size() / 2);
  analyzer.ComputePowerSpectrum(windowed, power);
  std::vector<double> levels;
  for (const double value : power) {
    // The level's own roundings are the columns'; see type3/column_heights.cpp.
    const auto root = static_cast<float>(std::sqrt(static_cast<double>(static_cast<float>(value))));
    const auto relative = static_cast<float>(static_cast<double>(root) / 32768 / length * 2);
    levels.push_back(20.0 * static_cast<double>(std::log10(relative)));
  }
  return levels;
}

void printErrors() {
  std::printf(
      "\n| N from 256 to 16384 | error of a bin's power, over the strongest bin's | error of its level, dB |\n"
      "|---|---:|---:|\n");
  Errors view, meter, analyser;
  const auto raise = [](Errors& to, const Errors& errors) {
    to = {std::max(to.power, errors.power), std::max(to.levelDb, errors.levelDb)};
  };
  std::mt19937 random(20240501);
  std::uniform_int_distribution<int> sample(-fullScale, fullScale);
  for (const int length : {256, 1024, 4096, 16384}) {
    const Pcm noise = makePcm(16, 1, length, [&](int, int) { return sample(random); });
    std::vector<double> samples;
    for (int i = 0; i < length; ++i) {
      const std::size_t at = static_cast<std::size_t>(i) * 2;
      samples.push_back(static_cast<std::int16_t>(noise.bytes[at] | noise.bytes[at + 1] << 8));
    }
    raise(view, compare(viewLevels(noise, length, 0), test::exactPowers(samples, 32767)));
    raise(meter, compare(meterLevels(noise, length, 0), test::exactPowers(samples, 32767)));
    raise(analyser, compare(analyserSpectrum(samples), test::exactPowers(samples, 32768)));
  }
  const auto row = [](const char* name, const Errors& errors) {
    std::printf("| %s | %s | %s |\n", name, bound(errors.power).c_str(), bound(errors.levelDb).c_str());
  };
  row("view", view);
  row("level meter", meter);
  row("analyser", analyser);
}

}  // namespace

int main() {
  printCentredWindows();
  printAnalyserWindows();
  printSquare();
  printMixing();
  printMeterLengths();
  printErrors();
}
