#pragma once

#include <windows.h>

#include <span>

#include "ole/server_module.h"

namespace av::companion {

/// A class and the ProgID that scripts create it by, which exists with and without ".1".
struct NamedClass {
  ole::ClassEntry entry;
  const wchar_t* progId;
};

/// What the DLL serves.
std::span<const NamedClass> namedClasses() noexcept;

/// The one module object of this DLL.
ole::ServerModule& theModule() noexcept;

/// Hands out the class factory of one of the classes.
HRESULT getClassObject(REFCLSID clsid, REFIID iid, void** object) noexcept;  // [any thread]

}  // namespace av::companion
