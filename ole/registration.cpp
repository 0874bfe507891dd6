#include "ole/registration.h"

#include <oleauto.h>
#include <wrl/client.h>

#include <iterator>

#include "ole/registrar.h"

// In oleaut32, but in no MinGW header.
extern "C" {
HRESULT WINAPI RegisterTypeLibForUser(ITypeLib* library, OLECHAR* path, OLECHAR* helpFolder);
HRESULT WINAPI UnRegisterTypeLibForUser(REFGUID library, WORD major, WORD minor, LCID locale, SYSKIND kind);
}

namespace av::ole {
namespace {

using Microsoft::WRL::ComPtr;

enum class Mode { write, remove };

/// The script's text; empty when the module has no such resource. Scripts are plain ASCII.
std::wstring scriptText(const ServerModule& module, UINT resourceId) {
  const HRSRC found = FindResourceW(module.instance(), MAKEINTRESOURCEW(resourceId), L"REGISTRY");
  const HGLOBAL loaded = found ? LoadResource(module.instance(), found) : nullptr;
  const auto* const text = loaded ? static_cast<const char*>(LockResource(loaded)) : nullptr;
  if (!text) return {};
  return {text, text + SizeofResource(module.instance(), found)};
}

/// The same script below the user's own classes.
std::wstring forUser(const std::wstring& script) {
  const std::wstring root = L"HKCR";
  const std::size_t at = script.find(root);
  if (at == std::wstring::npos) return {};
  return L"HKCU\n{\nNoRemove Software\n{\nNoRemove Classes\n" + script.substr(at + root.size()) + L"\n}\n}\n";
}

HRESULT runScript(const ServerModule& module, UINT resourceId, std::span<const ScriptReplacement> replacements,
                  RegistryScope scope, Mode mode) {
  ComPtr<IRegistrar> registrar;
  HRESULT result = CoCreateInstance(clsidRegistrar, nullptr, CLSCTX_INPROC_SERVER, iidRegistrar,
                                    reinterpret_cast<void**>(registrar.GetAddressOf()));
  for (const ScriptReplacement& each : replacements) {
    if (FAILED(result)) return result;
    result = registrar->AddReplacement(each.key, each.item.c_str());
  }
  if (FAILED(result)) return result;
  if (scope == RegistryScope::machine) {
    return mode == Mode::write ? registrar->ResourceRegister(module.path().c_str(), resourceId, L"REGISTRY")
                               : registrar->ResourceUnregister(module.path().c_str(), resourceId, L"REGISTRY");
  }
  const std::wstring script = forUser(scriptText(module, resourceId));
  if (script.empty()) return HRESULT_FROM_WIN32(ERROR_RESOURCE_NAME_NOT_FOUND);
  return mode == Mode::write ? registrar->StringRegister(script.c_str()) : registrar->StringUnregister(script.c_str());
}

/// Whether the registry has this build's entry of the type library: 32-bit and 64-bit entries stand side by side.
bool typeLibraryIsRegistered(const TLIBATTR& attributes) {
  const std::wstring key = L"TypeLib\\" + guidText(attributes.guid) + L"\\" + std::to_wstring(attributes.wMajorVerNum) +
                           L"." + std::to_wstring(attributes.wMinorVerNum) +
                           (attributes.syskind == SYS_WIN64 ? L"\\0\\win64" : L"\\0\\win32");
  HKEY opened = nullptr;
  if (RegOpenKeyExW(HKEY_CLASSES_ROOT, key.c_str(), 0, KEY_READ, &opened) != ERROR_SUCCESS) return false;
  RegCloseKey(opened);
  return true;
}

}  // namespace

std::wstring guidText(REFGUID guid) {
  wchar_t text[39];
  StringFromGUID2(guid, text, static_cast<int>(std::size(text)));
  return text;
}

std::wstring quotable(const std::wstring& text) {
  std::wstring result;
  for (const wchar_t c : text) {
    if (c == L'\'') result += c;
    result += c;
  }
  return result;
}

HRESULT registerFromScript(const ServerModule& module, UINT resourceId, std::span<const ScriptReplacement> replacements,
                           RegistryScope scope) {
  return runScript(module, resourceId, replacements, scope, Mode::write);
}

HRESULT unregisterFromScript(const ServerModule& module, UINT resourceId,
                             std::span<const ScriptReplacement> replacements, RegistryScope scope) {
  return runScript(module, resourceId, replacements, scope, Mode::remove);
}

HRESULT registerTypeLibrary(const ServerModule& module, RegistryScope scope) {
  ComPtr<ITypeLib> library;
  const HRESULT result = module.loadTypeLibrary(&library);
  if (FAILED(result)) return result;
  std::wstring path = module.path();
  std::wstring folder = path.substr(0, path.find_last_of(L'\\'));
  return scope == RegistryScope::machine ? RegisterTypeLib(library.Get(), path.data(), folder.data())
                                         : RegisterTypeLibForUser(library.Get(), path.data(), folder.data());
}

HRESULT unregisterTypeLibrary(const ServerModule& module, RegistryScope scope) {
  ComPtr<ITypeLib> library;
  HRESULT result = module.loadTypeLibrary(&library);
  if (FAILED(result)) return result;
  TLIBATTR* attributes = nullptr;
  result = library->GetLibAttr(&attributes);
  if (FAILED(result)) return result;
  if (typeLibraryIsRegistered(*attributes)) {
    const auto remove = [&] {
      const auto system = scope == RegistryScope::machine ? &UnRegisterTypeLib : &UnRegisterTypeLibForUser;
      return system(attributes->guid, attributes->wMajorVerNum, attributes->wMinorVerNum, attributes->lcid,
                    attributes->syskind);
    };
    result = remove();
    // The system may want to read the library that it forgets: an entry whose file has gone is replaced by this one's.
    if (FAILED(result) && SUCCEEDED(registerTypeLibrary(module, scope))) result = remove();
  }
  library->ReleaseTLibAttr(attributes);
  return result;
}

}  // namespace av::ole
