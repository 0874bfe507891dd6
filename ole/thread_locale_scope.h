#pragma once

#include <windows.h>

namespace av::ole {

/// Gives the calling thread another locale for as long as it lives.
class ThreadLocaleScope {
 public:
  explicit ThreadLocaleScope(LCID locale) noexcept : m_saved(GetThreadLocale()) { SetThreadLocale(locale); }
  ~ThreadLocaleScope() { SetThreadLocale(m_saved); }
  ThreadLocaleScope(const ThreadLocaleScope&) = delete;
  ThreadLocaleScope& operator=(const ThreadLocaleScope&) = delete;

 private:
  LCID m_saved;
};

}  // namespace av::ole
