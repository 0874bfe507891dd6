#pragma once

#include <array>
#include <cmath>
#include <cstddef>
#include <utility>
#include <vector>

namespace av::test {

/// Bit-reversed order, by the carry loop; for lengths that are no power of two the loop ends when no bit is left.
inline void literalReorder(std::vector<double>& x, std::size_t n) {
  std::size_t j = 0;
  for (std::size_t i = 1; i < n; ++i) {
    std::size_t m = n / 2;
    j ^= m;
    while ((j & m) == 0) {
      if (m == 0) break;
      m = m / 2;
      j ^= m;
    }
    if (i > j) std::swap(x.at(i), x.at(j));
  }
}

/// Radix-4 stages of the spans `firstSpan`, 4·`firstSpan`, ... of the first `n` places, each with its first butterflies,
/// its eighth-point butterflies and its rotations, twiddle by twiddle over all blocks.
/// `factorsOf(t, span)` → {cos θ, sin θ, cos 2θ, sin 2θ}.
template <class Factors>
void literalStages(std::vector<double>& x, std::size_t n, std::size_t firstSpan, Factors factorsOf) {
  const auto pair = [&x](std::size_t u, std::size_t w) {
    const double sum = x.at(u) + x.at(w);
    const double difference = x.at(u) - x.at(w);
    x.at(u) = sum;
    x.at(w) = difference;
  };
  for (std::size_t k = firstSpan; k <= n; k *= 4) {
    const std::size_t q = k / 4;
    const std::size_t half = k / 2;
    for (std::size_t b = 0; b < n; b += k) {
      pair(b, b + q);
      pair(b + half, b + 3 * q);
      pair(b, b + half);
      pair(b + q, b + 3 * q);
      if (k == 4) continue;
      const std::size_t e = k / 8;
      pair(b + e, b + q + e);
      x.at(b + half + e) *= 1.4142135623730951;
      x.at(b + 3 * q + e) *= 1.4142135623730951;
      pair(b + e, b + half + e);
      pair(b + q + e, b + 3 * q + e);
    }
    for (std::size_t t = 1; t < k / 8; ++t) {
      const auto [c1, s1, c2, s2] = factorsOf(t, k);
      const std::size_t mirror = q - t;
      for (std::size_t b = 0; b < n; b += k) {
        // Second quarter onto the first, fourth onto the third.
        for (const std::size_t base : {b, b + half}) {
          const double u = x.at(base + q + t);
          const double w = x.at(base + q + mirror);
          const double even0 = x.at(base + t);
          const double even1 = x.at(base + mirror);
          x.at(base + t) = even0 + (u * c2 + w * s2);
          x.at(base + q + t) = even0 - (u * c2 + w * s2);
          x.at(base + mirror) = even1 + (u * s2 - w * c2);
          x.at(base + q + mirror) = even1 - (u * s2 - w * c2);
        }
        // The two halves that have come out: third and fourth quarter onto first and second. What stands at index i of
        // the odd half goes with its mirror k/2 − i; once from t on and once, by the complementary angle, from q − t on.
        const auto onto = [&](std::size_t index, double c, double s) {
          const double u = x.at(b + half + index);
          const double w = x.at(b + half + (half - index));
          const double even0 = x.at(b + index);
          const double even1 = x.at(b + half - index);
          x.at(b + index) = even0 + (u * c + w * s);
          x.at(b + half + index) = even0 - (u * c + w * s);
          x.at(b + half - index) = even1 + (u * s - w * c);
          x.at(b + half + half - index) = even1 - (u * s - w * c);
        };
        onto(t, c1, s1);
        onto(mirror, s1, c1);
      }
    }
  }
}

/// The level meter's transform of the first `n` of 49152 places, word by word.
inline void literalRadix4(std::vector<double>& x, std::size_t n) {
  literalReorder(x, n);
  literalStages(x, n, 4, [n](std::size_t t, std::size_t k) {
    const double theta =
        static_cast<double>(((t * n) / 4) / (k / 4)) * 2 * 3.14159265358979323846 / static_cast<double>(n);
    const double c1 = std::cos(theta);
    const double s1 = std::sin(theta);
    return std::array{c1, s1, c1 * c1 - s1 * s1, 2 * c1 * s1};
  });
}

/// The view's transform, for powers of two: a stage of span 2 ahead where the length is no power of four, and each factor
/// from its own cosine or sine.
inline void literalHartley(std::vector<double>& x) {
  const std::size_t n = x.size();
  literalReorder(x, n);
  std::size_t rest = n;
  while (rest > 2) rest /= 4;
  if (rest == 2) {
    for (std::size_t i = 0; i < n; i += 2) {
      const double sum = x.at(i) + x.at(i + 1);
      x.at(i + 1) = x.at(i) - x.at(i + 1);
      x.at(i) = sum;
    }
  }
  literalStages(x, n, rest == 2 ? 8 : 4, [](std::size_t t, std::size_t k) {
    const double theta = 2 * 3.14159265358979323846 * static_cast<double>(t) / static_cast<double>(k);
    return std::array{std::cos(theta), std::sin(theta), std::cos(2 * theta), std::sin(2 * theta)};
  });
}

}  // namespace av::test
