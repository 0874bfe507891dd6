#pragma once

// Creating a control, with or without registration. For hosts; C++14 and the Windows headers only.

#include <windows.h>

#include <objbase.h>
#include <unknwn.h>

#include <utility>

namespace avhost {

/// Creates a registered control in this thread's apartment.  // [control thread]
/// CoInitialize must have been called. Fails as CoCreateInstance does; `*object` is null then.
template <class Interface>
HRESULT createRegistered(REFCLSID classId, Interface** object) noexcept {
  if (!object) return E_POINTER;
  *object = nullptr;
  return CoCreateInstance(classId, nullptr, CLSCTX_INPROC_SERVER, __uuidof(Interface),
                          reinterpret_cast<void**>(object));
}

/// Writes the full path of a file in `folder` (null: that of the running program) to `path`. Fails with the system's
/// error, ERROR_FILENAME_EXCED_RANGE when it does not fit.
template <DWORD size>
HRESULT filePath(const wchar_t* folder, const wchar_t* fileName, wchar_t (&path)[size]) noexcept {
  const auto isSeparator = [](wchar_t character) { return character == L'\\' || character == L'/'; };
  DWORD length = folder ? GetFullPathNameW(folder, size, path, nullptr) : GetModuleFileNameW(nullptr, path, size);
  if (length == 0) return HRESULT_FROM_WIN32(GetLastError());
  if (length >= size) return HRESULT_FROM_WIN32(ERROR_FILENAME_EXCED_RANGE);
  while (!folder && length > 1 && !isSeparator(path[length - 1])) --length;  // the program's own name
  if (!isSeparator(path[length - 1])) path[length++] = L'\\';
  if (length + static_cast<DWORD>(lstrlenW(fileName)) >= size) return HRESULT_FROM_WIN32(ERROR_FILENAME_EXCED_RANGE);
  lstrcpyW(path + length, fileName);
  return S_OK;
}

/// A side-by-side manifest that names the library's classes: while it is active, CoCreateInstance finds them without
/// the registry. Their timers tick whether it stays open or not, since the library carries a manifest of its own for
/// that; a host that marshals a control's interface itself needs it active while it does.
class ActivationContext {
 public:
  ActivationContext() = default;
  ActivationContext(const ActivationContext&) = delete;
  ActivationContext& operator=(const ActivationContext&) = delete;
  ActivationContext(ActivationContext&& other) noexcept
      : m_context(std::exchange(other.m_context, INVALID_HANDLE_VALUE)) {}
  ~ActivationContext() { close(); }

  /// Reads the manifest file at `path`. The library that the manifest names is looked for beside the manifest.
  HRESULT openFile(const wchar_t* path) noexcept {
    ACTCTXW description = {};
    description.cbSize = sizeof description;
    description.lpSource = path;
    return open(description);
  }

  /// Reads the manifest that is resource `resourceId` of the program or library at `modulePath`.
  HRESULT openResource(const wchar_t* modulePath, WORD resourceId) noexcept {
    ACTCTXW description = {};
    description.cbSize = sizeof description;
    description.dwFlags = ACTCTX_FLAG_RESOURCE_NAME_VALID;
    description.lpSource = modulePath;
    description.lpResourceName = MAKEINTRESOURCEW(resourceId);
    return open(description);
  }

  bool isOpen() const noexcept { return m_context != INVALID_HANDLE_VALUE; }

  /// Creates a control with the manifest active, and only then.  // [control thread]
  template <class Interface>
  HRESULT create(REFCLSID classId, Interface** object) const noexcept {
    if (!object) return E_POINTER;
    *object = nullptr;
    const Active active(*this);
    if (FAILED(active.result())) return active.result();
    return createRegistered(classId, object);
  }

  /// Makes the manifest the calling thread's for a scope, for hosts that create objects by other means.
  /// Scopes must end in the reverse order of their begin, on the same thread.
  class Active {
   public:
    explicit Active(const ActivationContext& context) noexcept {
      if (!context.isOpen()) m_result = E_UNEXPECTED;
      else if (!ActivateActCtx(context.m_context, &m_cookie)) m_result = HRESULT_FROM_WIN32(GetLastError());
    }
    Active(const Active&) = delete;
    Active& operator=(const Active&) = delete;
    ~Active() {
      if (SUCCEEDED(m_result)) DeactivateActCtx(0, m_cookie);
    }
    HRESULT result() const noexcept { return m_result; }

   private:
    ULONG_PTR m_cookie = 0;
    HRESULT m_result = S_OK;
  };

