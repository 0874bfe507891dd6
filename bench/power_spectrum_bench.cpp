#include "bench/fftw_power_spectrum.h"
#include "bench/literal_power_spectrum.h"
#include "dsp/fft_kernel.h"
#include "dsp/spectrum_analyzer.h"

#include <benchmark/benchmark.h>

#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <functional>
#include <memory>
#include <random>
#include <string>
#include <vector>

namespace {

using av::dsp::CSpectrumAnalyzer;

using Compute = std::function<void(std::span<double> samples, std::span<double> power)>;

std::vector<double> noise(std::size_t count) {
  std::mt19937 random(1);
  std::uniform_real_distribution<double> value(-32768, 32768);
  std::vector<double> samples(count);
  for (double& sample : samples) sample = value(random);
  return samples;
}

/// Divides by the power of a Hann window but multiplies by ones: a block can go through the window again and again.
CSpectrumAnalyzer analyzerOf(int length, const av::dsp::FftKernel& kernel) {
  CSpectrumAnalyzer analyzer(kernel);
  analyzer.SetLength(length);
  analyzer.SetWindowType(0);
  return analyzer;
}

/// A contender that computes something else would win unfairly: literally the same bits, or nearly the same figures.
void check(const std::string& name, std::size_t length, const Compute& compute, const Compute& literal, bool sameBits) {
  auto samples = noise(length);
  auto samplesAgain = samples;
  std::vector<double> power(length / 2);
  std::vector<double> expected(length / 2);
  compute(samples, power);
  literal(samplesAgain, expected);
  double largest = 0;
  double difference = 0;
  for (std::size_t k = 0; k < power.size(); ++k) {
    largest = std::max(largest, expected[k]);
    difference = std::max(difference, std::abs(power[k] - expected[k]));
  }
  const bool same = std::memcmp(power.data(), expected.data(), power.size() * sizeof(double)) == 0;
  if (sameBits ? same : difference <= 1e-5 * largest) return;
  std::fprintf(stderr, "%s differs at %zu samples\n", name.c_str(), length);
  std::exit(1);
}

void add(const std::string& name, std::size_t length, const Compute& compute) {
  const std::string title = name + "/" + std::to_string(length);
  benchmark::RegisterBenchmark(title.c_str(), [compute, length](benchmark::State& state) {
    auto samples = noise(length);
    std::vector<double> power(length / 2);
    for (auto _ : state) {
      compute(samples, power);
      benchmark::DoNotOptimize(power.data());
      benchmark::ClobberMemory();
    }
  });
}

void addContenders(int length) {
  const auto count = static_cast<std::size_t>(length);
  const auto reference = analyzerOf(length, *av::dsp::fftKernels().front());
  const auto literal =
      std::make_shared<av::bench::LiteralPowerSpectrum>(reference.coefficients(), reference.WindowPower());
  const Compute plain = [literal](auto samples, auto power) { literal->compute(samples, power); };
  add("literal", count, plain);
  for (const av::dsp::FftKernel* kernel : av::dsp::fftKernels()) {
    const auto analyzer = std::make_shared<CSpectrumAnalyzer>(analyzerOf(length, *kernel));
    const Compute product = [analyzer](auto samples, auto power) { analyzer->ComputePowerSpectrum(samples, power); };
    check(kernel->name, count, product, plain, true);
    add(kernel->name, count, product);
  }
  for (const bool measured : {false, true}) {
    const auto fftw = std::make_shared<av::bench::FftwPowerSpectrum>(reference.coefficients(), reference.WindowPower(),
                                                                     measured ? FFTW_MEASURE : FFTW_ESTIMATE);
    const Compute other = [fftw](auto samples, auto power) { fftw->compute(samples, power); };
    const std::string name = measured ? "FFTW MEASURE" : "FFTW ESTIMATE";
    check(name, count, other, plain, false);
    add(name, count, other);
  }
}

}  // namespace

int main(int argc, char** argv) {
  benchmark::Initialize(&argc, argv);
  if (benchmark::ReportUnrecognizedArguments(argc, argv)) return 1;
  for (int length = 512; length <= 65536; length *= 2) addContenders(length);
  benchmark::RunSpecifiedBenchmarks();
  benchmark::Shutdown();
  return 0;
}
