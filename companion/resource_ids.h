// Resource numbers of the DLL; read by C++ and by the resource compiler, hence the macros.
#pragma once

#define AV_REGISTRY_CLASS 101
#define AV_TYPELIB 1
// Number 2 marks a manifest that belongs to a DLL.
#define AV_MANIFEST 2
