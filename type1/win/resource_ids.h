// Numbers of the view's resources in the DLL; read by C++ and by the resource compiler, hence the macros.
#pragma once

#define AV_BITMAP_BARS_TYPE3 102
#define AV_BITMAP_BARS_TYPE4 103
#define AV_BITMAP_BARS_TYPE5 104
