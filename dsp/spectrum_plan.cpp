#include "dsp/spectrum_plan.h"

#include "dsp/fft_factors.h"
#include "dsp/real_spectrum.h"

#include <algorithm>

namespace av::dsp {
namespace {

/// The last stages that are done together with the powers.
constexpr std::uint32_t joinedStages = 2;

/// Imaginary parts begin so many values behind a power of two after the real ones: the same place of both, at a multiple
/// of 4 KB, would compete for the few lines that a first-level cache has for such addresses.
constexpr std::size_t skew = 40;

/// Ahead of the vectors' factors, rounded up to whole cache lines.
constexpr std::size_t middleFactorCount = 24;

/// What one group of the last stages needs.
class GroupFactors {
 public:
  explicit GroupFactors(std::uint32_t points)
      : m_quarter(points / 4),
        m_first(points / 4, false),
        m_second(points / 2, false),
        m_mirrorReal(points / 2),
        m_mirrorImaginary(points / 2) {
    fillMirrorFactors(m_mirrorReal, m_mirrorImaginary);
  }

  /// Writes the real and imaginary parts of the three twiddle factors of group j, each `stride` after the one before.
  void writeTwiddles(double* to, std::size_t stride, std::size_t j) const {
    const double values[] = {m_first.real[j],       m_first.imaginary[j],         m_second.real[j],
                             m_second.imaginary[j], m_second.real[j + m_quarter], m_second.imaginary[j + m_quarter]};
    for (const double value : values) {
      *to = value;
      to += stride;
    }
  }

  /// Writes half of the factor of bin k; see mirroredPowers.
  void writeMirror(double* to, std::size_t stride, std::size_t k) const {
    to[0] = 0.5 * m_mirrorReal[k];
    to[stride] = 0.5 * m_mirrorImaginary[k];
  }

 private:
  std::size_t m_quarter;
  StageFactors m_first;
  StageFactors m_second;
  std::vector<double> m_mirrorReal;
  std::vector<double> m_mirrorImaginary;
};

}  // namespace

SpectrumPlan::SpectrumPlan(std::uint32_t points, const FftKernel& kernel)
    : m_transform(points, false, kernel, joinedStages) {
  if (!isUsable()) return;
  const double* const first = m_transform.steps().firstFactors;
  m_onesAreExact = first[0] == 1.0 && first[1] == 0.0 && first[2] == 1.0 && first[3] == 0.0;
  fillFactors(points);
  m_values.resize(2 * std::size_t{points} + skew);
}

void SpectrumPlan::compute(double* samples, const double* window, double divisor, double* power) noexcept {
  const FftKernel& kernel = *m_transform.kernel();
  const FftSteps& steps = m_transform.steps();
  const SpectrumSteps last{steps.points, m_factors.data(), m_factors.data() + middleFactorCount, divisor};
  double* const real = m_values.data();
  double* const imaginary = real + steps.points + skew;
  kernel.transformWindowed(steps, samples, window, real, imaginary);
  // Squares do not show the sign of a zero; what is not finite has to meet all factors.
  if (kernel.power(last, real, imaginary, power) && m_onesAreExact) return;
  kernel.transformSamples(steps, samples, real, imaginary);
  kernel.power(last, real, imaginary, power);
}

void SpectrumPlan::fillFactors(std::uint32_t points) {
  const GroupFactors groups(points);
  const std::size_t lanes = m_transform.kernel()->lanes;
  const std::size_t quarter = points / 4;
  const std::size_t eighth = points / 8;
  const std::size_t perVector = 20 * lanes;
  m_factors.resize(middleFactorCount + eighth / lanes * perVector);

  double* to = m_factors.data();
  groups.writeTwiddles(to, 1, 0);
  groups.writeTwiddles(to + 6, 1, eighth);
  groups.writeMirror(to + 12, 1, quarter);
  groups.writeMirror(to + 14, 1, eighth);
  groups.writeMirror(to + 16, 1, eighth + quarter);

  to += middleFactorCount;
  for (std::size_t next = 1; next < eighth; next += lanes, to += perVector) {
    const std::size_t first = std::min(next, eighth - lanes);
    for (std::size_t lane = 0; lane < lanes; ++lane) {
      const std::size_t j = first + lane;
      groups.writeTwiddles(to + lane, lanes, j);
      groups.writeTwiddles(to + 6 * lanes + (lanes - 1 - lane), lanes, quarter - j);
      groups.writeMirror(to + 12 * lanes + lane, lanes, j);
      groups.writeMirror(to + 14 * lanes + lane, lanes, j + quarter);
      groups.writeMirror(to + 16 * lanes + lane, lanes, quarter - j);
      groups.writeMirror(to + 18 * lanes + lane, lanes, 2 * quarter - j);
    }
  }
}

}  // namespace av::dsp
