#pragma once

#include <windows.h>

#include <span>
#include <string>

#include "ole/server_module.h"
#include "ole/thread_locale_scope.h"

namespace av::ole {

/// For whom a server is registered.
enum class RegistryScope {
  machine,  ///< for all users
  user      ///< for the calling one, who needs no rights over the machine
};

/// What `%key%` stands for in a registry script. Items are put between apostrophes there; see quotable.
struct ScriptReplacement {
  const wchar_t* key;
  std::wstring item;
};

/// Runs the script that the module carries as that REGISTRY resource. It begins with HKCR, which stands for the user's
/// own classes in that scope.
HRESULT registerFromScript(const ServerModule& module, UINT resourceId, std::span<const ScriptReplacement> replacements,
                           RegistryScope scope);
/// Takes back what the script wrote; what is gone already counts as taken back.
HRESULT unregisterFromScript(const ServerModule& module, UINT resourceId,
                             std::span<const ScriptReplacement> replacements, RegistryScope scope);

/// Registers the type library that the module carries, and its interfaces.
HRESULT registerTypeLibrary(const ServerModule& module, RegistryScope scope);
/// Takes it back; one that is not registered for this architecture counts as taken back.
HRESULT unregisterTypeLibrary(const ServerModule& module, RegistryScope scope);

/// A GUID with its braces.
std::wstring guidText(REFGUID guid);

/// A text as it has to stand between the apostrophes of a script: each of its own apostrophes doubled.
std::wstring quotable(const std::wstring& text);

/// COM for the calling thread, which may have started it already, in either mode.
class ComScope {
 public:
  ComScope() noexcept : m_result(CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED)) {}
  ~ComScope() {
    if (SUCCEEDED(m_result)) CoUninitialize();
  }
  ComScope(const ComScope&) = delete;
  ComScope& operator=(const ComScope&) = delete;

 private:
  HRESULT m_result;
};

/// Does registration work with COM started, every text written under the system's default locale and the calling
/// thread's own locale back afterwards.
/// @return what `work` returns, success as S_OK; E_OUTOFMEMORY when it throws.
template <class Work>
HRESULT inSystemLocale(Work&& work) noexcept {
  const ThreadLocaleScope locale(LOCALE_SYSTEM_DEFAULT);
  const ComScope com;
  try {
    const HRESULT result = work();
    return FAILED(result) ? result : S_OK;
  } catch (const std::exception&) {
    return E_OUTOFMEMORY;
  }
}

}  // namespace av::ole
