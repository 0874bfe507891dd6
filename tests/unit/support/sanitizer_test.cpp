// That the operators new and delete that count and fail do not hide anything from AddressSanitizer.

#ifdef __SANITIZE_ADDRESS__

#include <gtest/gtest.h>

#include <cstdlib>
#include <memory>

namespace av::test {
namespace {

/// What the compiler cannot see through.
template <class T>
T* unknown(T* pointer) {
  T* volatile hidden = pointer;
  return hidden;
}

TEST(SanitizerDeathTest, SeesAnArrayThatIsDeletedAsOne) {
  EXPECT_DEATH(delete unknown(new int[3]), "alloc-dealloc-mismatch.*operator new.*operator delete");
}

TEST(SanitizerDeathTest, SeesWhatIsFreedThoughItCameFromNew) {
  EXPECT_DEATH(std::free(unknown(new int)), "alloc-dealloc-mismatch.*operator new.*free");
}

TEST(SanitizerDeathTest, SeesReadsBehindTheEnd) {
  const std::unique_ptr<int[]> numbers(new int[3]{});
  const volatile int* const behind = unknown(numbers.get()) + 3;
  EXPECT_DEATH(static_cast<void>(*behind), "heap-buffer-overflow");
}

TEST(SanitizerDeathTest, SeesReadsOfWhatHasGone) {
  EXPECT_DEATH(
      {
        int* const number = new int(1);
        const volatile int* const gone = unknown(number);
        delete number;
        static_cast<void>(*gone);
      },
      "heap-use-after-free");
}

}  // namespace
}  // namespace av::test

#endif
