#include "companion/registration.h"

#include <AudioBlocks.h>

#include <vector>

#include "companion/module.h"
#include "companion/resource_ids.h"

namespace av::companion {
namespace {

using ole::RegistryScope;

std::vector<ole::ScriptReplacement> replacementsOf(const NamedClass& each) {
  return {{L"MODULE", ole::quotable(theModule().path())},
          {L"CLSID", ole::guidText(*each.entry.clsid)},
          {L"PROGID", each.progId},
          {L"FRIENDLYNAME", each.entry.friendlyName},
          {L"LIBID", ole::guidText(LIBID_AudioBlocks)}};
}

HRESULT writeAll(RegistryScope scope) {
  for (const NamedClass& each : namedClasses()) {
    const HRESULT result = ole::registerFromScript(theModule(), AV_REGISTRY_CLASS, replacementsOf(each), scope);
    if (FAILED(result)) return result;
  }
  return ole::registerTypeLibrary(theModule(), scope);
}

HRESULT removeAll(RegistryScope scope) {
  HRESULT first = S_OK;
  const auto note = [&first](HRESULT result) {
    if (FAILED(result) && SUCCEEDED(first)) first = result;
  };
  for (const NamedClass& each : namedClasses())
    note(ole::unregisterFromScript(theModule(), AV_REGISTRY_CLASS, replacementsOf(each), scope));
  note(ole::unregisterTypeLibrary(theModule(), scope));
  return first;
}

}  // namespace

HRESULT registerClasses(RegistryScope scope) noexcept {
  return ole::inSystemLocale([scope] { return writeAll(scope); });
}

HRESULT unregisterClasses(RegistryScope scope) noexcept {
  return ole::inSystemLocale([scope] { return removeAll(scope); });
}

}  // namespace av::companion