  void close() noexcept {
    if (isOpen()) ReleaseActCtx(std::exchange(m_context, INVALID_HANDLE_VALUE));
  }

 private:
  HRESULT open(const ACTCTXW& description) noexcept {
    close();
    m_context = CreateActCtxW(&description);
    return isOpen() ? S_OK : HRESULT_FROM_WIN32(GetLastError());
  }

  HANDLE m_context = INVALID_HANDLE_VALUE;
};

/// The library loaded by its path: controls come straight from its class factories, neither the registry nor a
/// manifest is asked. The thread must be a single-threaded apartment, since nobody else puts the control into one.
class ControlLibrary {
 public:
  ControlLibrary() = default;
  ControlLibrary(const ControlLibrary&) = delete;
  ControlLibrary& operator=(const ControlLibrary&) = delete;
  ControlLibrary(ControlLibrary&& other) noexcept
      : m_module(std::exchange(other.m_module, nullptr)),
        m_getClassObject(other.m_getClassObject),
        m_canUnloadNow(other.m_canUnloadNow) {}
  ~ControlLibrary() { unload(); }

  /// Loads the DLL at `path`; a library that was loaded before is let go.
  /// Fails with the loader's error, or with CO_E_ERRORINDLL if it is no COM library.
  HRESULT load(const wchar_t* path) noexcept {
    unload();
    HMODULE module = LoadLibraryExW(path, nullptr, LOAD_WITH_ALTERED_SEARCH_PATH);
    if (!module) return HRESULT_FROM_WIN32(GetLastError());
    m_getClassObject = entryPoint<GetClassObject>(module, "DllGetClassObject");
    m_canUnloadNow = entryPoint<CanUnloadNow>(module, "DllCanUnloadNow");
    if (!m_getClassObject || !m_canUnloadNow) {
      FreeLibrary(module);
      return CO_E_ERRORINDLL;
    }
    m_module = module;
    return S_OK;
  }

  /// As load, with a file name in the folder of the running program.
  HRESULT loadBesideProgram(const wchar_t* fileName) noexcept {
    wchar_t path[1024];
    const HRESULT result = filePath(nullptr, fileName, path);
    return FAILED(result) ? result : load(path);
  }

  /// Creates a control in this thread's apartment; `*object` is null on failure.  // [control thread]
  template <class Interface>
  HRESULT create(REFCLSID classId, Interface** object) const noexcept {
    if (!object) return E_POINTER;
    *object = nullptr;
    if (!m_module) return E_UNEXPECTED;
    IClassFactory* factory = nullptr;
    HRESULT result = m_getClassObject(classId, IID_IClassFactory, reinterpret_cast<void**>(&factory));
    if (FAILED(result)) return result;
    result = factory->CreateInstance(nullptr, __uuidof(Interface), reinterpret_cast<void**>(object));
    factory->Release();
    return result;
  }

  /// S_OK when nothing of the library is in use any more, S_FALSE otherwise.
  HRESULT canUnloadNow() const noexcept { return m_module ? m_canUnloadNow() : S_OK; }

  HMODULE module() const noexcept { return m_module; }

  /// Unloads the library, or leaves it loaded for good when it is still in use: freeing code that a worker thread or
  /// an object still runs would crash the host. Returns whether it went.
  bool unload() noexcept {
    if (!m_module) return true;
    HMODULE module = std::exchange(m_module, nullptr);
    if (m_canUnloadNow() != S_OK) return false;
    FreeLibrary(module);
    return true;
  }

 private:
  using GetClassObject = HRESULT(STDAPICALLTYPE*)(REFCLSID, REFIID, void**);
  using CanUnloadNow = HRESULT(STDAPICALLTYPE*)();

  template <class Function>
  static Function entryPoint(HMODULE module, const char* name) noexcept {
    return reinterpret_cast<Function>(reinterpret_cast<void*>(GetProcAddress(module, name)));
  }

  HMODULE m_module = nullptr;
  GetClassObject m_getClassObject = nullptr;
  CanUnloadNow m_canUnloadNow = nullptr;
};

/// Initialises COM on the calling thread as a single-threaded apartment for a scope, as controls need it.
class Apartment {
 public:
  Apartment() noexcept : m_result(CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED)) {}
  Apartment(const Apartment&) = delete;
  Apartment& operator=(const Apartment&) = delete;
  ~Apartment() {
    if (SUCCEEDED(m_result)) CoUninitialize();
  }
  /// RPC_E_CHANGED_MODE when the thread is in the multi-threaded apartment already.
  HRESULT result() const noexcept { return m_result; }

 private:
  HRESULT m_result;
};

}  // namespace avhost
