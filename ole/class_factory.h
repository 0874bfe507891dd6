#pragma once

#include <windows.h>

#include <unknwn.h>

#include "ole/module_lock.h"

namespace av::ole {

/// Makes one object of a class and answers with the asked interface. `outer` is the controlling unknown when the object
/// is to be aggregated (`iid` is IUnknown then) and null otherwise.
using CreateFunction = HRESULT (*)(IUnknown* outer, REFIID iid, void** object);

/// Makes a class factory over a creator function. The factory holds the module while it lives, and once more for
/// each LockServer(TRUE).
/// @return E_POINTER for a null `object`, E_NOINTERFACE for an interface that factories do not have, E_OUTOFMEMORY.
HRESULT makeClassFactory(CreateFunction create, ModuleLock& lock, REFIID iid, void** object) noexcept;  // [any thread]

}  // namespace av::ole
