#pragma once

#include <atomic>

namespace av {

/// A plain value that one thread may write while another reads it, without a lock: readers see the old value or the new
/// one, never a torn one, and nothing is ordered by it. Copies, converts and compares like the bare value.
template <class T>
class Relaxed {
 public:
  using Value = T;

  constexpr Relaxed() noexcept = default;
  constexpr Relaxed(T value) noexcept : m_value(value) {}  // implicit: stands for the bare value
  Relaxed(const Relaxed& other) noexcept : m_value(other.load()) {}
  Relaxed& operator=(const Relaxed& other) noexcept { return *this = other.load(); }
  Relaxed& operator=(T value) noexcept {
    m_value.store(value, std::memory_order_relaxed);
    return *this;
  }

  T load() const noexcept { return m_value.load(std::memory_order_relaxed); }
  operator T() const noexcept { return load(); }

  /// Stores `value` and returns what was there before, in one step.
  T exchange(T value) noexcept { return m_value.exchange(value, std::memory_order_relaxed); }

 private:
  static_assert(std::atomic<T>::is_always_lock_free);
  std::atomic<T> m_value{};
};

}  // namespace av
