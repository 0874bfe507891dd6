#pragma once

#include <windows.h>

#include <memory>

namespace av {

struct GdiObjectDeleter {
  using pointer = HGDIOBJ;
  void operator()(HGDIOBJ object) const noexcept { DeleteObject(object); }
};

/// Owns a GDI object: a font, brush or pen that no device context holds when it goes.
using GdiObject = std::unique_ptr<void, GdiObjectDeleter>;

/// Selects an object into a device context for as long as this lives.
class GdiSelection {
 public:
  GdiSelection(HDC dc, HGDIOBJ object) noexcept : m_dc(dc), m_previous(SelectObject(dc, object)) {}
  ~GdiSelection() {
    if (m_previous) SelectObject(m_dc, m_previous);
  }
  GdiSelection(const GdiSelection&) = delete;
  GdiSelection& operator=(const GdiSelection&) = delete;

  /// False where the system has refused.
  explicit operator bool() const noexcept { return m_previous != nullptr; }

 private:
  HDC m_dc;
  HGDIOBJ m_previous;
};

}  // namespace av
