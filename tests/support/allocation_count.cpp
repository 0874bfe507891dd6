#include "support/allocation_count.h"

#include <atomic>
#include <cstdlib>
#include <new>

#ifdef _WIN32
#include <malloc.h>
#endif

namespace {

std::atomic<std::uint64_t> count{0};

}  // namespace

#if defined(__SANITIZE_ADDRESS__)
#define AV_SANITIZED 1
#elif defined(__has_feature)
#if __has_feature(address_sanitizer)
#define AV_SANITIZED 1
#endif
#endif

#ifdef AV_SANITIZED
const bool av::test::allocationsAreCounted = false;
#else
const bool av::test::allocationsAreCounted = true;

// The forms that are not replaced here (of arrays, nothrow) call these.
void* operator new(std::size_t size) {
  count.fetch_add(1, std::memory_order_relaxed);
  void* const memory = std::malloc(size == 0 ? 1 : size);
  if (!memory) throw std::bad_alloc();
  return memory;
}
#ifdef _WIN32
void* operator new(std::size_t size, std::align_val_t alignment) {
  count.fetch_add(1, std::memory_order_relaxed);
  void* const memory = _aligned_malloc(size == 0 ? 1 : size, static_cast<std::size_t>(alignment));
  if (!memory) throw std::bad_alloc();
  return memory;
}
void operator delete(void* memory, std::align_val_t) noexcept { _aligned_free(memory); }
void operator delete(void* memory, std::size_t, std::align_val_t) noexcept { _aligned_free(memory); }
#else
void* operator new(std::size_t size, std::align_val_t alignment) {
  count.fetch_add(1, std::memory_order_relaxed);
  void* memory = nullptr;
  if (posix_memalign(&memory, static_cast<std::size_t>(alignment), size) != 0) throw std::bad_alloc();
  return memory;
}
void operator delete(void* memory, std::align_val_t) noexcept { std::free(memory); }
void operator delete(void* memory, std::size_t, std::align_val_t) noexcept { std::free(memory); }
#endif
void operator delete(void* memory) noexcept { std::free(memory); }
void operator delete(void* memory, std::size_t) noexcept { std::free(memory); }
#endif

std::uint64_t av::test::allocationCount() noexcept { return count.load(std::memory_order_relaxed); }
