#include "support/win/dll.h"

namespace av::test {
namespace {

template <class Function>
Function entryPoint(HMODULE module, const char* name) {
  // By way of void*: the compiler takes a direct cast between function types for a mistake.
  return module == nullptr ? nullptr
                           : reinterpret_cast<Function>(reinterpret_cast<void*>(GetProcAddress(module, name)));
}

HRESULT callPlain(HMODULE module, const char* name) {
  const auto function = entryPoint<HRESULT(WINAPI*)()>(module, name);
  return function == nullptr ? E_UNEXPECTED : function();
}

}  // namespace

std::wstring besideProgram(const std::wstring& name) {
  std::wstring program(0x8000, L'\0');
  program.resize(GetModuleFileNameW(nullptr, program.data(), static_cast<DWORD>(program.size())));
  const std::wstring joined = program.substr(0, program.find_last_of(L'\\') + 1) + name;
  std::wstring full(0x8000, L'\0');
  full.resize(GetFullPathNameW(joined.c_str(), static_cast<DWORD>(full.size()), full.data(), nullptr));
  return full;
}

std::wstring dllPath() { return besideProgram(L"QELAudioVisualization4.dll"); }

LoadedDll::LoadedDll(const std::wstring& path) : m_module(LoadLibraryW(path.c_str())) {}

LoadedDll::~LoadedDll() {
  if (m_module != nullptr) FreeLibrary(m_module);
}

HRESULT LoadedDll::canUnloadNow() const { return callPlain(m_module, "DllCanUnloadNow"); }

HRESULT LoadedDll::getClassObject(REFCLSID clsid, REFIID iid, void** object) const {
  const auto function = entryPoint<HRESULT(WINAPI*)(REFCLSID, REFIID, void**)>(m_module, "DllGetClassObject");
  return function == nullptr ? E_UNEXPECTED : function(clsid, iid, object);
}

HRESULT LoadedDll::registerServer() const { return callPlain(m_module, "DllRegisterServer"); }

HRESULT LoadedDll::unregisterServer() const { return callPlain(m_module, "DllUnregisterServer"); }

}  // namespace av::test
