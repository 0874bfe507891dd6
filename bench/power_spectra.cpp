#include "bench/contest.h"
#include "bench/fftw_power_spectrum.h"
#include "bench/kiss_real_fft.h"
#include "bench/literal_power_spectrum.h"
#include "dsp/aligned_doubles.h"
#include "dsp/fft_kernel.h"
#include "dsp/spectrum_analyzer.h"

#include <memory>

namespace av::bench {
namespace {

using dsp::CSpectrumAnalyzer;

using Compute = std::function<void(std::span<double> samples, std::span<double> power)>;

/// Divides by the power of a Hann window but multiplies by ones: a block can go through the window again and again.
CSpectrumAnalyzer analyzerOf(int length, const dsp::FftKernel& kernel) {
  CSpectrumAnalyzer analyzer(kernel);
  analyzer.SetLength(length);
  analyzer.SetWindowType(0);
  return analyzer;
}

/// Window product, transform and powers in single precision.
Compute kissPowerSpectrum(const CSpectrumAnalyzer& reference) {
  const auto fft = std::make_shared<KissRealFft>(reference.coefficients().size());
  const std::vector<float> window(reference.coefficients().begin(), reference.coefficients().end());
  const auto scale = static_cast<float>(1 / reference.WindowPower());
  return [=](std::span<double> samples, std::span<double> power) {
    const std::span<float> input = fft->input();
    for (std::size_t i = 0; i < input.size(); ++i) input[i] = static_cast<float>(samples[i]) * window[i];
    fft->transform();
    const auto bins = fft->output();
    for (std::size_t k = 0; k < power.size(); ++k) power[k] = (bins[k].r * bins[k].r + bins[k].i * bins[k].i) * scale;
    power[0] += bins[power.size()].r * bins[power.size()].r * scale;
  };
}

class Contest {
 public:
  explicit Contest(std::size_t length, const Compute& literal)
      : m_length(length), m_expected(length / 2), m_literal(literal) {
    auto samples = noise(length);
    literal(samples, m_expected);
    addCompute("literal", literal);
  }

  void addExact(const std::string& contender, const Compute& compute) const {
    require(sameBits(result(compute), m_expected), contender + " power spectrum");
    addCompute(contender, compute);
  }

  void addNear(const std::string& contender, const Compute& compute, double tolerance) const {
    require(isNear(result(compute), m_expected, tolerance), contender + " power spectrum");
    addCompute(contender, compute);
  }

 private:
  std::vector<double> result(const Compute& compute) const {
    auto samples = noise(m_length);
    std::vector<double> power(m_length / 2);
    compute(samples, power);
    return power;
  }

  void addCompute(const std::string& contender, const Compute& compute) const {
    // Where they begin is up to whoever analyses blocks; the analyser lets them begin with a cache line.
    const auto values = noise(m_length);
    const auto samples = std::make_shared<dsp::AlignedDoubles>(values.begin(), values.end());
    const auto power = std::make_shared<dsp::AlignedDoubles>(m_length / 2);
    add("power-spectrum", contender, m_length, [=] { compute(*samples, *power); });
  }

  std::size_t m_length;
  std::vector<double> m_expected;
  Compute m_literal;
};

void addLength(int length) {
  const auto count = static_cast<std::size_t>(length);
  const auto reference = analyzerOf(length, *dsp::fftKernels().front());
  const auto literal = std::make_shared<LiteralPowerSpectrum>(reference.coefficients(), reference.WindowPower());
  const Contest contest(count, [literal](auto samples, auto power) { literal->compute(samples, power); });
  for (const dsp::FftKernel* kernel : dsp::fftKernels()) {
    const auto analyzer = std::make_shared<CSpectrumAnalyzer>(analyzerOf(length, *kernel));
    const bool fastest = kernel == dsp::fftKernels().front();
    contest.addExact(fastest ? ours : std::string("ours, ") + kernel->name,
                     [analyzer](auto samples, auto power) { analyzer->ComputePowerSpectrum(samples, power); });
  }
  for (const bool measured : {false, true}) {
    const auto fftw = std::make_shared<FftwPowerSpectrum>(reference.coefficients(), reference.WindowPower(),
                                                          measured ? FFTW_MEASURE : FFTW_ESTIMATE);
    contest.addNear(
        measured ? "FFTW MEASURE" : "FFTW ESTIMATE",
        [fftw](auto samples, auto power) { fftw->compute(samples, power); }, 1e-5);
  }
  contest.addNear("KissFFT, single precision", kissPowerSpectrum(reference), 1e-4);
}

}  // namespace

void addPowerSpectra() {
  for (int length = 512; length <= 65536; length *= 2) addLength(length);
}

}  // namespace av::bench
