#pragma once

#include <windows.h>

#include <oaidl.h>

namespace av::ole {

// Who the DLL or program that this code is linked into is; the binary's own module code implements both.

/// The instance handle that resources are loaded from.
HINSTANCE moduleInstance() noexcept;  // [any thread]

/// Loads the type library that the binary carries as its resource TYPELIB 1.
/// @param library receives a counted reference; null on failure.
/// @return E_POINTER for a null argument, else what LoadTypeLibEx returns.
HRESULT loadModuleTypeLibrary(ITypeLib** library) noexcept;  // [any thread]

}  // namespace av::ole
