// What the C++ runtime asks of a thread library, on Windows' own primitives, so that the DLL goes without a trace.
//
// The runtime is linked into the DLL, and with it would be the POSIX thread library that it is written for. That one
// makes a descriptor for every thread that enters it (a thread-local slot, an event, a handle of the thread) and keeps
// it when the DLL is unloaded. The 32-bit runtime enters it each time the DLL is loaded, to list its unwinding tables;
// either runtime does when an exception is thrown. The functions here stand in its place. They serve what the runtime
// asks for and no more: whatever needs more of the library (a static variable with a guard, std::thread) links it as
// well, and the linker refuses the functions that are there twice.

#include "runtime/runtime_threads.h"

#include <windows.h>

#include <errno.h>
#include <pthread.h>

#include <atomic>
#include <utility>

// The runtime's own, for leak checkers; it stands in no header.
namespace __gnu_cxx {
void __freeres();
}

namespace {

// The states of a pthread_once_t beside PTHREAD_ONCE_INIT.
constexpr pthread_once_t onceDone = 1;
constexpr pthread_once_t onceRunning = 2;

/// A pthread_mutex_t has the size of a slim lock, and is used as one.
SRWLOCK* lockOf(pthread_mutex_t* mutex) noexcept {
  static_assert(sizeof(SRWLOCK) == sizeof(pthread_mutex_t));
  auto* const lock = reinterpret_cast<SRWLOCK*>(mutex);
  // One that was initialised without a call holds a pattern that no slim lock takes.
  InterlockedCompareExchangePointer(&lock->Ptr, nullptr, reinterpret_cast<void*>(PTHREAD_MUTEX_INITIALIZER));
  return lock;
}

// The runtime has one thing a thread: its exceptions. A fibre-local slot, since the system frees what threads have left
// in such a slot when the slot itself is freed.
DWORD threadSlot = FLS_OUT_OF_INDEXES;
void (*destroyThreadValue)(void*) = nullptr;

void WINAPI threadValueEnds(void* value) {
  if (value && destroyThreadValue) destroyThreadValue(value);
}

}  // namespace

// [any thread] As POSIX describes them. The first ones run before the constructors of static objects.
extern "C" {

int pthread_once(pthread_once_t* once, void (*initialise)(void)) {
  const std::atomic_ref<pthread_once_t> state(*once);
  for (;;) {
    pthread_once_t found = PTHREAD_ONCE_INIT;
    if (state.compare_exchange_strong(found, onceRunning)) {
      initialise();
      state.store(onceDone);
      return 0;
    }
    if (found == onceDone) return 0;
    if (!SwitchToThread()) Sleep(1);
  }
}

int pthread_mutex_init(pthread_mutex_t* mutex, const pthread_mutexattr_t*) {
  *mutex = 0;
  return 0;
}

int pthread_mutex_destroy(pthread_mutex_t*) { return 0; }

int pthread_mutex_lock(pthread_mutex_t* mutex) {
  AcquireSRWLockExclusive(lockOf(mutex));
  return 0;
}

int pthread_mutex_unlock(pthread_mutex_t* mutex) {
  ReleaseSRWLockExclusive(lockOf(mutex));
  return 0;
}

int pthread_key_create(pthread_key_t* key, void (*destroy)(void*)) {
  if (threadSlot != FLS_OUT_OF_INDEXES) return EAGAIN;
  threadSlot = FlsAlloc(&threadValueEnds);
  if (threadSlot == FLS_OUT_OF_INDEXES) return EAGAIN;
  destroyThreadValue = destroy;
  *key = threadSlot;
  return 0;
}

void* pthread_getspecific(pthread_key_t key) {
  const DWORD lastError = GetLastError();  // which a throw must not change
  void* const value = FlsGetValue(key);
  SetLastError(lastError);
  return value;
}

int pthread_setspecific(pthread_key_t key, const void* value) {
  return FlsSetValue(key, const_cast<void*>(value)) ? 0 : ENOMEM;
}

}  // extern "C"

namespace av {

void releaseRuntimeThreads() noexcept {
  if (threadSlot != FLS_OUT_OF_INDEXES) FlsFree(std::exchange(threadSlot, FLS_OUT_OF_INDEXES));
  __gnu_cxx::__freeres();
}

}  // namespace av
