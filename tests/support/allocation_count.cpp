#include "support/allocation_count.h"

#include <atomic>
#include <cstdlib>
#include <new>

#ifdef _WIN32
#include <malloc.h>
#endif
#ifdef __SANITIZE_ADDRESS__
#include <dlfcn.h>
#endif

namespace {

std::atomic<std::uint64_t> count{0};
std::atomic<std::int64_t> living{0};
std::atomic<std::int64_t> untilFailure{-1};  // allocations before the one that fails; below 0: none does
std::atomic<bool> failsForEver{false};
std::atomic<std::uint64_t> failureCount{0};

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

#ifdef __SANITIZE_ADDRESS__
// The sanitizer's own operators do the work, so that it still knows which of them belong together. It has all forms, none
// of which calls another.
namespace {

using Size = std::size_t;
using Alignment = std::align_val_t;
using NoThrow = const std::nothrow_t&;

/// An operator of the sanitizer, found when it is first needed.
template <class Function>
class Sanitized {
 public:
  constexpr explicit Sanitized(const char* name) noexcept : m_name(name) {}

  template <class... Arguments>
  auto operator()(Arguments... arguments) {
    Function* found = m_found.load(std::memory_order_relaxed);
    if (!found) m_found = found = reinterpret_cast<Function*>(dlsym(RTLD_NEXT, m_name));
    return found(arguments...);
  }

 private:
  const char* m_name;
  std::atomic<Function*> m_found{nullptr};
};

template <class Function, class... Arguments>
void* allocated(Sanitized<Function>& original, Arguments... arguments) {
  return counted(countAndFail() ? nullptr : original(arguments...));
}

/// Of the forms that do not throw.
template <class Function>
void* allocatedOrNull(Sanitized<Function>& original, Size size) noexcept {
  void* const memory = countAndFail() ? nullptr : original(size, std::nothrow);
  return memory ? counted(memory) : nullptr;
}

}  // namespace

void* operator new(Size size) {
  static constinit Sanitized<void*(Size)> original("_Znwm");
  return allocated(original, size);
}
void* operator new(Size size, Alignment alignment) {
  static constinit Sanitized<void*(Size, Alignment)> original("_ZnwmSt11align_val_t");
  return allocated(original, size, alignment);
}
void* operator new(Size size, NoThrow) noexcept {
  static constinit Sanitized<void*(Size, NoThrow)> original("_ZnwmRKSt9nothrow_t");
  return allocatedOrNull(original, size);
}
void operator delete(void* memory) noexcept {
  static constinit Sanitized<void(void*)> original("_ZdlPv");
  original(countDeleted(memory));
}
void operator delete(void* memory, Size size) noexcept {
  static constinit Sanitized<void(void*, Size)> original("_ZdlPvm");
  original(countDeleted(memory), size);
}
void operator delete(void* memory, Alignment alignment) noexcept {
  static constinit Sanitized<void(void*, Alignment)> original("_ZdlPvSt11align_val_t");
  original(countDeleted(memory), alignment);
}
void operator delete(void* memory, Size size, Alignment alignment) noexcept {
  static constinit Sanitized<void(void*, Size, Alignment)> original("_ZdlPvmSt11align_val_t");
  original(countDeleted(memory), size, alignment);
}
void operator delete(void* memory, NoThrow noThrow) noexcept {
  static constinit Sanitized<void(void*, NoThrow)> original("_ZdlPvRKSt9nothrow_t");
  original(countDeleted(memory), noThrow);
}
void* operator new[](Size size) {
  static constinit Sanitized<void*(Size)> original("_Znam");
  return allocated(original, size);
}
void* operator new[](Size size, Alignment alignment) {
  static constinit Sanitized<void*(Size, Alignment)> original("_ZnamSt11align_val_t");
  return allocated(original, size, alignment);
}
void* operator new[](Size size, NoThrow) noexcept {
  static constinit Sanitized<void*(Size, NoThrow)> original("_ZnamRKSt9nothrow_t");
  return allocatedOrNull(original, size);
}
void operator delete[](void* memory) noexcept {
  static constinit Sanitized<void(void*)> original("_ZdaPv");
  original(countDeleted(memory));
}
void operator delete[](void* memory, Size size) noexcept {
  static constinit Sanitized<void(void*, Size)> original("_ZdaPvm");
  original(countDeleted(memory), size);
}
void operator delete[](void* memory, Alignment alignment) noexcept {
  static constinit Sanitized<void(void*, Alignment)> original("_ZdaPvSt11align_val_t");
  original(countDeleted(memory), alignment);
}
void operator delete[](void* memory, Size size, Alignment alignment) noexcept {
  static constinit Sanitized<void(void*, Size, Alignment)> original("_ZdaPvmSt11align_val_t");
  original(countDeleted(memory), size, alignment);
}
void operator delete[](void* memory, NoThrow noThrow) noexcept {
  static constinit Sanitized<void(void*, NoThrow)> original("_ZdaPvRKSt9nothrow_t");
  original(countDeleted(memory), noThrow);
}
#else
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
