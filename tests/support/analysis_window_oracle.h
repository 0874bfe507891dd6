#pragma once

#include <cmath>
#include <cstdlib>
#include <vector>

namespace av::test {

/// I0 by its power series, Σ (x²/4)^k / (k!)², in wider precision.
inline long double besselSeries(long double x) {
  long double sum = 1;
  long double term = 1;
  for (int k = 1; term > sum * 1e-22L; ++k) {
    term *= x * x / (4.0L * k * k);
    sum += term;
  }
  return sum;
}

/// The coefficient n − 1 (n from 1) of an analysis window of N samples, in wider precision, except that the arguments of
/// the cosines are formed in double precision and the constants are those of single precision.
inline long double analysisWindow(int type, int n, int N, long double beta) {
  const long double pi = 3.14159265358979323846264338327950288L;
  const int i = n - 1;
  const auto C = [&](double factorOfPi) {
    const double doublePi = 3.141592653589793116;
    const double argument = i * (factorOfPi * doublePi) / (N - 1);
    return std::cos(static_cast<long double>(argument));
  };
  switch (type) {
    case 0: return 1;
    case 1: return 0.54f - static_cast<long double>(0.46f) * C(2);
    case 2: return 0.5L - 0.5L * C(2);
    case 3:
      if (N % 2 == 0) return n <= N / 2 ? (n - 1) * 2.0L / N : (N - n) * 2.0L / N;
      return n <= (N + 1) / 2 ? (n - 1) * 2.0L / (N + 1) : (N - n) * 2.0L / (N + 1);
    case 4: {
      const long double q = i < N - 1 ? -0.5L : 0.5L;
      return 0.62f - 0.48f * 0.5L + static_cast<long double>(0.38f) * 2 * pi * q;
    }
    case 5: return 0.42f - 0.5L * C(2) + static_cast<long double>(0.08f) * C(4);
    case 6:
      return 0.35875f - static_cast<long double>(0.48829f) * C(2) + static_cast<long double>(0.14128f) * C(4) -
             static_cast<long double>(0.01168f) * C(6);
    case 7: {
      const int half = N / 2;
      const int d = i - half;
      const auto angle = static_cast<long double>(d * 3.141592653589793116 / half);
      const int q = d >= half ? 1 : d <= -half ? -1 : 0;
      return std::cos(angle) * (1 - q) + std::sin(angle) / pi;
    }
    case 8:
      return 0.3635819f - static_cast<long double>(0.4891775f) * C(2) + static_cast<long double>(0.1365995f) * C(4) -
             static_cast<long double>(0.0106411f) * C(6);
    case 9:
      if (N % 2 != 0) return (n <= (N + 1) / 2 ? 2.0L * n : 2.0L * (N - n + 1)) / (N + 1);
      return (n <= N / 2 ? 2.0L * n - 1 : 2.0L * (N - n) - 1) / N;
    case 10: {
      const long double x = (2.0L * n - N - 1) / (N - 1);
      return std::fabs(besselSeries(beta * std::sqrt(1 - x * x) / besselSeries(beta)));  // not yet in single precision
    }
    default: return NAN;
  }
}

}  // namespace av::test
