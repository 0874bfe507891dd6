#include "dsp/fft_plan.h"

#include "dsp/bit_reversal.h"
#include "dsp/fft.h"
#include "dsp/fft_factors.h"

#include <algorithm>
#include <bit>
#include <cstddef>

namespace av::dsp {
namespace {

/// 16 KB of real and imaginary parts: half of a small first-level cache, the other half of which factors pass through.
constexpr std::uint32_t cachedPoints = 1024;

/// Writes the factors of the pass of `stages` stages from `half` on, for vectors of `lanes`, to where a kernel reads them.
double* writeFactors(double* to, std::uint32_t half, std::uint32_t stages, std::uint32_t lanes, bool inverse) {
  const std::size_t perVector = std::size_t{2} * lanes;
  const std::size_t perGroup = perVector * ((std::size_t{1} << stages) - 1);
  std::size_t before = 0;
  for (std::uint32_t legs = 1; legs < 1u << stages; legs *= 2) {
    const StageFactors factors(half * legs, inverse);
    for (std::uint32_t leg = 0; leg < legs; ++leg, before += perVector) {
      for (std::uint32_t j = 0; j < half; ++j) {
        double* const vector = to + j / lanes * perGroup + before + j % lanes;
        vector[0] = factors.real[leg * half + j];
        vector[lanes] = factors.imaginary[leg * half + j];
      }
    }
  }
  return to + half / lanes * perGroup;
}

}  // namespace

StageFactors::StageFactors(std::uint32_t half, bool inverse) : real(half), imaginary(half) {
  FftFactors factors(half, inverse);
  for (std::uint32_t j = 0; j < half; ++j) factors.next(real[j], imaginary[j]);
}

FftPlan::FftPlan(std::uint32_t length, bool inverse, const FftKernel& kernel, std::uint32_t stagesLeft)
    : m_length(length), m_inverse(inverse), m_kernel(&kernel) {
  if (length < shortestKernelTransform || !std::has_single_bit(length)) return;
  const std::uint32_t bits = indexBits(length);
  fillPlaces(bits);
  planPasses(bits - stagesLeft);
  fillFactors();
  m_steps.points = length;
  m_steps.blockPoints = std::min(length, cachedPoints);
  m_steps.places = m_places.data();
  m_steps.firstFactors = m_factors.data();
  m_steps.passes = m_passes.data();
  m_steps.passCount = static_cast<std::uint32_t>(m_passes.size());
}

void FftPlan::transform(const double* realIn, const double* imaginaryIn, double* realOut,
                        double* imaginaryOut) const noexcept {
  if (kernel() == nullptr) {
    FFT(m_length, m_inverse, realIn, imaginaryIn, realOut, imaginaryOut);
    return;
  }
  m_kernel->transform(m_steps, realIn, imaginaryIn, realOut, imaginaryOut);
  if (!m_inverse) return;
  const double scale = 1.0 / m_length;  // a power of two: the product is the quotient
  for (std::uint32_t i = 0; i < m_length; ++i) {
    realOut[i] *= scale;
    imaginaryOut[i] *= scale;
  }
}

void FftPlan::fillPlaces(std::uint32_t bits) {
  const std::uint32_t groupBits = bits - m_kernel->firstStages;
  m_places.resize(std::size_t{1} << groupBits);
  for (std::uint32_t group = 0; group < m_places.size(); ++group)
    m_places[group] = reverseBits(group, groupBits) << m_kernel->firstStages;
}

void FftPlan::planPasses(std::uint32_t stagesInAll) {
  // The passes of fewer stages come first, where a pass over the memory is cheapest.
  const std::uint32_t most = m_kernel->mostStages;
  std::uint32_t done = m_kernel->firstStages;
  while (done < stagesInAll) {
    const std::uint32_t left = stagesInAll - done;
    std::uint32_t stages = left % most != 0 ? left % most : most;
    if (most == 3 && left % 3 == 1 && left > 1) stages = 2;
    m_passes.push_back({1u << done, stages, nullptr});
    done += stages;
  }
}

void FftPlan::fillFactors() {
  const auto doubles = [](std::uint32_t half, std::uint32_t stages) {
    return 2 * std::size_t{half} * ((std::size_t{1} << stages) - 1);
  };
  // The first pass has at most 7 factors; those behind it begin with a cache line.
  constexpr std::size_t first = 16;
  std::size_t size = first;
  for (const FftPass& pass : m_passes) size += doubles(pass.half, pass.stages);
  m_factors.resize(size);
  writeFactors(m_factors.data(), 1, m_kernel->firstStages, 1, m_inverse);
  double* next = m_factors.data() + first;
  for (FftPass& pass : m_passes) {
    pass.factors = next;
    next = writeFactors(next, pass.half, pass.stages, m_kernel->lanes, m_inverse);
  }
}

}  // namespace av::dsp
