// What the generic framework asks of the binary that it is linked into, for the test program that links it directly.

#include <windows.h>

#include <atomic>

#include "ole/module_instance.h"
#include "ole/module_lock.h"
#include "support/own_module.h"

namespace av::test {
namespace {

struct ProgramLock final : ole::ModuleLock {
  void lockModule() noexcept override { ++count; }
  void unlockModule() noexcept override { --count; }
  std::atomic<long> count{0};
};

ProgramLock programLock;

}  // namespace

long ownModuleLockCount() { return programLock.count; }

}  // namespace av::test

namespace av::ole {

ModuleLock& moduleLock() noexcept { return test::programLock; }

HINSTANCE moduleInstance() noexcept { return GetModuleHandleW(nullptr); }

// The program carries no type library of its own; the build lays the DLL's beside it.
HRESULT loadModuleTypeLibrary(ITypeLib** library) noexcept {
  if (library == nullptr) return E_POINTER;
  *library = nullptr;
  wchar_t path[MAX_PATH] = {};
  if (GetModuleFileNameW(nullptr, path, MAX_PATH) == 0) return E_FAIL;
  wchar_t* end = path;
  for (wchar_t* at = path; *at != L'\0'; ++at)
    if (*at == L'\\') end = at + 1;
  *end = L'\0';
  constexpr wchar_t name[] = L"QELAudioVisualization4.tlb";
  if (end - path + sizeof name / sizeof *name > MAX_PATH) return E_FAIL;
  lstrcpyW(end, name);
  return LoadTypeLibEx(path, REGKIND_NONE, library);
}

}  // namespace av::ole
