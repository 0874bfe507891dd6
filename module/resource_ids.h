// Resource numbers of the DLL; read by C++ and by the resource compiler, hence the macros.
#pragma once

#define AV_REGISTRY_APPLICATION 101
#define AV_REGISTRY_CLASS 102
#define AV_TYPELIB 1
#define AV_BITMAP_BARS_TYPE3 102
#define AV_BITMAP_BARS_TYPE4 103
#define AV_BITMAP_BARS_TYPE5 104
// Number 2 marks a manifest that belongs to a DLL.
#define AV_MANIFEST 2
