// Resource numbers of the DLL; read by C++ and by the resource compiler, hence the macros.
#pragma once

#include "type1/win/resource_ids.h"

#define AV_REGISTRY_APPLICATION 101
#define AV_REGISTRY_CLASS 102
#define AV_TYPELIB 1
// Number 2 marks a manifest that belongs to a DLL.
#define AV_MANIFEST 2
