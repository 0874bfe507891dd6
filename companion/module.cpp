#include "companion/module.h"

#include <AudioBlocks.h>

#include "companion/audio_block.h"
#include "companion/controls.h"
#include "companion/snapshot.h"
#include "companion/wave_file.h"
#include "ole/module_instance.h"

namespace av::companion {
namespace {

const NamedClass classTable[] = {
    {{&CLSID_AudioBlock, L"Block of PCM audio", &createAudioBlock}, L"AudioBlocks.AudioBlock"},
    {{&CLSID_WaveFile, L"WAV file", &createWaveFile}, L"AudioBlocks.WaveFile"},
    {{&CLSID_Snapshot, L"Picture of a control", &createSnapshot}, L"AudioBlocks.Snapshot"},
    {{&CLSID_Controls, L"Maker of controls", &createControls}, L"AudioBlocks.Controls"},
};

class CompanionModule final : public ole::ServerModule {};

// Not a static of the function: its guard would need more of a thread library than runtime/runtime_threads.cpp has.
CompanionModule moduleObject;

}  // namespace

std::span<const NamedClass> namedClasses() noexcept { return classTable; }

ole::ServerModule& theModule() noexcept { return moduleObject; }

HRESULT getClassObject(REFCLSID clsid, REFIID iid, void** object) noexcept {
  for (const NamedClass& each : namedClasses()) {
    if (*each.entry.clsid == clsid) return theModule().getClassObject({&each.entry, 1}, clsid, iid, object);
  }
  return theModule().getClassObject({}, clsid, iid, object);
}

}  // namespace av::companion

// What the generic framework asks of the binary that it is linked into.
namespace av::ole {

ModuleLock& moduleLock() noexcept { return companion::theModule(); }

HINSTANCE moduleInstance() noexcept { return companion::theModule().instance(); }

HRESULT loadModuleTypeLibrary(ITypeLib** library) noexcept { return companion::theModule().loadTypeLibrary(library); }

}  // namespace av::ole
