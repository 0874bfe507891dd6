#pragma once

#include <windows.h>

#include <array>
#include <cstddef>
#include <map>
#include <string>
#include <vector>

namespace av::soak {

/// The name of a type of kernel objects, as far as it fits.
using KernelType = std::array<wchar_t, 24>;

/// What the process holds while no control lives. The usual counters read 0 on some systems, so all is counted by hand (a footprint
/// itself takes two heap blocks);
/// `soak --leak` shows that the counts are true.
struct Footprint {
  /// The types of all kernel handles, sorted, save registry keys, of which Wine's COM keeps some.
  std::vector<KernelType> kernelHandles;
  int spareGdiObjects = 0;
  std::vector<std::size_t> heapBlocks;  ///< their sizes in bytes, ascending

  static Footprint now();
  std::size_t heapBytes() const;
};

/// What came between two footprints.
struct Growth {
  std::map<std::wstring, int> kernelHandles;  ///< of each type that grew
  int gdiObjects = 0;
  std::map<std::size_t, int> heapBlocks;  ///< of each size that grew or shrank
  int ofTheSystem = 0;                    ///< heap blocks that Wine's marshaller keeps, counted apart

  static Growth between(const Footprint& first, const Footprint& last);
  int handles() const;  ///< kernel handles and GDI objects
  int blocks() const;   ///< heap blocks, without the system's
};

/// Memory that the process has committed for itself, in bytes.
std::size_t committedBytes();

}  // namespace av::soak
