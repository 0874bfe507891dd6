#include "module/registration.h"

#include <windows.h>

#include <oleauto.h>
#include <wrl/client.h>

#include <iterator>
#include <new>
#include <string>

#include "module/resource_ids.h"
#include "module/thread_locale_scope.h"
#include "ole/registrar.h"

namespace av {
namespace {

using Microsoft::WRL::ComPtr;
using ole::IRegistrar;

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

std::wstring guidText(REFGUID guid) {
  wchar_t text[39];
  StringFromGUID2(guid, text, static_cast<int>(std::size(text)));
  return text;
}

/// A text as it has to stand between the apostrophes of a script: each of its own apostrophes doubled.
std::wstring quotable(const std::wstring& text) {
  std::wstring result;
  for (const wchar_t c : text) {
    if (c == L'\'') result += c;
    result += c;
  }
  return result;
}

/// A script interpreter that knows what %APPID% stands for.
HRESULT makeRegistrar(ComPtr<IRegistrar>& registrar) {
  const HRESULT result = CoCreateInstance(ole::clsidRegistrar, nullptr, CLSCTX_INPROC_SERVER, ole::iidRegistrar,
                                          reinterpret_cast<void**>(registrar.ReleaseAndGetAddressOf()));
  if (FAILED(result)) return result;
  return registrar->AddReplacement(L"APPID", guidText(CQELAudioVisualization4Module::applicationId()).c_str());
}

enum class Mode { write, remove };

HRESULT runScript(IRegistrar& registrar, const CQELAudioVisualization4Module& module, UINT resourceId, Mode mode) {
  return mode == Mode::write ? registrar.ResourceRegister(module.path().c_str(), resourceId, L"REGISTRY")
                             : registrar.ResourceUnregister(module.path().c_str(), resourceId, L"REGISTRY");
}

HRESULT runApplicationScript(const CQELAudioVisualization4Module& module, Mode mode) {
  ComPtr<IRegistrar> registrar;
  const HRESULT result = makeRegistrar(registrar);
  if (FAILED(result)) return result;
  return runScript(*registrar.Get(), module, AV_REGISTRY_APPLICATION, mode);
}

HRESULT runClassScript(const CQELAudioVisualization4Module& module, const ClassEntry& entry, Mode mode) {
  ComPtr<IRegistrar> registrar;
  HRESULT result = makeRegistrar(registrar);
  const auto replace = [&](const wchar_t* key, const std::wstring& item) {
    if (SUCCEEDED(result)) result = registrar->AddReplacement(key, item.c_str());
  };
  replace(L"MODULE", quotable(module.path()));
  replace(L"CLSID", guidText(*entry.clsid));
  replace(L"FRIENDLYNAME", entry.friendlyName);
  replace(L"LIBID", guidText(CQELAudioVisualization4Module::applicationId()));
  if (FAILED(result)) return result;
  return runScript(*registrar.Get(), module, AV_REGISTRY_CLASS, mode);
}

HRESULT writeTypeLibrary(const CQELAudioVisualization4Module& module) {
  ComPtr<ITypeLib> library;
  const HRESULT result = module.loadTypeLibrary(&library);
  if (FAILED(result)) return result;
  std::wstring path = module.path();
  std::wstring folder = path.substr(0, path.find_last_of(L'\\'));
  return RegisterTypeLib(library.Get(), path.data(), folder.data());
}

/// Whether the registry has this build's entry of the type library: 32-bit and 64-bit entries stand side by side.
bool typeLibraryIsRegistered(const TLIBATTR& attributes) {
  const std::wstring key = L"TypeLib\\" + guidText(attributes.guid) +
                           (attributes.syskind == SYS_WIN64 ? L"\\1.0\\0\\win64" : L"\\1.0\\0\\win32");
  HKEY opened = nullptr;
  if (RegOpenKeyExW(HKEY_CLASSES_ROOT, key.c_str(), 0, KEY_READ, &opened) != ERROR_SUCCESS) return false;
  RegCloseKey(opened);
  return true;
}

HRESULT removeTypeLibrary(const CQELAudioVisualization4Module& module) {
  ComPtr<ITypeLib> library;
  HRESULT result = module.loadTypeLibrary(&library);
  if (FAILED(result)) return result;
  TLIBATTR* attributes = nullptr;
  result = library->GetLibAttr(&attributes);
  if (FAILED(result)) return result;
  if (typeLibraryIsRegistered(*attributes)) {
    result = UnRegisterTypeLib(attributes->guid, attributes->wMajorVerNum, attributes->wMinorVerNum, attributes->lcid,
                               attributes->syskind);
  }
  library->ReleaseTLibAttr(attributes);
  return result;
}

HRESULT writeAll(const CQELAudioVisualization4Module& module) {
  HRESULT result = runApplicationScript(module, Mode::write);
  for (const ClassEntry& entry : CQELAudioVisualization4Module::classes()) {
    if (FAILED(result)) return result;
    result = runClassScript(module, entry, Mode::write);
  }
  return FAILED(result) ? result : writeTypeLibrary(module);
}

HRESULT removeAll(const CQELAudioVisualization4Module& module) {
  HRESULT first = S_OK;
  const auto note = [&first](HRESULT result) {
    if (FAILED(result) && SUCCEEDED(first)) first = result;
  };
  for (const ClassEntry& entry : CQELAudioVisualization4Module::classes())
    note(runClassScript(module, entry, Mode::remove));
  note(removeTypeLibrary(module));
  note(runApplicationScript(module, Mode::remove));
  return first;
}

HRESULT inSystemLocale(HRESULT (*work)(const CQELAudioVisualization4Module&),
                       const CQELAudioVisualization4Module& module) noexcept {
  const ThreadLocaleScope locale(LOCALE_SYSTEM_DEFAULT);
  const ComScope com;
  try {
    const HRESULT result = work(module);
    return FAILED(result) ? result : S_OK;
  } catch (const std::bad_alloc&) {
    return E_OUTOFMEMORY;
  }
}

}  // namespace

HRESULT registerModule(const CQELAudioVisualization4Module& module) noexcept {
  return inSystemLocale(&writeAll, module);
}

HRESULT unregisterModule(const CQELAudioVisualization4Module& module) noexcept {
  return inSystemLocale(&removeAll, module);
}

}  // namespace av
