#pragma once

#include <windows.h>

#include <string>

namespace av::ole {

/// What an accessible object (see Accessible) tells of, a window with something to say. Texts may throw std::bad_alloc;
/// an empty one means that there is none. [control thread]
class AccessibleSubject {
 public:
  virtual LONG accessibleRole() const noexcept = 0;  ///< one of ROLE_SYSTEM_...
  virtual std::wstring accessibleName() = 0;         ///< may ask the container, which may do anything meanwhile
  virtual std::wstring accessibleDescription() = 0;
  /// What is shown, in words. Calls nobody: it is asked for again and again.
  virtual std::wstring accessibleValue() = 0;
  /// Takes the keyboard's focus, as a click does. S_FALSE where the container or the window does not let it.
  virtual HRESULT accessibleTakeFocus() = 0;

 protected:
  ~AccessibleSubject() = default;
};

}  // namespace av::ole
