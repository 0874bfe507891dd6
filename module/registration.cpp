#include "module/registration.h"

#include <cstddef>
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

/// How far a registration has come; the entries of the application are its beginning.
struct Progress {
  std::size_t classes = 0;
  bool typeLibrary = false;
};

HRESULT writeAll(const CQELAudioVisualization4Module& module, Progress& begun) {
  HRESULT result =
      ole::registerFromScript(module, AV_REGISTRY_APPLICATION, applicationReplacements(), RegistryScope::machine);
  for (const ClassEntry& entry : CQELAudioVisualization4Module::classes()) {
    if (FAILED(result)) return result;
    ++begun.classes;
    result =
        ole::registerFromScript(module, AV_REGISTRY_CLASS, classReplacements(module, entry), RegistryScope::machine);
  }
  if (FAILED(result)) return result;
  begun.typeLibrary = true;
  return ole::registerTypeLibrary(module, RegistryScope::machine);
}

HRESULT remove(const CQELAudioVisualization4Module& module, const Progress& written) {
  HRESULT first = S_OK;
  const auto note = [&first](HRESULT result) {
    if (FAILED(result) && SUCCEEDED(first)) first = result;
  };
  std::size_t classes = 0;
  for (const ClassEntry& entry : CQELAudioVisualization4Module::classes()) {
    if (classes++ == written.classes) break;
    note(
        ole::unregisterFromScript(module, AV_REGISTRY_CLASS, classReplacements(module, entry), RegistryScope::machine));
  }
  if (written.typeLibrary) note(ole::unregisterTypeLibrary(module, RegistryScope::machine));
  note(ole::unregisterFromScript(module, AV_REGISTRY_APPLICATION, applicationReplacements(), RegistryScope::machine));
  return first;
}

}  // namespace

HRESULT registerModule(const CQELAudioVisualization4Module& module) noexcept {
  return ole::inSystemLocale([&] {
    Progress begun;
    const HRESULT result = writeAll(module, begun);
    // Half an entry is worse than none: whoever finds the class would find no library. What was not begun stays, since
    // it may be another registration's.
    if (FAILED(result)) remove(module, begun);
    return result;
  });
}

HRESULT unregisterModule(const CQELAudioVisualization4Module& module) noexcept {
  return ole::inSystemLocale([&] { return remove(module, {CQELAudioVisualization4Module::classes().size(), true}); });
}

}  // namespace av
