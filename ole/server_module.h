#pragma once

#include <windows.h>

#include <oaidl.h>

#include <atomic>
#include <span>
#include <string>

#include "ole/class_factory.h"
#include "ole/module_lock.h"

namespace av::ole {

/// One class that a DLL serves.
struct ClassEntry {
  const CLSID* clsid;
  const wchar_t* friendlyName;
  CreateFunction create;
};

/// A COM server DLL as one object: who it is, and how many things hold it.
class ServerModule : public ModuleLock {
 public:
  /// Remembers the DLL's instance and path. [loader lock]
  /// @return false when the path cannot be had; the DLL must not load then.
  bool initialise(HINSTANCE instance) noexcept;

  void lockModule() noexcept override { ++m_lockCount; }    // [any thread]
  void unlockModule() noexcept override { --m_lockCount; }  // [any thread]
  [[nodiscard]] bool isLocked() const noexcept { return m_lockCount != 0; }

  /// Hands out the class factory of a class: CLASS_E_CLASSNOTAVAILABLE for one that is not in `objectMap`.
  HRESULT getClassObject(std::span<const ClassEntry> objectMap, REFCLSID clsid, REFIID iid,
                         void** object) noexcept;  // [any thread]

  /// Loads the type library from the DLL's own resource.
  HRESULT loadTypeLibrary(ITypeLib** library) const noexcept;  // [any thread]

  [[nodiscard]] HINSTANCE instance() const noexcept { return m_instance; }
  [[nodiscard]] const std::wstring& path() const noexcept { return m_path; }

 protected:
  ~ServerModule() = default;

 private:
  HINSTANCE m_instance = nullptr;
  std::wstring m_path;
  std::atomic<long> m_lockCount{0};
};

}  // namespace av::ole
