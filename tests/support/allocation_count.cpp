#include "support/allocation_count.h"

#include <atomic>
#include <cstdlib>
#include <new>

#ifdef _WIN32
#include <malloc.h>
#endif

namespace {

std::atomic<std::uint64_t> count{0};
std::atomic<std::int64_t> living{0};
std::atomic<std::int64_t> untilFailure{-1};  // allocations before the one that fails; below 0: none does
std::atomic<bool> failsForEver{false};
std::atomic<std::uint64_t> failureCount{0};

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

namespace {

/// Counts an allocation. Whether it is to fail.
bool countAndFail() noexcept {
  count.fetch_add(1, std::memory_order_relaxed);
  if (untilFailure.load(std::memory_order_relaxed) < 0) return false;
  if (untilFailure.fetch_sub(1, std::memory_order_relaxed) > 0) return false;
  if (failsForEver.load(std::memory_order_relaxed)) untilFailure.store(0, std::memory_order_relaxed);
  failureCount.fetch_add(1, std::memory_order_relaxed);
  return true;
}

/// What operator new hands out.
void* counted(void* memory) {
  if (!memory) throw std::bad_alloc();
  living.fetch_add(1, std::memory_order_relaxed);
  return memory;
}

void* countDeleted(void* memory) noexcept {
  if (memory) living.fetch_sub(1, std::memory_order_relaxed);
  return memory;
}

}  // namespace

// The forms that are not replaced here (of arrays, nothrow) call these.
void* operator new(std::size_t size) { return counted(countAndFail() ? nullptr : std::malloc(size == 0 ? 1 : size)); }
#ifdef _WIN32
void* operator new(std::size_t size, std::align_val_t alignment) {
  return counted(countAndFail() ? nullptr : _aligned_malloc(size == 0 ? 1 : size, static_cast<std::size_t>(alignment)));
}
void operator delete(void* memory, std::align_val_t) noexcept { _aligned_free(countDeleted(memory)); }
void operator delete(void* memory, std::size_t, std::align_val_t) noexcept { _aligned_free(countDeleted(memory)); }
#else
void* operator new(std::size_t size, std::align_val_t alignment) {
  void* memory = nullptr;
  if (countAndFail() || posix_memalign(&memory, static_cast<std::size_t>(alignment), size) != 0) memory = nullptr;
  return counted(memory);
}
void operator delete(void* memory, std::align_val_t) noexcept { std::free(countDeleted(memory)); }
void operator delete(void* memory, std::size_t, std::align_val_t) noexcept { std::free(countDeleted(memory)); }
#endif
void operator delete(void* memory) noexcept { std::free(countDeleted(memory)); }
void operator delete(void* memory, std::size_t) noexcept { std::free(countDeleted(memory)); }
#endif

std::uint64_t av::test::allocationCount() noexcept { return count.load(std::memory_order_relaxed); }

std::int64_t av::test::livingAllocations() noexcept { return living.load(std::memory_order_relaxed); }

av::test::FailingAllocation::FailingAllocation(std::uint64_t before, Failing failing) noexcept {
  failureCount = 0;
  failsForEver = failing == Failing::forEver;
  untilFailure = static_cast<std::int64_t>(before);
}

av::test::FailingAllocation::~FailingAllocation() { untilFailure = -1; }

std::uint64_t av::test::FailingAllocation::failures() const noexcept { return failureCount; }
