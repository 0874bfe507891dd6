#pragma once

// For hosts: samples as a program has them (interleaved or a plane a channel; integers of 16, 24 or 32 bits, float or
// double) as blocks that SendAudioData takes. Copy this file and audio_buffers.h; C++11 and the Windows headers.
//
//   avhost::SampleBlocks blocks(44100, 2);  // once: sample rate in Hz, channels
//   ...
//   meter->SendAudioData(blocks.interleaved(samples, frames));      // samples: const float*, const std::int16_t*, ...
//   meter->SendAudioData(blocks.planar(channelPointers, frames));   // channelPointers: const float* const*, ...
//
// The controls read interleaved integers only. What is that already is handed on without a copy; the rest is converted
// into memory that the object keeps for the blocks to come, so that in steady state nothing is allocated.

#include "host/audio_buffers.h"

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <memory>
#include <stdexcept>

namespace avhost {

/// A packed 24-bit sample as files and devices hold it: three bytes, little-endian. (24 bits at the upper end of a
/// 32-bit container are a 32-bit sample.)
struct Int24 {
  unsigned char bytes[3];
};
static_assert(sizeof(Int24) == 3 && alignof(Int24) == 1, "samples lie next to each other");

/// What becomes of packed 24-bit samples. The level meter and the spectrum analyser read no samples of 24 bits: they
/// need 32. The view reads both, and its level scale reaches down 138 dB with 24 bits and 186 dB with 32.
enum class Packed24 {
  widen,  ///< to 32 bits, the lowest eight of them zero
  keep    ///< as they are
};

/// A floating-point sample as a 32-bit integer: the value times 2^31, rounded to nearest, halves away from zero.
/// −1 is −2^31; whatever lies above the largest integer, +1 included, is 2^31 − 1, below −1 it is −2^31, and no number
/// (NaN) is 0.
inline std::int32_t pcm32FromFloat(double sample) noexcept {
  const double scaled = sample * 2147483648.0;
  if (scaled >= 2147483647.0) return INT32_MAX;
  if (scaled <= -2147483648.0) return INT32_MIN;
  if (scaled != scaled) return 0;
  const std::int32_t whole = static_cast<std::int32_t>(scaled);
  const double rest = scaled - whole;  // exact
  return rest >= 0.5 ? whole + 1 : rest <= -0.5 ? whole - 1 : whole;
}

namespace detail {

// How each type of sample reaches the controls: as `Stored`, by store(), or as it is.

template <class Sample>
struct Sent;

template <class Integer>
struct SentAsItIs {
  using Stored = Integer;
  static constexpr bool converts = false;
  static Stored store(Integer sample) noexcept { return sample; }
};
template <>
struct Sent<std::int16_t> : SentAsItIs<std::int16_t> {};
template <>
struct Sent<std::int32_t> : SentAsItIs<std::int32_t> {};
template <>
struct Sent<long> : SentAsItIs<long> {};  // Windows' LONG
static_assert(sizeof(long) == 4, "32 bits on Windows");
template <>
struct Sent<Int24> : SentAsItIs<Int24> {};

struct Widened24 {
  using Stored = std::int32_t;
  static constexpr bool converts = true;
  static Stored store(Int24 sample) noexcept {
    const std::uint32_t bits = static_cast<std::uint32_t>(sample.bytes[0]) << 8 |
                               static_cast<std::uint32_t>(sample.bytes[1]) << 16 |
                               static_cast<std::uint32_t>(sample.bytes[2]) << 24;
    return static_cast<std::int32_t>(bits);
  }
};

template <class Float>
struct SentAs32Bits {
  using Stored = std::int32_t;
  static constexpr bool converts = true;
  static Stored store(Float sample) noexcept { return pcm32FromFloat(static_cast<double>(sample)); }
};
template <>
struct Sent<float> : SentAs32Bits<float> {};
template <>
struct Sent<double> : SentAs32Bits<double> {};

/// Frames that point to the caller's memory or to their own.
class SampleFrames final : public AudioFrameData {
 public:
  explicit SampleFrames(const WAVEFORMATEX& format) noexcept : AudioFrameData(format, nullptr, 0) {}

  using AudioFrameData::isShared;
  using AudioFrameData::pointTo;

  /// Room for that many bytes, kept from block to block. Throws std::bad_alloc.
  unsigned char* ownMemory(std::size_t bytes) {
    if (bytes > m_capacity) {
      m_memory.reset(new unsigned char[bytes]);
      m_capacity = bytes;
    }
    return m_memory.get();
  }

 private:
  ~SampleFrames() override = default;

