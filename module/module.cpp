#include "module/module.h"

#include <QELAudioVisualization4.h>

#include <new>

#include "ole/module_instance.h"
#include "type1/win/control.h"
#include "type2/win/control.h"
#include "type3/win/control.h"

namespace av {
namespace {

const ClassEntry objectMap[] = {
    {&CLSID_CAudioVisualization4Type1, L"CAudioVisualization4Type1 Object", &type1::createType1Control},
    {&CLSID_CAudioVisualization4Type2, L"CAudioVisualization4Type2 Object", &type2::createType2Control},
    {&CLSID_CAudioVisualization4Type3, L"CAudioVisualization4Type3 Object", &type3::createType3Control},
};

/// The full path of a loaded module; empty on failure. Paths may be longer than MAX_PATH.
std::wstring modulePath(HINSTANCE instance) {
  for (std::size_t room = MAX_PATH; room <= 0x8000; room *= 2) {
    std::wstring path(room, L'\0');
    const DWORD length = GetModuleFileNameW(instance, path.data(), static_cast<DWORD>(room));
    if (length == 0) return {};
    if (length < room) {
      path.resize(length);
      return path;
    }
  }
  return {};
}

}  // namespace

bool CQELAudioVisualization4Module::initialise(HINSTANCE instance) noexcept {
  try {
    m_instance = instance;
    m_path = modulePath(instance);
    return !m_path.empty();
  } catch (const std::bad_alloc&) {
    return false;
  }
}

std::span<const ClassEntry> CQELAudioVisualization4Module::classes() noexcept { return objectMap; }

const GUID& CQELAudioVisualization4Module::applicationId() noexcept { return LIBID_QELAudioVisualization4; }

HRESULT CQELAudioVisualization4Module::getClassObject(REFCLSID clsid, REFIID iid, void** object) noexcept {
  if (object == nullptr) return E_POINTER;
  *object = nullptr;
  for (const ClassEntry& entry : classes()) {
    if (*entry.clsid == clsid) return ole::makeClassFactory(entry.create, *this, iid, object);
  }
  return CLASS_E_CLASSNOTAVAILABLE;
}

HRESULT CQELAudioVisualization4Module::loadTypeLibrary(ITypeLib** library) const noexcept {
  if (library == nullptr) return E_POINTER;
  *library = nullptr;
  return LoadTypeLibEx(m_path.c_str(), REGKIND_NONE, library);
}

namespace {

// Not a static of the function: its guard would need more of a thread library than module/runtime_threads.cpp has.
CQELAudioVisualization4Module moduleObject;

}  // namespace

CQELAudioVisualization4Module& theModule() noexcept { return moduleObject; }

// What the generic framework asks of the binary that it is linked into.
namespace ole {

ModuleLock& moduleLock() noexcept { return theModule(); }

HINSTANCE moduleInstance() noexcept { return theModule().instance(); }

HRESULT loadModuleTypeLibrary(ITypeLib** library) noexcept { return theModule().loadTypeLibrary(library); }

}  // namespace ole
}  // namespace av
