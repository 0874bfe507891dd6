#include "dsp/hartley_plan.h"

#include "dsp/hartley_steps.h"

#include <algorithm>
#include <bit>
#include <cassert>

namespace av::dsp {
namespace {

constexpr std::size_t mostStages = 8;  // of the spans 4 to 65536

/// The spans of the radix-4 stages: this one, four times as many, ...
int firstSpan(const HartleyPlan::Recipe& recipe) noexcept { return recipe.startsWithSpanTwo ? 8 : 4; }

/// The largest span of those that are done in one go.
int blockSpan(const HartleyPlan::Recipe& recipe) noexcept { return recipe.startsWithSpanTwo ? 32 : 64; }

}  // namespace

HartleyPlan::HartleyPlan(int capacity, std::span<const HartleyKernel* const> kernels) : m_kernels(kernels) {
  assert(capacity >= 0 && capacity <= 65536);
  const auto length = static_cast<std::size_t>(capacity);
  std::size_t largestSpan = 4;
  while (largestSpan * 4 <= length) largestSpan *= 4;
  m_order.reserve(length);
  m_blockTwiddles.reserve(static_cast<std::size_t>(twiddleCount(64)) + 1);
  m_factors.reserve(length);  // half a span a stage: not even two thirds of the length
  m_stages.reserve(mostStages);
  m_work.resize((length + largestSpan - 1) / largestSpan * largestSpan);
}

void HartleyPlan::prepare(const Recipe& recipe) noexcept {
  m_recipe = recipe;
  const auto length = static_cast<std::size_t>(recipe.length);
  m_order.resize(length);
  fillBitReversedOrder(m_order);
  m_blockTwiddles.clear();
  m_factors.clear();
  m_stages.clear();
  m_reach = length;
  chooseKernel();
  for (int span = firstSpan(recipe); span <= recipe.length; span *= 4) {
    const auto block = static_cast<std::size_t>(span);
    m_reach = (length + block - 1) / block * block;
    if (span > blockSpan(recipe)) {
      appendFactors(span);
    } else {
      for (int k = 1; k <= twiddleCount(span); ++k) m_blockTwiddles.push_back(recipe.twiddle(k, recipe.length, span));
    }
  }
  m_steps = {static_cast<std::uint32_t>(length),
             static_cast<std::uint32_t>(blockSpan(recipe)),
             std::has_single_bit(length),
             m_order.data(),
             m_blockTwiddles.data(),
             m_stages.data(),
             static_cast<std::uint32_t>(m_stages.size())};
}

void HartleyPlan::chooseKernel() noexcept {
  m_kernel = nullptr;
  const int block = blockSpan(m_recipe);
  if (m_recipe.length < 4 * block) return;
  const auto blocks = static_cast<std::uint32_t>(m_recipe.length / block);
  m_kernel = *std::ranges::find_if(m_kernels, [&](const HartleyKernel* kernel) { return kernel->lanes <= blocks; });
}

/// The factors of a stage of a span above blockSpan(), as HartleyStage wants them.
void HartleyPlan::appendFactors(int span) noexcept {
  const std::size_t lanes = m_kernel->lanes;
  const std::size_t start = m_factors.size();
  const auto append = [&](std::size_t firstIndex) {
    const std::size_t vector = m_factors.size();
    m_factors.resize(vector + 4 * lanes);
    double* to = m_factors.data() + vector;
    for (std::size_t lane = 0; lane < lanes; ++lane, ++to) {
      const HartleyTwiddle t = m_recipe.twiddle(static_cast<int>(firstIndex + lane), m_recipe.length, span);
      to[0] = t.cos1;
      to[lanes] = t.sin1;
      to[2 * lanes] = t.cos2;
      to[3 * lanes] = t.sin2;
    }
  };
  const std::size_t eighth = static_cast<std::size_t>(span) / 8;
  append(eighth - lanes);
  for (std::size_t k = 1; k + lanes <= eighth; k += lanes) append(k);
  m_stages.push_back({static_cast<std::uint32_t>(span), m_factors.data() + start});
}

void HartleyPlan::transform(double* values, std::span<const double> window) noexcept {
  const auto length = m_order.size();
  double* const work = m_work.data();
  const bool multipliesOnTheWay = m_kernel != nullptr && m_steps.powerOfTwo;
  if (!multipliesOnTheWay)
    for (std::size_t i = 0; i < window.size(); ++i) values[i] *= window[i];
  std::size_t done = 0;
  if (m_kernel != nullptr) {
    m_kernel->blocks(m_steps, values, multipliesOnTheWay && !window.empty() ? window.data() : nullptr, work);
    done = length / m_steps.blockSpan * m_steps.blockSpan;
  }
  for (std::size_t i = done; i < length; ++i) work[i] = values[m_order[i]];
  std::copy(values + length, values + m_reach, work + length);
  plainStages(done);
  if (m_kernel != nullptr) {
    m_kernel->stages(m_steps, work, values);
  } else {
    std::copy(work, work + m_reach, values);
  }
}

/// The stages up to blockSpan() from element `start` on.
void HartleyPlan::plainStages(std::size_t start) noexcept {
  double* const x = m_work.data() + start;
  const int length = m_recipe.length - static_cast<int>(start);
  if (m_recipe.startsWithSpanTwo)
    for (int i = 0; i + 1 < length; i += 2) sumAndDifference(x[i], x[i + 1]);
  const HartleyTwiddle* twiddles = m_blockTwiddles.data();
  const int largest = std::min(blockSpan(m_recipe), m_recipe.length);
  for (int span = firstSpan(m_recipe); span <= largest; span *= 4) {
    radix4HartleyStage(x, length, span, twiddles);
    twiddles += twiddleCount(span);
  }
}

}  // namespace av::dsp
