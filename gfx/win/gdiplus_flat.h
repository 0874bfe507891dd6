#pragma once

// GDI+'s header counts on parts of windows.h that the lean version leaves out, in this order.
#include <windows.h>

#include <objidl.h>
#include <propidl.h>

#include <gdiplus.h>
