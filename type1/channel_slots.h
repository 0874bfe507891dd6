#pragma once

#include "common/lockable.h"
#include "type1/settings.h"

#include <array>
#include <cstddef>
#include <memory>
#include <span>

namespace av::type1 {

/// The arrays behind the view: for each of 18 channels an analysis array (the block's samples or levels) and a display
/// array (the smoothed copy), of N doubles each, allocated when a channel is first used.
///
/// A failed allocation leaves that slot without an array: spans are empty then, which everyone who reads them tolerates.
///
/// Whoever changes slots holds the control's mutex. Arrays are exchanged and freed only under the drawing lock, since the
/// drawing may be reading them: they are allocated before it is taken and freed after it is given back. The lock has to
/// be recursive, as callers may hold it already.
class ChannelSlots {
 public:
  /// Allocates that many doubles with array new, or returns null. Another one than the default is for tests.
  using Allocator = double* (*)(std::size_t count) noexcept;
  static double* allocateOrNull(std::size_t count) noexcept;

  explicit ChannelSlots(Lockable& drawingLock, Allocator allocator = allocateOrNull) noexcept
      : m_drawingLock(drawingLock), m_allocate(allocator) {}

  /// N, the length of every array.
  int windowSize() const noexcept { return m_windowSize; }

  /// `channel` from 0 to maxChannels − 1; empty where there is no array.
  std::span<double> analysis(int channel) const noexcept { return view(slot(channel).analysis); }
  std::span<double> display(int channel) const noexcept { return view(slot(channel).display); }

  /// Allocates the missing arrays of the slots below `channelCount`, filled with `value`.
  void allocateMissing(int channelCount, double value) noexcept;

  /// Replaces both arrays of the slots from `firstChannel` to `channelCount` − 1 by new ones filled with `value`.
  void renew(int firstChannel, int channelCount, double value) noexcept;

  /// Changes N: frees the arrays of all 18 slots and allocates those below `channelCount` anew, filled with `value`.
  void resize(int windowSize, int channelCount, double value) noexcept;

  /// Sets the elements from `fromIndex` to N − 1 of both arrays of the slots below `channelCount`.
  void fill(int channelCount, int fromIndex, double value) noexcept;

 private:
  using Array = std::unique_ptr<double[]>;
  struct Slot {
    Array analysis;
    Array display;
  };
  using Slots = std::array<Slot, maxChannels>;

  const Slot& slot(int channel) const noexcept { return m_slots[static_cast<std::size_t>(channel)]; }
  std::span<double> view(const Array& array) const noexcept {
    return {array.get(), array ? static_cast<std::size_t>(m_windowSize) : 0};
  }
  Array newArray(int windowSize, double value) const noexcept;

  Lockable& m_drawingLock;
  Allocator m_allocate;
  int m_windowSize = 1024;
  Slots m_slots;
};

}  // namespace av::type1
