#pragma once

#include <windows.h>

#include <span>

#include "ole/server_module.h"

namespace av {

using ole::ClassEntry;

/// The DLL as one object: what it serves, who it is, and how many things hold it.
class CQELAudioVisualization4Module final : public ole::ServerModule {
 public:
  /// The object map.
  [[nodiscard]] static std::span<const ClassEntry> classes() noexcept;

  /// The application identifier, which is the type library's identifier too.
  [[nodiscard]] static const GUID& applicationId() noexcept;

  /// Hands out the class factory of a class: CLASS_E_CLASSNOTAVAILABLE for a class that is not in the object map.
  HRESULT getClassObject(REFCLSID clsid, REFIID iid, void** object) noexcept {  // [any thread]
    return ServerModule::getClassObject(classes(), clsid, iid, object);
  }
};

/// The one module object of this DLL.
CQELAudioVisualization4Module& theModule() noexcept;

}  // namespace av
