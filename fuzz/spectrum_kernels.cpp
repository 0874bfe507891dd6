// The transforms: the vector kernels against the plain operations, to the bit, and the Hartley transforms against what
// they are.

#include "dsp/fft_plan.h"
#include "dsp/hartley.h"
#include "dsp/radix4_hartley.h"
#include "dsp/spectrum_analyzer.h"
#include "fuzz/check.h"
#include "fuzz/input.h"
#include "fuzz/targets.h"
#include "support/fft_oracle.h"
#include "support/radix4_oracle.h"

#include <bit>
#include <cmath>
#include <span>
#include <vector>

namespace av::fuzz {
namespace {

/// Which of several NaNs comes out is not part of the promise.
bool sameBits(double a, double b) {
  return std::bit_cast<std::uint64_t>(a) == std::bit_cast<std::uint64_t>(b) || (std::isnan(a) && std::isnan(b));
}

bool sameBits(std::span<const double> a, std::span<const double> b) {
  for (std::size_t i = 0; i < a.size(); ++i)
    if (!sameBits(a[i], b[i])) return false;
  return a.size() == b.size();
}

/// Samples as decoding makes them, or any doubles at all.
std::vector<double> anySignal(Input& input, std::size_t count) {
  static constexpr double oddities[] = {INFINITY, -INFINITY, NAN, 1e308, -1e308, 5e-324, -0.0, 1e-310, 1e200};
  std::vector<double> signal(count);
  const bool whole = input.ConsumeBool();
  const double scale = whole ? 1.0 : std::ldexp(1.0, input.ConsumeIntegralInRange<int>(-1000, 1000));
  std::uint32_t state = input.ConsumeIntegral<std::uint32_t>() | 1;
  const bool silent = state == 1;
  for (double& sample : signal) {
    state = state * 1664525u + 1013904223u;
    sample = silent ? 0 : scale * (static_cast<double>(state >> 16) - 32768);
  }
  for (int odd = input.ConsumeIntegralInRange<int>(0, 3); odd > 0; --odd)
    signal[input.ConsumeIntegralInRange<std::size_t>(0, count - 1)] = input.PickValueInArray(oddities);
  return signal;
}

const dsp::FftKernel& anyKernel(Input& input) {
  const auto kernels = dsp::fftKernels();
  return *kernels[input.ConsumeIntegralInRange<std::size_t>(0, kernels.size() - 1)];
}

/// The kernels from one of them on; the last one is for every processor and every length.
std::span<const dsp::HartleyKernel* const> anyKernels(Input& input) {
  const auto kernels = dsp::hartleyKernels();
  return kernels.subspan(input.ConsumeIntegralInRange<std::size_t>(0, kernels.size() - 1));
}

void comparePowerSpectra(Input& input) {
  const std::int32_t length = 4 << input.ConsumeIntegralInRange<int>(0, 9);
  dsp::CSpectrumAnalyzer analyzer(anyKernel(input));
  analyzer.SetLength(length);
  analyzer.SetWindowType(input.ConsumeIntegralInRange<std::uint32_t>(0, 11));
  if (input.ConsumeBool()) analyzer.SetLength(length);  // only now the power is the window's
  const auto count = static_cast<std::size_t>(length);
  std::vector<double> samples = anySignal(input, count);
  std::vector<double> windowed(count);
  for (std::size_t i = 0; i < count; ++i) windowed[i] = samples[i] * analyzer.coefficients()[i];
  const std::vector<double> expected = test::literalPowerSpectrum(windowed, analyzer.WindowPower());
  std::vector<double> power(count / 2);
  analyzer.ComputePowerSpectrum(samples, power);
  require(sameBits(samples, windowed), "the samples are windowed in place");
  require(sameBits(power, expected), "a power spectrum has the bits of the plain operations");
}

void compareTransforms(Input& input) {
  const std::uint32_t length = 2u << input.ConsumeIntegralInRange<int>(0, 10);
  const bool inverse = input.ConsumeBool();
  const dsp::FftPlan plan(length, inverse, anyKernel(input));
  const std::vector<double> real = anySignal(input, length);
  const std::vector<double> imaginary = input.ConsumeBool() ? anySignal(input, length) : std::vector<double>();
  const auto expected = test::literalFft(inverse, real, imaginary);
  std::vector<double> realOut(length);
  std::vector<double> imaginaryOut(length);
  plan.transform(real.data(), imaginary.empty() ? nullptr : imaginary.data(), realOut.data(), imaginaryOut.data());
  require(sameBits(realOut, expected.real) && sameBits(imaginaryOut, expected.imaginary),
          "a transform has the bits of the plain operations");
}

/// The Hartley transform is its own inverse, but for the length.
void transformTwice(Input& input) {
  const int length = 2 << input.ConsumeIntegralInRange<int>(0, 10);
  const auto count = static_cast<std::size_t>(length);
  const std::vector<double> signal = anySignal(input, count);
  double largest = 0;
  for (const double sample : signal) largest = std::isnan(sample) ? INFINITY : std::max(largest, std::fabs(sample));
  dsp::HartleyTransform transform(length, anyKernels(input));
  std::vector<double> values = signal;
  transform.transform(values);
  std::vector<double> others = signal;
  dsp::HartleyTransform(length, anyKernels(input)).transform(others);
  require(sameBits(values, others), "all kernels give a Hartley transform the same bits");
  transform.transform(values);
  if (!(largest < 1e290) || (largest != 0 && largest < 1e-290)) return;
  for (std::size_t i = 0; i < count; ++i) {
    // Each of the two transforms errs by less than 1e-15 of its largest value, which is the length times the largest sample.
    require(std::fabs(values[i] / length - signal[i]) <= 2e-15 * length * largest, "twice is the signal times N");
  }
}

/// The level meter's transform, of any length, in a buffer that reaches beyond it.
void compareRadix4(Input& input) {
  using Radix4 = dsp::Radix4Hartley;
  static constexpr int lengths[] = {4, 64, 1024, 4096, 1025, 1100, 3000, 257, 511, 2048};
  const int length = input.ConsumeBool() ? input.PickValueInArray(lengths) : input.ConsumeIntegralInRange<int>(0, 4200);
  std::vector<double> expected(Radix4::bufferLength);
  const auto signal =
      anySignal(input, static_cast<std::size_t>(length) + input.ConsumeIntegralInRange<std::size_t>(1, 99));
  std::copy(signal.begin(), signal.end(), expected.begin());
  std::vector<double> values = expected;
  Radix4 transform(anyKernels(input));
  transform.transform(std::span<double, Radix4::bufferLength>(values), length);
  test::literalRadix4(expected, static_cast<std::size_t>(length));
  require(sameBits(values, expected), "a radix-4 transform has the bits of the plain operations");
}

}  // namespace

void spectrumKernels(Bytes bytes) {
  Input input(bytes.data(), bytes.size());
  switch (input.ConsumeIntegralInRange<int>(0, 3)) {
    case 0: return comparePowerSpectra(input);
    case 1: return compareTransforms(input);
    case 2: return transformTwice(input);
    default: return compareRadix4(input);
  }
}

}  // namespace av::fuzz
