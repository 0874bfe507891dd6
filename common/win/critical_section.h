#pragma once

#include "common/lockable.h"

#include <windows.h>

namespace av {

/// A Win32 critical section, recursive on its thread.
class CriticalSection final : public Lockable {
 public:
  CriticalSection() noexcept { InitializeCriticalSection(&m_section); }
  ~CriticalSection() { DeleteCriticalSection(&m_section); }
  CriticalSection(const CriticalSection&) = delete;
  CriticalSection& operator=(const CriticalSection&) = delete;

  void lock() override { EnterCriticalSection(&m_section); }
  void unlock() override { LeaveCriticalSection(&m_section); }

 private:
  CRITICAL_SECTION m_section;
};

}  // namespace av
