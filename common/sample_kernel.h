#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <span>

namespace av {

/// How a sample is stored; see sample_readers.h.
enum class SampleForm { invertedUnsigned8, signed8, signed16, signed24, signed32 };

inline constexpr std::size_t sampleFormCount = 5;

/// Loops over the samples of one form, a few at a time. Each returns how many frames it has done; the last few are left to
/// the caller, so that nothing behind the frames is read.
struct SampleLoops {
  /// Reads one channel.
  std::size_t (*read)(const std::uint8_t* samples, std::size_t frames, double* to) noexcept;
  /// Splits two channels.
  std::size_t (*split)(const std::uint8_t* samples, std::size_t frames, double* left, double* right) noexcept;
  /// Writes the means of two channels.
  std::size_t (*mix)(const std::uint8_t* samples, std::size_t frames, double* mean) noexcept;
};

/// The loops for one kind of vector registers. Samples are whole numbers, so that all kernels give the same bits.
struct SampleKernel {
  const char* name;
  std::array<SampleLoops, sampleFormCount> loops;

  const SampleLoops& operator[](SampleForm form) const noexcept { return loops[static_cast<std::size_t>(form)]; }
};

extern const SampleKernel sse2SampleKernel;
extern const SampleKernel avx2SampleKernel;

/// The kernels that this processor and its operating system can run, the fastest one first. There is always one.
std::span<const SampleKernel* const> sampleKernels() noexcept;

}  // namespace av
