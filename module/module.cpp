#include "module/module.h"

#include <QELAudioVisualization4.h>

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

// Not a static of the function: its guard would need more of a thread library than runtime/runtime_threads.cpp has.
CQELAudioVisualization4Module moduleObject;

}  // namespace

std::span<const ClassEntry> CQELAudioVisualization4Module::classes() noexcept { return objectMap; }

const GUID& CQELAudioVisualization4Module::applicationId() noexcept { return LIBID_QELAudioVisualization4; }

CQELAudioVisualization4Module& theModule() noexcept { return moduleObject; }

// What the generic framework asks of the binary that it is linked into.
namespace ole {

ModuleLock& moduleLock() noexcept { return theModule(); }

HINSTANCE moduleInstance() noexcept { return theModule().instance(); }

HRESULT loadModuleTypeLibrary(ITypeLib** library) noexcept { return theModule().loadTypeLibrary(library); }

}  // namespace ole
}  // namespace av
