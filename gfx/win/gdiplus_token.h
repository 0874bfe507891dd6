#pragma once

#include "gfx/win/gdiplus_flat.h"

namespace av {

/// One start-up of GDI+, ended by the destructor. GDI+ counts start-ups, so each control holds its own; members that
/// own GDI+ objects are declared after it.
class GdiplusToken {
 public:
  GdiplusToken() noexcept;
  ~GdiplusToken();
  GdiplusToken(const GdiplusToken&) = delete;
  GdiplusToken& operator=(const GdiplusToken&) = delete;

  /// False when GDI+ did not start: nothing can be drawn then.
  bool started() const noexcept { return m_started; }

  /// Tokens that are started now. The platform's own count cannot be seen, so unbalanced ones would pass unnoticed.
  static long liveCount() noexcept;

 private:
  ULONG_PTR m_token = 0;
  bool m_started = false;
};

}  // namespace av
