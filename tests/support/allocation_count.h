#pragma once

#include <cstdint>

namespace av::test {

/// How often this program has called operator new, on all threads together.
std::uint64_t allocationCount() noexcept;

/// How many blocks of operator new there are that have not been deleted.
std::int64_t livingAllocations() noexcept;

enum class Failing { once, forEver };

/// Lets an allocation of this program fail for as long as the object lives: the one after `before` others and, for ever,
/// all that follow it. Only one of them may live.
class FailingAllocation {
 public:
  FailingAllocation(std::uint64_t before, Failing failing) noexcept;
  ~FailingAllocation();
  FailingAllocation(const FailingAllocation&) = delete;
  FailingAllocation& operator=(const FailingAllocation&) = delete;

  /// How many have failed.
  std::uint64_t failures() const noexcept;
};

/// Calls `call` with its first allocation failing, then with the second one, and so on until it makes no more. Returns how
/// many it makes.
template <class Call>
std::uint64_t withEachAllocationFailing(Failing failing, Call&& call) {
  for (std::uint64_t before = 0;; ++before) {
    std::uint64_t failures = 0;
    call([&](auto&& step) {
      const FailingAllocation failure(before, failing);
      step();
      failures = failure.failures();
    });
    if (failures == 0) return before;
  }
}

}  // namespace av::test
