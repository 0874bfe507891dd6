#pragma once

#include <windows.h>

#include <QELAudioVisualization4.h>

#include <ostream>
#include <string>

namespace av::test {

/// A control class as a test parameter.
struct ControlClassName {
  const char* name;
  CLSID classId;
};

inline void PrintTo(const ControlClassName& controlClass, std::ostream* out) { *out << controlClass.name; }

inline const ControlClassName allControlClasses[] = {
    {"Type1", CLSID_CAudioVisualization4Type1},
    {"Type2", CLSID_CAudioVisualization4Type2},
    {"Type3", CLSID_CAudioVisualization4Type3},
};

}  // namespace av::test