  std::unique_ptr<unsigned char[]> m_memory;
  std::size_t m_capacity = 0;
};

}  // namespace detail

/// Makes blocks of one stream of audio, one after the other. Any thread may make and use it, one at a time.
///
/// The pointers that it returns are its own: send them and forget them. They are good until its next call or its end,
/// unless a reference is added. Where samples were handed on without a copy they have to stay until SendAudioData has
/// returned. Every call throws std::bad_alloc, and std::length_error for a block beyond 2^31 − 1 bytes.
class SampleBlocks {
 public:
  /// `channels` is 1 to 16383; std::invalid_argument otherwise. (The view shows 18 of them.)
  SampleBlocks(std::uint32_t sampleRateHz, unsigned channels, Packed24 packed24 = Packed24::widen)
      : m_sampleRateHz(sampleRateHz), m_channels(channels), m_packed24(packed24) {
    if (channels < 1 || channels > 16383) throw std::invalid_argument("SampleBlocks: channels");
  }

  /// `frames` frames whose samples lie channel beside channel. `Sample` is std::int16_t, Int24, std::int32_t (or LONG),
  /// float or double. Only integers that need no widening are handed on without a copy.
  template <class Sample>
  IUnknown* interleaved(const Sample* samples, std::size_t frames) {
    return interleavedAs<detail::Sent<Sample>>(samples, frames);
  }
  IUnknown* interleaved(const Int24* samples, std::size_t frames) {
    return m_packed24 == Packed24::widen ? interleavedAs<detail::Widened24>(samples, frames)
                                         : interleavedAs<detail::Sent<Int24>>(samples, frames);
  }

  /// `frames` frames with a plane for each channel: planes[channel][frame]. Always copied.
  template <class Sample>
  IUnknown* planar(const Sample* const* planes, std::size_t frames) {
    return planarAs<detail::Sent<Sample>>(planes, frames);
  }
  IUnknown* planar(const Int24* const* planes, std::size_t frames) {
    return m_packed24 == Packed24::widen ? planarAs<detail::Widened24>(planes, frames)
                                         : planarAs<detail::Sent<Int24>>(planes, frames);
  }

 private:
  template <class Rule, class Sample>
  IUnknown* interleavedAs(const Sample* samples, std::size_t frames) {
    using Stored = typename Rule::Stored;
    const LONG bytes = bytesOf(frames, sizeof(Stored));
    detail::SampleFrames& block = blockOf(sizeof(Stored));
    if (!Rule::converts) {
      block.pointTo(samples, bytes);
      return &block;
    }
    unsigned char* const out = block.ownMemory(static_cast<std::size_t>(bytes));
    const std::size_t count = frames * m_channels;
    for (std::size_t i = 0; i < count; ++i) put(out, i, Rule::store(samples[i]));
    block.pointTo(out, bytes);
    return &block;
  }

  template <class Rule, class Sample>
  IUnknown* planarAs(const Sample* const* planes, std::size_t frames) {
    using Stored = typename Rule::Stored;
    const LONG bytes = bytesOf(frames, sizeof(Stored));
    detail::SampleFrames& block = blockOf(sizeof(Stored));
    unsigned char* const out = block.ownMemory(static_cast<std::size_t>(bytes));
    for (unsigned channel = 0; channel < m_channels; ++channel) {
      const Sample* const plane = planes[channel];
      for (std::size_t frame = 0; frame < frames; ++frame)
        put(out, frame * m_channels + channel, Rule::store(plane[frame]));
    }
    block.pointTo(out, bytes);
    return &block;
  }

  template <class Stored>
  static void put(unsigned char* memory, std::size_t index, Stored sample) noexcept {
    std::memcpy(memory + index * sizeof sample, &sample, sizeof sample);
  }

  LONG bytesOf(std::size_t frames, std::size_t sampleBytes) const {
    const std::size_t frameBytes = m_channels * sampleBytes;
    if (frames > static_cast<std::size_t>(INT32_MAX) / frameBytes) throw std::length_error("SampleBlocks: block");
    return static_cast<LONG>(frames * frameBytes);
  }

  /// The block to fill next: the last one, unless its format is another or somebody still holds it.
  detail::SampleFrames& blockOf(std::size_t sampleBytes) {
    if (!m_block || m_sampleBytes != sampleBytes || m_block->isShared()) {
      const unsigned frameBytes = m_channels * static_cast<unsigned>(sampleBytes);
      WAVEFORMATEX format = {};
      format.wFormatTag = WAVE_FORMAT_PCM;
      format.nChannels = static_cast<WORD>(m_channels);
      format.nSamplesPerSec = m_sampleRateHz;
      format.nAvgBytesPerSec = m_sampleRateHz * frameBytes;
      format.nBlockAlign = static_cast<WORD>(frameBytes);
      format.wBitsPerSample = static_cast<WORD>(8 * sampleBytes);
      m_block.reset(new detail::SampleFrames(format));
      m_sampleBytes = sampleBytes;
    }
    return *m_block;
  }

  std::uint32_t m_sampleRateHz;
  unsigned m_channels;
  Packed24 m_packed24;
  std::size_t m_sampleBytes = 0;
  std::unique_ptr<detail::SampleFrames, ReleaseBlock> m_block;
};

}  // namespace avhost
