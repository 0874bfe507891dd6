#include "bench/literal_hartley.h"

#include <cmath>
#include <numbers>
#include <utility>

namespace av::bench {
namespace {

void sumAndDifference(double& u, double& w) noexcept {
  const double difference = u - w;
  u = u + w;
  w = difference;
}

void rotate(double& u, double& w, double c, double s) noexcept {
  const double turned = u * c + w * s;
  w = u * s - w * c;
  u = turned;
}

void reorder(double* x, std::size_t n) noexcept {
  std::size_t j = 0;
  for (std::size_t i = 1; i < n; ++i) {
    std::size_t m = n / 2;
    j ^= m;
    while (m != 0 && (j & m) == 0) {
      m /= 2;
      j ^= m;
    }
    if (i > j) std::swap(x[i], x[j]);
  }
}

/// How the factors of an index come about: those of the meter's transform, or of the view's.
struct StageFactors {
  double c1, s1, c2, s2;
};

template <class Factors>
void stage(double* x, std::size_t n, std::size_t span, Factors factorsOf) noexcept {
  const std::size_t q = span / 4;
  const std::size_t e = span / 8;
  for (std::size_t b = 0; b < n; b += span) {
    double* const x0 = x + b;
    double* const x1 = x0 + q;
    double* const x2 = x1 + q;
    double* const x3 = x2 + q;
    sumAndDifference(x0[0], x1[0]);
    sumAndDifference(x2[0], x3[0]);
    sumAndDifference(x0[0], x2[0]);
    sumAndDifference(x1[0], x3[0]);
    if (e == 0) continue;
    sumAndDifference(x0[e], x1[e]);
    x2[e] *= std::numbers::sqrt2;
    x3[e] *= std::numbers::sqrt2;
    sumAndDifference(x0[e], x2[e]);
    sumAndDifference(x1[e], x3[e]);
  }
  for (std::size_t t = 1; t < e; ++t) {
    const auto [c1, s1, c2, s2] = factorsOf(t);
    const std::size_t m = q - t;
    for (std::size_t b = 0; b < n; b += span) {
      double* const x0 = x + b;
      double* const x1 = x0 + q;
      double* const x2 = x1 + q;
      double* const x3 = x2 + q;
      rotate(x1[t], x1[m], c2, s2);
      sumAndDifference(x0[t], x1[t]);
      sumAndDifference(x0[m], x1[m]);
      rotate(x3[t], x3[m], c2, s2);
      sumAndDifference(x2[t], x3[t]);
      sumAndDifference(x2[m], x3[m]);
      rotate(x2[t], x3[m], c1, s1);
      sumAndDifference(x0[t], x2[t]);
      sumAndDifference(x1[m], x3[m]);
      rotate(x2[m], x3[t], s1, c1);
      sumAndDifference(x0[m], x2[m]);
      sumAndDifference(x1[t], x3[t]);
    }
  }
}

double weight(int type, std::size_t index, std::size_t length) noexcept {
  const auto i = static_cast<double>(index);
  const auto n = static_cast<double>(length);
  switch (type) {
    case 1: return 1.0 - (2.0 * i - n) / n * ((2.0 * i - n) / n);
    case 2:
      if (index == length / 2) return 1.0;
      return index < length / 2 ? (i - 0.5 * n) * 2.0 / n + 1.0 : 1.0 - (i - 0.5 * n) * 2.0 / n;
    case 3: return 0.5 * std::cos((i - 0.5 * n) * 2.0 * std::numbers::pi / n) + 0.5;
    default: return double{0.46f} * std::cos((i - 0.5 * n) * 2.0 * std::numbers::pi / n) + double{0.54f};
  }
}

}  // namespace

void literalRadix4Hartley(std::span<double> buffer, std::size_t length) noexcept {
  reorder(buffer.data(), length);
  for (std::size_t span = 4; span <= length; span *= 4) {
    stage(buffer.data(), length, span, [&](std::size_t t) {
      const double theta =
          static_cast<double>(t * length / span) * 2.0 * std::numbers::pi / static_cast<double>(length);
      const double c = std::cos(theta);
      const double s = std::sin(theta);
      return StageFactors{c, s, c * c - s * s, 2.0 * c * s};
    });
  }
}

void literalHartley(std::span<double> values) noexcept {
  const std::size_t n = values.size();
  double* const x = values.data();
  reorder(x, n);
  std::size_t span = 4;
  for (std::size_t rest = n; rest > 1; rest /= 4)
    if (rest == 2) span = 8;
  if (span == 8)
    for (std::size_t i = 0; i < n; i += 2) sumAndDifference(x[i], x[i + 1]);
  for (; span <= n; span *= 4) {
    stage(x, n, span, [&](std::size_t t) {
      const double theta = 2.0 * std::numbers::pi * static_cast<double>(t) / static_cast<double>(span);
      return StageFactors{std::cos(theta), std::sin(theta), std::cos(2.0 * theta), std::sin(2.0 * theta)};
    });
  }
}

void literalLevels(std::span<double> hartley, double fullScale, double emptyDb, double floorDb) noexcept {
  const auto n = static_cast<double>(hartley.size());
  for (std::size_t k = 1; k < hartley.size() / 2; ++k) {
    const double re = (hartley[k] + hartley[hartley.size() - k]) / n;
    const double im = (hartley[k] - hartley[hartley.size() - k]) / n;
    const double p = re * re + im * im;
    const double level = p == 0 ? emptyDb : 20.0 * std::log10(std::sqrt(p) / fullScale);
    hartley[k] = level >= floorDb ? level : floorDb;
  }
}

void literalCentredWindow(std::span<double> samples, int type) noexcept {
  if (type < 1 || type > 4) return;
  for (std::size_t i = 0; i < samples.size(); ++i) samples[i] *= weight(type, i, samples.size());
}

}  // namespace av::bench
