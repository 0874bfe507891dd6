#pragma once

#include "support/canvas.h"
#include "support/view_shapes.h"

#include <windows.h>

#include <cstdint>
#include <vector>

namespace av::test {

/// The gradient of bars of type 3, 4 or 5 as the DLL's resources hold it: 0xRRGGBB from its top to its bottom. Empty when
/// it is not there, or not one pixel wide with 24 bits.
std::vector<std::uint32_t> gradientOf(HMODULE dll, int type);

/// Draws bars onto a canvas by one call of GDI+ for each: the gradient stretched over the rectangle (x, top, 1, bottom −
/// top), in interpolation mode 1, without smoothing.
class BarReference {
 public:
  explicit BarReference(HMODULE dll);
  ~BarReference();
  BarReference(const BarReference&) = delete;
  BarReference& operator=(const BarReference&) = delete;

  void draw(Canvas& canvas, int type, const std::vector<BarColumn>& columns, int bottom) const;

 private:
  HMODULE m_dll;
  ULONG_PTR m_token = 0;
};

}  // namespace av::test
