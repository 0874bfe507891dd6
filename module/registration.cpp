#include "module/registration.h"

#include <vector>

#include "module/resource_ids.h"
#include "ole/registration.h"

namespace av {
namespace {

using ole::RegistryScope;
using ole::ScriptReplacement;

std::vector<ScriptReplacement> applicationReplacements() {
  return {{L"APPID", ole::guidText(CQELAudioVisualization4Module::applicationId())}};
}

std::vector<ScriptReplacement> classReplacements(const CQELAudioVisualization4Module& module, const ClassEntry& entry) {
  const std::wstring applicationId = ole::guidText(CQELAudioVisualization4Module::applicationId());
  return {{L"APPID", applicationId},
          {L"MODULE", ole::quotable(module.path())},
          {L"CLSID", ole::guidText(*entry.clsid)},
          {L"FRIENDLYNAME", entry.friendlyName},
          {L"LIBID", applicationId}};
}

HRESULT writeAll(const CQELAudioVisualization4Module& module) {
  HRESULT result =
      ole::registerFromScript(module, AV_REGISTRY_APPLICATION, applicationReplacements(), RegistryScope::machine);
  for (const ClassEntry& entry : CQELAudioVisualization4Module::classes()) {
    if (FAILED(result)) return result;
    result =
        ole::registerFromScript(module, AV_REGISTRY_CLASS, classReplacements(module, entry), RegistryScope::machine);
  }
  return FAILED(result) ? result : ole::registerTypeLibrary(module, RegistryScope::machine);
}

HRESULT removeAll(const CQELAudioVisualization4Module& module) {
  HRESULT first = S_OK;
  const auto note = [&first](HRESULT result) {
    if (FAILED(result) && SUCCEEDED(first)) first = result;
  };
  for (const ClassEntry& entry : CQELAudioVisualization4Module::classes()) {
    note(
        ole::unregisterFromScript(module, AV_REGISTRY_CLASS, classReplacements(module, entry), RegistryScope::machine));
  }
  note(ole::unregisterTypeLibrary(module, RegistryScope::machine));
  note(ole::unregisterFromScript(module, AV_REGISTRY_APPLICATION, applicationReplacements(), RegistryScope::machine));
  return first;
}

}  // namespace

HRESULT registerModule(const CQELAudioVisualization4Module& module) noexcept {
  return ole::inSystemLocale([&] { return writeAll(module); });
}

HRESULT unregisterModule(const CQELAudioVisualization4Module& module) noexcept {
  return ole::inSystemLocale([&] { return removeAll(module); });
}

}  // namespace av
