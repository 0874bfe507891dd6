#include "ole/oleacc_library.h"

#include <wrl/client.h>

#include <atomic>
#include <cwchar>
#include <iterator>

namespace av::ole {

namespace {

constexpr GUID accessibilityLibraryId = {0x1ea4dbf0, 0x3c3b, 0x11cf, {0x81, 0x0c, 0x00, 0xaa, 0x00, 0x38, 0x9b, 0x71}};

/// The file in the system's folder: a search by the bare name could find one of the host's folder.
struct LibraryPath {
  wchar_t text[MAX_PATH] = {};
  LibraryPath() noexcept {
    constexpr wchar_t name[] = L"\\oleacc.dll";
    const UINT length = GetSystemDirectoryW(text, MAX_PATH);
    if (length == 0 || length + std::size(name) > MAX_PATH) {
      text[0] = L'\0';
    } else {
      std::wmemcpy(text + length, name, std::size(name));
    }
  }
};

HMODULE library() noexcept {
  static std::atomic<HMODULE> loaded{nullptr};  // constant-initialised: no guard
  HMODULE module = loaded;
  if (module) return module;
  module = LoadLibraryW(LibraryPath().text);
  loaded = module;
  return module;
}

/// `Function`: a pointer, with its calling convention.
template <class Function>
Function entry(const char* name) noexcept {
  const HMODULE module = library();
  return module ? reinterpret_cast<Function>(reinterpret_cast<void*>(GetProcAddress(module, name))) : nullptr;
}

}  // namespace

LRESULT lresultFromObject(REFIID iid, WPARAM wParam, IUnknown* object) noexcept {
  const auto call = entry<LPFNLRESULTFROMOBJECT>("LresultFromObject");
  const LRESULT result = call ? call(iid, wParam, object) : 0;
  return static_cast<HRESULT>(result) > 0 ? result : 0;  // negative: an error
}

HRESULT standardAccessibleObject(HWND window, LONG objectId, REFIID iid, void** object) noexcept {
  *object = nullptr;
  const auto call = entry<LPFNCREATESTDACCESSIBLEOBJECT>("CreateStdAccessibleObject");
  return call ? call(window, objectId, iid, object) : E_NOTIMPL;
}

HRESULT loadAccessibleTypeInfo(ITypeInfo** info) noexcept {
  *info = nullptr;
  Microsoft::WRL::ComPtr<ITypeLib> types;
  HRESULT result = LoadRegTypeLib(accessibilityLibraryId, 1, 1, 0, &types);
  // The library carries them itself, for systems that did not register them.
  if (FAILED(result)) result = LoadTypeLibEx(LibraryPath().text, REGKIND_NONE, &types);
  return FAILED(result) ? result : types->GetTypeInfoOfGuid(__uuidof(IAccessible), info);
}

}  // namespace av::ole
