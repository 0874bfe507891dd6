#include "ole/server_module.h"

#include <new>

namespace av::ole {
namespace {

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

bool ServerModule::initialise(HINSTANCE instance) noexcept {
  try {
    m_instance = instance;
    m_path = modulePath(instance);
    return !m_path.empty();
  } catch (const std::bad_alloc&) {
    return false;
  }
}

HRESULT ServerModule::getClassObject(std::span<const ClassEntry> objectMap, REFCLSID clsid, REFIID iid,
                                     void** object) noexcept {
  if (object == nullptr) return E_POINTER;
  *object = nullptr;
  for (const ClassEntry& entry : objectMap) {
    if (*entry.clsid == clsid) return makeClassFactory(entry.create, *this, iid, object);
  }
  return CLASS_E_CLASSNOTAVAILABLE;
}

HRESULT ServerModule::loadTypeLibrary(ITypeLib** library) const noexcept {
  if (library == nullptr) return E_POINTER;
  *library = nullptr;
  return LoadTypeLibEx(m_path.c_str(), REGKIND_NONE, library);
}

}  // namespace av::ole
