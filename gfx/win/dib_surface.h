#pragma once

#include "gfx/argb.h"
#include "gfx/geometry.h"

#include <windows.h>

#include <span>

namespace av {

/// An off-screen picture, 32 bits a pixel, that GDI draws on and whose memory can be written directly: plain fills and
/// copies of rows give the same pixels as GDI's own at a fraction of the cost. [one thread at a time]
class DibSurface {
 public:
  DibSurface() = default;
  ~DibSurface() { release(); }
  DibSurface(const DibSurface&) = delete;
  DibSurface& operator=(const DibSurface&) = delete;

  /// Makes the picture `size` pixels large; new pictures are all zero. Keeps what is there when the size is the same.
  /// False when the size is empty, beyond GDI's coordinates, or there is no memory; the old picture is kept then.
  bool resize(Size size) noexcept;

  void release() noexcept;
  void swap(DibSurface& other) noexcept;

  Size size() const noexcept { return m_size; }

  /// For GDI to draw on. Null before the first resize.
  HDC dc() const noexcept { return m_dc; }

  /// All pixels, row by row from the top, without padding, once GDI has drawn what it still held back. Empty before the
  /// first resize. GDI itself writes 0 into the alpha byte.
  std::span<Argb> pixels() const noexcept;

  /// Copies the picture to `target` with its top left corner at `position`, in one call.
  bool copyTo(HDC target, Point position) const noexcept;

 private:
  Size m_size;
  HDC m_dc = nullptr;
  HBITMAP m_dib = nullptr;
  HGDIOBJ m_previousBitmap = nullptr;
  Argb* m_pixels = nullptr;
};

}  // namespace av
