#pragma once

// GDI+ wants COM's types and the macros that NOMINMAX takes away.
#include <windows.h>

#include <objidl.h>

#include <algorithm>
namespace Gdiplus {
using std::max;
using std::min;
}  // namespace Gdiplus
#include <gdiplus.h>
