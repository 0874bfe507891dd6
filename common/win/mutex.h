#pragma once

#include "common/lockable.h"

#include <windows.h>

namespace av {

/// Owns an unnamed Win32 mutex, recursive on its thread: a host method that calls back into the control gets in.
/// Works with std::lock_guard and std::scoped_lock. Where the system has no mutex to give, it locks nothing.
class Mutex final : public Lockable {
 public:
  /// Creates the mutex, not owned by anyone.
  Mutex() noexcept : m_handle(CreateMutexW(nullptr, FALSE, nullptr)) {}
  /// Takes over a mutex handle; null is allowed.
  explicit Mutex(HANDLE handle) noexcept : m_handle(handle) {}
  ~Mutex() {
    if (m_handle != nullptr) CloseHandle(m_handle);
  }
  Mutex(const Mutex&) = delete;
  Mutex& operator=(const Mutex&) = delete;

  /// Waits without time-out. A thread that died with the mutex leaves it to the next one.
  void lock() override {
    if (m_handle != nullptr) WaitForSingleObject(m_handle, INFINITE);
  }
  /// Takes it only if no other thread holds it.
  bool try_lock() noexcept {
    if (m_handle == nullptr) return true;
    const DWORD result = WaitForSingleObject(m_handle, 0);
    return result == WAIT_OBJECT_0 || result == WAIT_ABANDONED;
  }
  void unlock() override {
    if (m_handle != nullptr) ReleaseMutex(m_handle);
  }

  HANDLE handle() const noexcept { return m_handle; }

 private:
  HANDLE m_handle;
};

}  // namespace av
