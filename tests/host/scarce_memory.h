#pragma once

#include "support/win/import_probe.h"

#include <gtest/gtest.h>

#include <windows.h>
#include <malloc.h>

#include <atomic>
#include <cstdint>
#include <cstdlib>
#include <functional>

namespace av::test {

/// A module's memory comes from here, as long as there is any. The module must not be in an allocation when the object
/// comes or goes. Only one may live.
class ScarceMemory {
 public:
  explicit ScarceMemory(HMODULE module)
      : m_malloc(module, "malloc", reinterpret_cast<void*>(&mallocOrNull)),
        m_alignedMalloc(module, "_aligned_malloc", reinterpret_cast<void*>(&alignedMallocOrNull)) {
    EXPECT_NE(nullptr, m_malloc.original()) << "the library gets its memory elsewhere";
    EXPECT_NE(nullptr, m_alignedMalloc.original()) << "the library gets its memory elsewhere";
  }
  ~ScarceMemory() { isEnough(); }
  ScarceMemory(const ScarceMemory&) = delete;
  ScarceMemory& operator=(const ScarceMemory&) = delete;

  /// From here on there is memory for so many allocations, and for none after them.
  static void lastsFor(long allocations) {
    refused = 0;
    left = allocations;
  }

  /// From here on larger pieces are refused.
  static void hasNothingAbove(std::size_t bytes) { largest = bytes; }

  /// From here on there is as much as is wanted.
  static void isEnough() {
    left = -1;
    largest = SIZE_MAX;
  }

  /// How many allocations have been refused since lastsFor().
  static long refusals() { return refused; }

  /// Runs `call` with memory for 0, 1, 2, ... allocations until none is refused any more. Returns how many it took.
  static long withLessAndLessRefused(const std::function<void()>& call) {
    for (long allocations = 0;; ++allocations) {
      lastsFor(allocations);
      call();
      isEnough();
      if (refused == 0) return allocations;
      if (allocations > 1000) ADD_FAILURE() << "it never has enough";
      if (testing::Test::HasFailure()) return allocations;
    }
  }

 private:
  static bool isRefused(std::size_t bytes) {
    if (bytes > largest) return true;
    if (left < 0 || left-- > 0) return false;
    left = 0;
    ++refused;
    return true;
  }
  static void* mallocOrNull(std::size_t bytes) { return isRefused(bytes) ? nullptr : std::malloc(bytes); }
  static void* alignedMallocOrNull(std::size_t bytes, std::size_t alignment) {
    return isRefused(bytes) ? nullptr : _aligned_malloc(bytes, alignment);
  }

  static inline std::atomic<long> left{-1};  // negative: any number
  static inline std::atomic<long> refused{0};
  static inline std::atomic<std::size_t> largest{SIZE_MAX};

  ImportReplacement m_malloc;
  ImportReplacement m_alignedMalloc;
};

}  // namespace av::test
