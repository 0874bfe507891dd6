// What the system and regsvr32 call by name. The .def file exports the four server entry points.

#include <windows.h>

#include <objbase.h>
#include <olectl.h>

#include "module/module.h"
#include "module/registration.h"

// [loader lock]
extern "C" BOOL WINAPI DllMain(HINSTANCE instance, DWORD reason, void*) {
  if (reason == DLL_PROCESS_ATTACH) return av::theModule().initialise(instance) ? TRUE : FALSE;
  return TRUE;
}

// [any thread]
STDAPI DllCanUnloadNow() {
  return av::theModule().isLocked() ? S_FALSE : S_OK;
}

// [any thread]
STDAPI DllGetClassObject(REFCLSID clsid, REFIID iid, void** object) {
  return av::theModule().getClassObject(clsid, iid, object);
}

// [any thread]
STDAPI DllRegisterServer() {
  return av::registerModule(av::theModule());
}

// [any thread]
STDAPI DllUnregisterServer() {
  return av::unregisterModule(av::theModule());
}
