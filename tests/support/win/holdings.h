#pragma once

#include "support/win/resource_probes.h"

#include <map>
#include <ostream>
#include <string>

namespace av::test {

/// What a process holds, save registry keys: the controls open none, but Wine's COM keeps about twenty for each
/// apartment that ever called another, as the threads of repaint timers do.
struct Holdings {
  std::map<std::wstring, int> kernelHandles;
  int spareGdiObjects = 0;

  static Holdings now() {
    Holdings holdings{openKernelHandlesByType(), test::spareGdiObjects()};
    holdings.kernelHandles.erase(L"Key");
    return holdings;
  }
  friend bool operator==(const Holdings&, const Holdings&) = default;
};

inline void PrintTo(const Holdings& holdings, std::ostream* out) {
  for (const auto& [type, count] : holdings.kernelHandles)
    *out << count << ' ' << std::string(type.begin(), type.end()) << ", ";
  *out << "GDI objects to spare: " << holdings.spareGdiObjects;
}

}  // namespace av::test
