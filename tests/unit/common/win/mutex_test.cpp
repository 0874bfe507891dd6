#include "common/win/mutex.h"

#include <gtest/gtest.h>

#include <mutex>
#include <stdexcept>
#include <thread>

namespace {

/// Whether another thread could take the mutex at once; gives it back if so.
bool isFree(const av::Mutex& mutex) {
  bool free = false;
  std::thread([&] {
    const DWORD waited = WaitForSingleObject(mutex.handle(), 0);
    free = waited == WAIT_OBJECT_0;
    if (free) ReleaseMutex(mutex.handle());
  }).join();
  return free;
}

TEST(Mutex, IsCreatedUnowned) {
  av::Mutex mutex;
  ASSERT_NE(nullptr, mutex.handle());
  EXPECT_TRUE(isFree(mutex));
}

TEST(Mutex, IsHeldWithinAGuardAndOnlyThere) {
  av::Mutex mutex;
  {
    const std::lock_guard<av::Lockable> guard(mutex);
    EXPECT_FALSE(isFree(mutex));
  }
  EXPECT_TRUE(isFree(mutex));
}

TEST(Mutex, IsRecursiveOnItsThread) {
  av::Mutex mutex;
  const std::lock_guard outer(mutex);
  {
    const std::lock_guard inner(mutex);
    EXPECT_FALSE(isFree(mutex));
  }
  EXPECT_FALSE(isFree(mutex));
}

TEST(Mutex, IsReturnedWhenAnExceptionPasses) {
  av::Mutex mutex;
  try {
    const std::lock_guard guard(mutex);
    throw std::runtime_error("block ended");
  } catch (const std::runtime_error&) {
  }
  EXPECT_TRUE(isFree(mutex));
}

TEST(Mutex, ThatAThreadDiedWithGoesToTheNextOne) {
  av::Mutex mutex;
  std::thread([&] { mutex.lock(); }).join();
  const std::lock_guard guard(mutex);
  EXPECT_FALSE(isFree(mutex));
}

TEST(Mutex, WithoutAHandleLocksNothing) {
  av::Mutex mutex(nullptr);
  SetLastError(0);
  { const std::lock_guard guard(mutex); }
  EXPECT_EQ(nullptr, mutex.handle());
  EXPECT_EQ(0u, GetLastError());  // neither the wait nor the release met an invalid handle
}

TEST(Mutex, ClosesItsHandle) {
  const HANDLE handle = CreateMutexW(nullptr, FALSE, nullptr);
  { av::Mutex mutex(handle); }
  DWORD flags = 0;
  EXPECT_FALSE(GetHandleInformation(handle, &flags));
}

}  // namespace
