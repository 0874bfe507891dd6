#include "support/win/picture_file.h"

#include <windows.h>

#include <objidl.h>

#include <algorithm>
namespace Gdiplus {
using std::max;
using std::min;
}  // namespace Gdiplus
#include <gdiplus.h>

namespace av::test {
namespace {

using namespace Gdiplus;

class Session {
 public:
  Session() {
    const GdiplusStartupInput input;
    m_started = GdiplusStartup(&m_token, &input, nullptr) == Ok;
  }
  Session(const Session&) = delete;
  Session& operator=(const Session&) = delete;
  ~Session() {
    if (m_started) GdiplusShutdown(m_token);
  }
  bool started() const { return m_started; }

 private:
  ULONG_PTR m_token = 0;
  bool m_started = false;
};

/// Paths of the build machine are ASCII here: they come from the build's own configuration.
std::wstring wide(const std::string& path) { return std::wstring(path.begin(), path.end()); }

}  // namespace

std::optional<WindowPicture> readPng(const std::string& path) {
  const Session session;
  if (!session.started()) return std::nullopt;
  Bitmap bitmap(wide(path).c_str());
  if (bitmap.GetLastStatus() != Ok) return std::nullopt;
  const int width = static_cast<int>(bitmap.GetWidth());
  const int height = static_cast<int>(bitmap.GetHeight());
  const Rect whole(0, 0, width, height);
  BitmapData data;
  if (bitmap.LockBits(&whole, ImageLockModeRead, PixelFormat32bppARGB, &data) != Ok) return std::nullopt;
  WindowPicture picture{width, height, {}};
  for (int y = 0; y < height; ++y) {
    const auto* const row =
        reinterpret_cast<const std::uint32_t*>(static_cast<const BYTE*>(data.Scan0) + y * data.Stride);
    for (int x = 0; x < width; ++x) picture.pixels.push_back(row[x] & 0xFFFFFF);
  }
  bitmap.UnlockBits(&data);
  return picture;
}

bool writePng(const WindowPicture& picture, const std::string& path) {
  const Session session;
  if (!session.started()) return false;
  // GDI+ only reads them.
  auto* const pixels = reinterpret_cast<BYTE*>(const_cast<std::uint32_t*>(picture.pixels.data()));
  Bitmap bitmap(picture.width, picture.height, picture.width * 4, PixelFormat32bppRGB, pixels);
  const CLSID pngEncoder = {0x557CF406, 0x1A04, 0x11D3, {0x9A, 0x73, 0x00, 0x00, 0xF8, 0x1E, 0xF3, 0x2E}};
  return bitmap.Save(wide(path).c_str(), &pngEncoder, nullptr) == Ok;
}

}  // namespace av::test
