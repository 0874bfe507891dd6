#pragma once

#include <windows.h>

#include <filesystem>

namespace avdemo {

/// Keeps GDI+ started for a scope.
class GdiplusSession {
 public:
  GdiplusSession();  ///< throws a Failure
  GdiplusSession(const GdiplusSession&) = delete;
  GdiplusSession& operator=(const GdiplusSession&) = delete;
  ~GdiplusSession();

 private:
  ULONG_PTR m_token = 0;
};

/// Saves what the client area of `window` shows, pixel by pixel, as a PNG file. The window has to lie on the screen as
/// a whole: pixels beyond it do not exist. Needs a GdiplusSession; throws a Failure.
void saveWindowPicture(HWND window, const std::filesystem::path& file);

}  // namespace avdemo
