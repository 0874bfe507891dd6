// What the system and regsvr32 call by name. The .def file exports the four server entry points.

#include <windows.h>

#include <objbase.h>
#include <olectl.h>

#include "module/module.h"
#include "module/registration.h"
#include "ole/control_window.h"
#include "runtime/runtime_threads.h"

// [loader lock]
extern "C" BOOL WINAPI DllMain(HINSTANCE instance, DWORD reason, void* processEnds) {
  if (reason == DLL_PROCESS_ATTACH) return av::theModule().initialise(instance) ? TRUE : FALSE;
  // What outlives its DLL: a window class, and what the runtime holds. A process's end takes everything along anyway.
  if (reason == DLL_PROCESS_DETACH && !processEnds) {
    av::ole::unregisterControlWindowClass();
    av::releaseRuntimeThreads();
  }
  return TRUE;
}

// [any thread]
STDAPI DllCanUnloadNow() { return av::theModule().isLocked() ? S_FALSE : S_OK; }

// [any thread]
STDAPI DllGetClassObject(REFCLSID clsid, REFIID iid, void** object) {
  return av::theModule().getClassObject(clsid, iid, object);
}

// [any thread]
STDAPI DllRegisterServer() { return av::registerModule(av::theModule()); }

// [any thread]
STDAPI DllUnregisterServer() { return av::unregisterModule(av::theModule()); }
