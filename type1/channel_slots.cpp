#include "type1/channel_slots.h"

#include <algorithm>
#include <mutex>
#include <new>
#include <utility>

namespace av::type1 {

double* ChannelSlots::allocateOrNull(std::size_t count) noexcept { return new (std::nothrow) double[count]; }

auto ChannelSlots::newArray(int windowSize, double value) const noexcept -> Array {
  const auto count = static_cast<std::size_t>(windowSize);
  Array array(m_allocate(count));
  if (array) std::fill_n(array.get(), count, value);
  return array;
}

void ChannelSlots::allocateMissing(int channelCount, double value) noexcept {
  for (int channel = 0; channel < channelCount; ++channel) {
    Slot& current = m_slots[static_cast<std::size_t>(channel)];
    for (Array* array : {&current.analysis, &current.display}) {
      if (*array) continue;
      Array fresh = newArray(m_windowSize, value);
      if (!fresh) continue;
      const std::lock_guard guard(m_drawingLock);
      array->swap(fresh);
    }
  }
}

void ChannelSlots::renew(int firstChannel, int channelCount, double value) noexcept {
  Slots fresh;
  for (int channel = firstChannel; channel < channelCount; ++channel) {
    Slot& slot = fresh[static_cast<std::size_t>(channel)];
    slot.analysis = newArray(m_windowSize, value);
    slot.display = newArray(m_windowSize, value);
  }
  const std::lock_guard guard(m_drawingLock);
  for (int channel = firstChannel; channel < channelCount; ++channel)
    std::swap(m_slots[static_cast<std::size_t>(channel)], fresh[static_cast<std::size_t>(channel)]);
  // The old arrays go with `fresh`, after the lock: it is declared before the guard.
}

void ChannelSlots::resize(int windowSize, int channelCount, double value) noexcept {
  Slots fresh;
  for (int channel = 0; channel < channelCount; ++channel) {
    Slot& slot = fresh[static_cast<std::size_t>(channel)];
    slot.analysis = newArray(windowSize, value);
    slot.display = newArray(windowSize, value);
  }
  const std::lock_guard guard(m_drawingLock);
  m_windowSize = windowSize;
  m_slots.swap(fresh);
}

void ChannelSlots::fill(int channelCount, int fromIndex, double value) noexcept {
  const auto from = static_cast<std::size_t>(std::max(fromIndex, 0));
  for (int channel = 0; channel < channelCount; ++channel) {
    for (const std::span<double> array : {analysis(channel), display(channel)}) {
      if (from < array.size()) std::ranges::fill(array.subspan(from), value);
    }
  }
}

}  // namespace av::type1
