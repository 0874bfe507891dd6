#pragma once

#include "dsp/fft_kernel.h"
#include "dsp/fft_passes.h"
#include "dsp/spectrum_pass.h"

namespace av::dsp {

/// A kernel's functions; see FftKernel.
template <int lanes, int firstStages, int mostStages>
struct FftKernelBody {
  static void transform(const FftSteps& steps, const double* realIn, const double* imaginaryIn, double* real,
                        double* imaginary) noexcept {
    if (imaginaryIn != nullptr) {
      firstPass<lanes, firstStages>(steps, PlainInput<lanes, true>{realIn, imaginaryIn}, real, imaginary);
    } else {
      firstPass<lanes, firstStages>(steps, PlainInput<lanes, false>{realIn, nullptr}, real, imaginary);
    }
    laterPasses<lanes, mostStages>(steps, real, imaginary);
  }

  static void transformSamples(const FftSteps& steps, const double* samples, double* real, double* imaginary) noexcept {
    firstPass<lanes, firstStages>(steps, SampleInput<lanes>{samples}, real, imaginary);
    laterPasses<lanes, mostStages>(steps, real, imaginary);
  }

  // NOLINTNEXTLINE(readability-non-const-parameter): the samples are written, but where templates hide it
  static void transformWindowed(const FftSteps& steps, double* samples, const double* window, double* real,
                                double* imaginary) noexcept {
    firstPass<lanes, firstStages>(steps, WindowedInput<lanes>{samples, window}, real, imaginary);
    laterPasses<lanes, mostStages>(steps, real, imaginary);
  }

  static bool power(const SpectrumSteps& steps, const double* real, const double* imaginary, double* bins) noexcept {
    return spectrumPass<lanes>(steps, real, imaginary, bins);
  }

  static constexpr FftKernel kernel(const char* name) noexcept {
    return {name, lanes, firstStages, mostStages, transform, transformSamples, transformWindowed, power};
  }
};

}  // namespace av::dsp
