#include "dsp/analysis_windows.h"

#include "dsp/bessel_i0.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <numbers>

namespace av::dsp {
namespace {

constexpr double pi = std::numbers::pi;

/// A constant of single precision in double arithmetic.
constexpr double single(double constant) noexcept { return static_cast<float>(constant); }

/// Positions are signed: some windows divide negative ones.
using Position = std::int64_t;

/// w[i] = weight(i) for all i.
template <class Weight>
void fill(std::span<double> w, Weight weight) noexcept {
  for (std::size_t i = 0; i < w.size(); ++i) w[i] = weight(static_cast<Position>(i));
}

/// cos(i·turns·2π/(N − 1)), the argument formed from the left.
double cosine(Position i, double turns, Position length) noexcept {
  return std::cos(static_cast<double>(i) * (turns * 2.0 * pi) / static_cast<double>(length - 1));
}

/// a0 − a1·cos + a2·cos of twice − a3·cos of three times the angle.
void fillCosineSum(std::span<double> w, double a0, double a1, double a2, double a3) noexcept {
  const auto length = static_cast<Position>(w.size());
  fill(w, [=](Position i) {
    return a0 - a1 * cosine(i, 1, length) + a2 * cosine(i, 2, length) - a3 * cosine(i, 3, length);
  });
}

void fillBartlett(std::span<double> w) noexcept {
  const auto length = static_cast<Position>(w.size());
  const Position base = length + length % 2;
  fill(w, [=](Position i) {
    const Position distance = i + 1 <= base / 2 ? i : length - 1 - i;
    return static_cast<double>(distance * 2) / static_cast<double>(base);
  });
}

void fillBartlettHann(std::span<double> w) noexcept {
  const auto length = static_cast<Position>(w.size());
  fill(w, [=](Position i) {
    const double x = static_cast<double>(i / (length - 1)) - 0.5;  // whole numbers, on purpose
    return single(0.62) - single(0.48) * std::fabs(x) + single(0.38) * (2.0 * pi) * x;
  });
}

void fillBohman(std::span<double> w) noexcept {
  const Position half = static_cast<Position>(w.size()) / 2;
  fill(w, [=](Position i) {
    const Position d = i - half;
    const double angle = static_cast<double>(d) * pi / static_cast<double>(half);
    const auto quotient = static_cast<double>(d / half);  // whole numbers, on purpose
    return std::cos(angle) * (1.0 - quotient) + std::sin(angle) * (1.0 / pi);
  });
}

void fillTriangular(std::span<double> w) noexcept {
  const auto length = static_cast<Position>(w.size());
  fill(w, [=](Position i) {
    const Position n = i + 1;
    if (length % 2 != 0) {
      const Position numerator = n <= (length + 1) / 2 ? 2 * n : 2 * (length - n + 1);
      return static_cast<double>(numerator) / static_cast<double>(length + 1);
    }
    const Position numerator = n <= length / 2 ? 2 * n - 1 : 2 * (length - n) - 1;
    return static_cast<double>(numerator) / static_cast<double>(length);
  });
}

void fillKaiser(std::span<double> w, double beta) noexcept {
  const auto length = static_cast<Position>(w.size());
  const double edge = besselI0(beta);
  fill(w, [=](Position i) {
    const double x = static_cast<double>(2 * (i + 1) - length - 1) / static_cast<double>(length - 1);
    return single(std::fabs(besselI0(beta * std::sqrt(1.0 - std::pow(x, 2.0)) / edge)));
  });
}

}  // namespace

void fillAnalysisWindow(std::uint32_t type, double kaiserBeta, std::span<double> coefficients) noexcept {
  if (coefficients.size() < 2) {
    std::ranges::fill(coefficients, 1.0);
    return;
  }
  const auto& w = coefficients;
  switch (type) {
    case 0: std::ranges::fill(w, 1.0); break;
    case 1: fillCosineSum(w, single(0.54), single(0.46), 0.0, 0.0); break;
    case 2: fillCosineSum(w, 0.5, 0.5, 0.0, 0.0); break;
    case 3: fillBartlett(w); break;
    case 4: fillBartlettHann(w); break;
    case 5: fillCosineSum(w, single(0.42), 0.5, single(0.08), 0.0); break;
    case 6: fillCosineSum(w, single(0.35875), single(0.48829), single(0.14128), single(0.01168)); break;
    case 7: fillBohman(w); break;
    case 8: fillCosineSum(w, single(0.3635819), single(0.4891775), single(0.1365995), single(0.0106411)); break;
    case 9: fillTriangular(w); break;
    case kaiserWindow: fillKaiser(w, kaiserBeta); break;
    default: break;
  }
}

double windowPower(std::span<const double> coefficients) noexcept {
  if (coefficients.empty()) return 0.0;
  double sum = 0.0;
  for (const double w : coefficients) sum += w * w;
  return sum / static_cast<double>(coefficients.size());
}

}  // namespace av::dsp
