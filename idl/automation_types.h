#pragma once
// What the generated header includes for automation_types.idl: the platform's own declarations.
#include <windows.h>
#include <ocidl.h>
#include <olectl.h>
