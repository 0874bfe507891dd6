#pragma once

#include <cstddef>
#include <new>
#include <vector>

namespace av::dsp {

/// Memory that begins with a cache line, so that no vector of 64 bytes lies across two.
template <class T>
struct CacheLineAllocator {
  using value_type = T;
  static constexpr std::align_val_t alignment{64};

  CacheLineAllocator() = default;
  template <class U>
  CacheLineAllocator(const CacheLineAllocator<U>& /*of another type*/) noexcept {}

  T* allocate(std::size_t count) { return static_cast<T*>(::operator new(count * sizeof(T), alignment)); }
  void deallocate(T* memory, std::size_t /*count*/) noexcept { ::operator delete(memory, alignment); }

  bool operator==(const CacheLineAllocator& /*other*/) const noexcept { return true; }
};

using AlignedDoubles = std::vector<double, CacheLineAllocator<double>>;

}  // namespace av::dsp
