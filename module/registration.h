#pragma once

#include <windows.h>

#include "module/module.h"

namespace av {

/// Writes the application identifier's entries, then every class's entries and the type library's, into the registry.
/// Every text is written under the system's default locale; the calling thread's own locale is back afterwards.
/// @return the first failure, after which nothing more is written, or S_OK.
HRESULT registerModule(const CQELAudioVisualization4Module& module) noexcept;  // [any thread]

/// Removes what registerModule wrote: classes, type library, application identifier, in this order. What is gone already
/// counts as removed, since the classes share their ProgID keys and the first of them to go takes them along.
/// @return the first failure; the rest is removed all the same.
HRESULT unregisterModule(const CQELAudioVisualization4Module& module) noexcept;  // [any thread]

}  // namespace av
