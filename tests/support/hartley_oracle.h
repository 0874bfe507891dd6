#pragma once

#include <cmath>
#include <complex>
#include <cstddef>
#include <cstdint>
#include <numbers>
#include <random>
#include <span>
#include <vector>

// The discrete Hartley transform in long double (64 mantissa bits on every machine of ours), made twice over: by the sum
// that defines it, and by a complex transform that is checked against that sum and is quick enough for every length.

namespace av::test {

/// cos(2πm/N) and sin(2πm/N) for m = 0 to N − 1, from angles of at most an eighth of a turn, where long double cosines
/// and sines are good to the last bits on every platform. N is a multiple of 8.
class Circle {
 public:
  explicit Circle(std::size_t n) : m_points(n) {
    for (std::size_t m = 0; m <= n / 8; ++m) {
      const long double angle =
          2.0L * std::numbers::pi_v<long double> * static_cast<long double>(m) / static_cast<long double>(n);
      const long double c = std::cos(angle);
      const long double s = std::sin(angle);
      set(m, c, s);
      set(n / 4 - m, s, c);
      set(n / 4 + m, -s, c);
      set(n / 2 - m, -c, s);
      set(n / 2 + m, -c, -s);
      set(3 * n / 4 - m, -s, -c);
      set(3 * n / 4 + m, s, -c);
      set(n - m, c, -s);
    }
  }
  long double cos(std::size_t m) const { return at(m).real(); }
  long double sin(std::size_t m) const { return at(m).imag(); }

 private:
  using Point = std::complex<long double>;
  void set(std::size_t m, long double c, long double s) { m_points[m % m_points.size()] = {c, s}; }
  const Point& at(std::size_t m) const { return m_points[m % m_points.size()]; }
  std::vector<Point> m_points;
};

/// H[k] = Σ x[n]·(cos(2πnk/N) + sin(2πnk/N)), term by term.
template <class Sample>
long double hartleySum(std::span<const Sample> x, std::size_t k, const Circle& circle) {
  long double sum = 0.0L;
  std::size_t m = 0;
  for (const Sample sample : x) {
    sum += static_cast<long double>(sample) * (circle.cos(m) + circle.sin(m));
    m = (m + k) % x.size();
  }
  return sum;
}

namespace detail {

template <class Sample>
void transformComplex(const Sample* x, std::size_t stride, std::size_t n, std::complex<long double>* out,
                      const Circle& circle, std::size_t whole) {
  if (n == 1) {
    out[0] = static_cast<long double>(*x);
    return;
  }
  const std::size_t half = n / 2;
  transformComplex(x, 2 * stride, half, out, circle, whole);
  transformComplex(x + stride, 2 * stride, half, out + half, circle, whole);
  for (std::size_t k = 0; k < half; ++k) {
    const long double c = circle.cos(k * (whole / n));
    const long double s = circle.sin(k * (whole / n));
    const long double re = out[half + k].real() * c + out[half + k].imag() * s;
    const long double im = out[half + k].imag() * c - out[half + k].real() * s;
    const std::complex<long double> odd(re, im);
    out[half + k] = out[k] - odd;
    out[k] += odd;
  }
}

}  // namespace detail

/// The whole transform, as real part less imaginary part of the complex one. N is a power of two from 8.
template <class Sample>
std::vector<long double> exactHartley(std::span<const Sample> x) {
  const Circle circle(x.size());
  std::vector<std::complex<long double>> spectrum(x.size());
  detail::transformComplex(x.data(), 1, x.size(), spectrum.data(), circle, x.size());
  std::vector<long double> hartley;
  for (const auto& bin : spectrum) hartley.push_back(bin.real() - bin.imag());
  return hartley;
}

/// Level of bin k of an exact transform, in dB of full scale.
inline long double exactLevelDb(std::span<const long double> hartley, std::size_t k, long double fullScale) {
  const auto n = static_cast<long double>(hartley.size());
  const long double re = (hartley[k] + hartley[hartley.size() - k]) / n;
  const long double im = (hartley[k] - hartley[hartley.size() - k]) / n;
  const long double power = re * re + im * im;
  return power == 0.0L ? -200.0L : 20.0L * std::log10(std::sqrt(power) / fullScale);
}

/// Weight of a centred window in long double, in the words of its definition (N even).
inline long double exactWindow(int type, std::size_t index, std::size_t length) {
  const auto i = static_cast<long double>(index);
  const auto n = static_cast<long double>(length);
  const long double pi = std::numbers::pi_v<long double>;
  switch (type) {
    case 1: return 1 - ((2 * i - n) / n) * ((2 * i - n) / n);
    case 2: return i < n / 2 ? (i - n / 2) * 2 / n + 1 : i > n / 2 ? 1 - (i - n / 2) * 2 / n : 1;
    case 3: return 0.5L * std::cos(2 * pi * (i - n / 2) / n) + 0.5L;
    case 4: return 0.46000000834465027L * std::cos(2 * pi * (i - n / 2) / n) + 0.5400000214576721L;
    default: return 1;
  }
}

/// Whole numbers from −peak to peak, the same on every platform (the standard distributions are not).
inline std::vector<double> noise(std::size_t count, std::int64_t peak, std::uint32_t seed) {
  std::mt19937_64 engine(seed);
  std::vector<double> values(count);
  const auto choices = static_cast<std::uint64_t>(2 * peak + 1);
  for (double& value : values) value = static_cast<double>(static_cast<std::int64_t>(engine() % choices) - peak);
  return values;
}

inline constexpr std::size_t windowSizes[] = {64, 128, 256, 512, 1024, 2048, 4096, 8192, 16384};

}  // namespace av::test
