#pragma once

#include <cmath>
#include <cstddef>
#include <utility>
#include <vector>

namespace av::test {

/// The level meter's transform of the first `n` places, word by word: reordering by the carry loop, then the stages, each
/// with its first butterflies, its eighth-point butterflies and its rotations, twiddle by twiddle over all blocks.
/// `x` has 49152 places.
inline void literalRadix4(std::vector<double>& x, std::size_t n) {
  const auto pair = [&x](std::size_t u, std::size_t w) {
    const double sum = x.at(u) + x.at(w);
    const double difference = x.at(u) - x.at(w);
    x.at(u) = sum;
    x.at(w) = difference;
  };

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
  if (n < 4) return;

  const double pi = 3.14159265358979323846;
  for (std::size_t k = 4; k <= n; k *= 4) {
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
      const double theta = static_cast<double>(((t * n) / 4) / q) * 2 * pi / static_cast<double>(n);
      const double c1 = std::cos(theta);
      const double s1 = std::sin(theta);
      const double c2 = c1 * c1 - s1 * s1;
      const double s2 = 2 * c1 * s1;
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

}  // namespace av::test
