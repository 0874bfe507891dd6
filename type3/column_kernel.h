#pragma once

#include <array>
#include <cstddef>
#include <span>

namespace av::type3 {

/// What decides the height of a column; see columnHeightPx.
struct HeightScale {
  double perSample;  ///< 1 ÷ the transform's length
  double bottomDb;
  double topDb;  ///< above `bottomDb`, both within the range of int, and so is their distance
  double part;   ///< of the area's height that a column may take
  double areaHeightPx;
  double pitchPx;     ///< from segment to segment, at least 1
  double intervalPx;  ///< between two segments; 0: columns are not segmented
};

/// So many columns go through a kernel at a time, a whole number of vectors.
inline constexpr std::size_t columnsAtATime = 64;

/// One number a column.
using ColumnValues = std::array<double, columnsAtATime>;

/// Amplitudes and heights for one kind of vector registers. All kernels give the same bits. They work on whole vectors of
/// ColumnValues: numbers behind the first `count` ones are read and written, whatever they are.
struct ColumnKernel {
  const char* name;
  /// Makes amplitudes of the sums of bands of so many bins: √(sum ÷ bins) ÷ `fullScale`; mean and root are rounded to single
  /// precision. A band without bins becomes no number.
  void (*amplitudes)(double* sums, const double* bins, std::size_t count, double fullScale) noexcept;
  /// Makes heights in pixels, which are whole numbers, of amplitudes; see columnHeightPx.
  void (*heights)(double* amplitudes, std::size_t count, const HeightScale& scale) noexcept;
};

extern const ColumnKernel sse2ColumnKernel;
extern const ColumnKernel avx2ColumnKernel;
extern const ColumnKernel avx512ColumnKernel;

/// The kernels that this processor and its operating system can run, the fastest one first. There is always one.
std::span<const ColumnKernel* const> columnKernels() noexcept;

}  // namespace av::type3
