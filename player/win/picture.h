#pragma once

#include <windows.h>

#include <filesystem>

namespace avplayer {

/// Keeps GDI+ started for a scope.
class GdiplusSession {
 public:
  GdiplusSession();
  GdiplusSession(const GdiplusSession&) = delete;
  GdiplusSession& operator=(const GdiplusSession&) = delete;
  ~GdiplusSession();

 private:
  ULONG_PTR m_token = 0;
};

/// A picture of the player's own to draw on.
class Picture {
 public:
  Picture(int width, int height);
  Picture(const Picture&) = delete;
  Picture& operator=(const Picture&) = delete;
  ~Picture();

  HDC context() const noexcept { return m_context; }
  /// False where there is no room for a picture of that size, or the file cannot be written. Needs a GdiplusSession.
  bool savePng(const std::filesystem::path& file) const;

 private:
  int m_width, m_height;
  HDC m_context;
  HBITMAP m_bitmap;
  HGDIOBJ m_before = nullptr;
  void* m_bits = nullptr;
};

}  // namespace avplayer
