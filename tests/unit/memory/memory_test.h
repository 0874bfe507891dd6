#pragma once

#include "support/allocation_count.h"

#include <gtest/gtest.h>

#include <new>

namespace av::test {

/// A test that is run with the n-th allocation failing, once and from there on, for each n.
class MemoryTest : public testing::TestWithParam<Failing> {
 protected:
  /// Runs `attempt` with one allocation after the other failing. It may throw std::bad_alloc and has to leave `verify`
  /// content; what it made is gone after `cleanUp`. Returns how many allocations it makes when none fails.
  template <class SetUpCase, class Attempt, class Verify>
  std::uint64_t forEachFailure(SetUpCase setUpCase, Attempt attempt, Verify verify) {
    std::uint64_t allocations = 0;
    bool unbalanced = false;
    allocations = withEachAllocationFailing(GetParam(), [&](auto failing) {
      const std::int64_t before = livingAllocations();
      {
        auto subject = setUpCase();
        bool threw = false;
        failing([&] {
          try {
            attempt(subject);
          } catch (const std::bad_alloc&) {
            threw = true;
          }
        });
        verify(subject, threw);
      }
      // A failed expectation keeps its text.
      if (!testing::Test::HasFailure() && livingAllocations() != before) unbalanced = true;
    });
    EXPECT_FALSE(unbalanced) << "memory was lost";
    return allocations;
  }
};

}  // namespace av::test
