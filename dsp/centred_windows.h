#pragma once

#include <cstddef>
#include <span>
#include <vector>

namespace av::dsp {

/// Weight of sample `index` (0 to length − 1) under one of the four windows that have their apex at length/2:
///   1  parabola            1 − ((2i − N)/N)²
///   2  triangle            1 − |i − N/2|·2/N; the sample at N/2 (an integer half) is left as it is
///   3  raised cosine       0.5·cos(2π(i − N/2)/N) + 0.5
///   4  raised cosine       0.46·cos(2π(i − N/2)/N) + 0.54, the two constants rounded to single precision: they stay so,
///                          as the displayed levels depend on them
/// Every other type, 0 and negative ones included, weighs nothing: 1.0.
/// Works for any length from 1, odd ones too.
double centredWindowWeight(int type, int index, int length) noexcept;

/// Applies these windows block after block from a table of weights, which is made anew only when type or length change.
/// Not for use by two threads at once.
class CentredWindow {
 public:
  /// Reserves the table for blocks of up to `capacity` samples. Throws std::bad_alloc.
  explicit CentredWindow(std::size_t capacity) { m_weights.reserve(capacity); }

  /// The weights of a window of `length` samples; none for a type that weighs nothing.
  /// Allocates only for lengths above the capacity (std::bad_alloc).
  std::span<const double> weights(int type, std::size_t length) {
    if (type < 1 || type > 4) return {};
    if (type != m_type || length != m_weights.size()) makeWeights(type, length);
    return m_weights;
  }

  /// Multiplies each sample by its weight; a block's length is the window's length.
  /// Allocates only for blocks that are longer than the capacity (std::bad_alloc, the samples are untouched then).
  void apply(int type, std::span<double> samples) {
    const std::span<const double> table = weights(type, samples.size());
    for (std::size_t i = 0; i < table.size(); ++i) samples[i] *= table[i];
  }

 private:
  void makeWeights(int type, std::size_t length);

  int m_type = 0;
  std::vector<double> m_weights;
};

}  // namespace av::dsp
