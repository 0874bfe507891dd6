#pragma once

#include <windows.h>

namespace av::ole {

/// Activates, on the thread that makes it and for as long as it lives, the side-by-side manifest that the module carries
/// as RT_MANIFEST resource 2. COM then finds the module's classes, type library and interface marshalling there, even
/// where nothing is registered. A module without such a resource, or a failure, leaves the thread as it is.
///
/// Contexts of one thread end in the reverse order of their beginning: keep it in one block, around the calls
/// that need it, and do not dispatch messages within.
class OwnActivationContext {
 public:
  OwnActivationContext() noexcept;
  ~OwnActivationContext();
  OwnActivationContext(const OwnActivationContext&) = delete;
  OwnActivationContext& operator=(const OwnActivationContext&) = delete;

  [[nodiscard]] bool active() const noexcept { return m_cookie != 0; }

 private:
  HANDLE m_context = INVALID_HANDLE_VALUE;
  ULONG_PTR m_cookie = 0;
};

}  // namespace av::ole
