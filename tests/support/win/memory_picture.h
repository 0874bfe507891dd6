#pragma once

#include <windows.h>

#include <cstddef>
#include <cstdint>
#include <vector>

namespace av::test {

/// A 32-bit picture in memory that GDI draws into, white at first.
class MemoryPicture {
 public:
  MemoryPicture(int width, int height) : m_count(static_cast<std::size_t>(width * height)) {
    BITMAPINFO info{};
    info.bmiHeader = {sizeof info.bmiHeader, width, -height, 1, 32, BI_RGB, 0, 0, 0, 0, 0};
    m_bitmap = CreateDIBSection(m_context, &info, DIB_RGB_COLORS, &m_bits, nullptr, 0);
    m_old = SelectObject(m_context, m_bitmap);
    const RECT all{0, 0, width, height};
    FillRect(m_context, &all, static_cast<HBRUSH>(GetStockObject(WHITE_BRUSH)));
  }
  ~MemoryPicture() {
    SelectObject(m_context, m_old);
    DeleteObject(m_bitmap);
    DeleteDC(m_context);
  }
  MemoryPicture(const MemoryPicture&) = delete;
  MemoryPicture& operator=(const MemoryPicture&) = delete;

  HDC context() const { return m_context; }
  /// 0x00RRGGBB, top row first.
  std::vector<std::uint32_t> pixels() const {
    GdiFlush();
    const auto* first = static_cast<const std::uint32_t*>(m_bits);
    std::vector<std::uint32_t> copy(first, first + m_count);
    for (std::uint32_t& pixel : copy) pixel &= 0xFFFFFF;
    return copy;
  }

 private:
  std::size_t m_count;
  HDC m_context = CreateCompatibleDC(nullptr);
  HBITMAP m_bitmap = nullptr;
  HGDIOBJ m_old = nullptr;
  void* m_bits = nullptr;
};

}  // namespace av::test
