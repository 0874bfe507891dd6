#pragma once

#include <windows.h>

#include <oleacc.h>

namespace av::ole {

// The system's accessibility library, oleacc.dll. It is loaded with the first of these calls and not before, so that a
// process that no screen reader asks pays nothing, and then stays until the process ends: its code may be on the stack of
// whoever releases the last object that needs it. [any thread]

/// What a window answers to WM_GETOBJECT with this parameter, for `object`. 0 where that cannot be.
LRESULT lresultFromObject(REFIID iid, WPARAM wParam, IUnknown* object) noexcept;

/// The object that the system itself would give for a part of a window; E_NOTIMPL where the library is missing.
HRESULT standardAccessibleObject(HWND window, LONG objectId, REFIID iid, void** object) noexcept;

/// The description of IAccessible in the system's type library, for late binding.
HRESULT loadAccessibleTypeInfo(ITypeInfo** info) noexcept;

}  // namespace av::ole
