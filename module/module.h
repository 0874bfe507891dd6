#pragma once

#include <windows.h>

#include <oaidl.h>

#include <atomic>
#include <span>
#include <string>

#include "ole/class_factory.h"
#include "ole/module_lock.h"

namespace av {

/// One class that the DLL serves.
struct ClassEntry {
  const CLSID* clsid;
  const wchar_t* friendlyName;
  ole::CreateFunction create;
};

/// The DLL as one object: what it serves, who it is, and how many things hold it.
class CQELAudioVisualization4Module final : public ole::ModuleLock {
 public:
  /// Remembers the DLL's instance and path. [loader lock]
  /// @return false when the path cannot be had; the DLL must not load then.
  bool initialise(HINSTANCE instance) noexcept;

  void lockModule() noexcept override { ++m_lockCount; }    // [any thread]
  void unlockModule() noexcept override { --m_lockCount; }  // [any thread]
  [[nodiscard]] bool isLocked() const noexcept { return m_lockCount != 0; }

  /// The object map.
  [[nodiscard]] static std::span<const ClassEntry> classes() noexcept;

  /// The application identifier, which is the type library's identifier too.
  [[nodiscard]] static const GUID& applicationId() noexcept;

  /// Hands out the class factory of a class: CLASS_E_CLASSNOTAVAILABLE for a class that is not in the object map.
  HRESULT getClassObject(REFCLSID clsid, REFIID iid, void** object) noexcept;  // [any thread]

  /// Loads the type library from the DLL's own resource.
  HRESULT loadTypeLibrary(ITypeLib** library) const noexcept;  // [any thread]

  [[nodiscard]] HINSTANCE instance() const noexcept { return m_instance; }
  [[nodiscard]] const std::wstring& path() const noexcept { return m_path; }

 private:
  HINSTANCE m_instance = nullptr;
  std::wstring m_path;
  std::atomic<long> m_lockCount{0};
};

/// The one module object of this DLL.
CQELAudioVisualization4Module& theModule() noexcept;

}  // namespace av
