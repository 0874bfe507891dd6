#pragma once

#include <windows.h>
#include <unknwn.h>

#include <initializer_list>

namespace av {

/// Raises the `_com_error` of a host method that answered with the failing `result`.
///
/// The thread's current error information goes with it (and is taken off the thread) when `object` declares, through
/// ISupportErrorInfo, that it supplies such information for one of `interfaces`; otherwise whatever lies on the thread
/// is some other call's and stays there. `object` may be null.
[[noreturn]] void raiseHostError(HRESULT result, IUnknown* object, std::initializer_list<IID> interfaces);

}  // namespace av
