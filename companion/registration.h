#pragma once

#include "ole/registration.h"

namespace av::companion {

/// Writes every class's entries and the type library's into the registry.
/// @return the first failure, after which nothing more is written, or S_OK.
HRESULT registerClasses(ole::RegistryScope scope) noexcept;  // [any thread]

/// Removes what registerClasses wrote; what is gone already counts as removed.
/// @return the first failure; the rest is removed all the same.
HRESULT unregisterClasses(ole::RegistryScope scope) noexcept;  // [any thread]

}  // namespace av::companion
