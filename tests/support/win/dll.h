#pragma once

// The finished DLL as the tests find it: beside the test program, with its type library and its manifest.

#include <windows.h>

#include <unknwn.h>

#include <string>

namespace av::test {

/// Full path of a file, given relative to the folder of the running test program.
std::wstring besideProgram(const std::wstring& name);

/// Full path of the DLL of this test program's own architecture.
std::wstring dllPath();

/// The DLL, loaded for as long as the object lives, with its four entry points.
class LoadedDll {
 public:
  explicit LoadedDll(const std::wstring& path = dllPath());
  ~LoadedDll();
  LoadedDll(const LoadedDll&) = delete;
  LoadedDll& operator=(const LoadedDll&) = delete;

  [[nodiscard]] HMODULE handle() const { return m_module; }

  // Each answers E_UNEXPECTED when the DLL or the entry point is not there.
  HRESULT canUnloadNow() const;
  HRESULT getClassObject(REFCLSID clsid, REFIID iid, void** object) const;
  HRESULT registerServer() const;
  HRESULT unregisterServer() const;

 private:
  HMODULE m_module;
};

}  // namespace av::test
