// What the system and regsvr32 call by name. The .def file exports the five server entry points.

#include <windows.h>

#include <objbase.h>
#include <olectl.h>

#include "companion/module.h"
#include "companion/registration.h"
#include "runtime/runtime_threads.h"

using av::companion::theModule;

// [loader lock]
extern "C" BOOL WINAPI DllMain(HINSTANCE instance, DWORD reason, void* processEnds) {
  if (reason == DLL_PROCESS_ATTACH) return theModule().initialise(instance) ? TRUE : FALSE;
  // What the runtime holds outlives its DLL. A process's end takes everything along anyway.
  if (reason == DLL_PROCESS_DETACH && !processEnds) av::releaseRuntimeThreads();
  return TRUE;
}

// [any thread]
STDAPI DllCanUnloadNow() { return theModule().isLocked() ? S_FALSE : S_OK; }

// [any thread]
STDAPI DllGetClassObject(REFCLSID clsid, REFIID iid, void** object) {
  return av::companion::getClassObject(clsid, iid, object);
}

// [any thread]
STDAPI DllRegisterServer() { return av::companion::registerClasses(av::ole::RegistryScope::machine); }

// [any thread]
STDAPI DllUnregisterServer() { return av::companion::unregisterClasses(av::ole::RegistryScope::machine); }

/// `regsvr32 /n /i:user` registers for the calling user, `/i` alone for the machine.  [any thread]
extern "C" HRESULT WINAPI DllInstall(BOOL install, const wchar_t* commandLine) {
  auto scope = av::ole::RegistryScope::machine;
  if (commandLine && lstrcmpiW(commandLine, L"user") == 0) scope = av::ole::RegistryScope::user;
  else if (commandLine && *commandLine) return E_INVALIDARG;
  return install ? av::companion::registerClasses(scope) : av::companion::unregisterClasses(scope);
}
