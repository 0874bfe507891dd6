#include "companion/picture.h"

#include "companion/failure.h"

// GDI+ wants COM's types and the macros that NOMINMAX takes away.
#include <objidl.h>

#include <algorithm>
namespace Gdiplus {
using std::max;
using std::min;
}  // namespace Gdiplus
#include <gdiplus.h>
#include <wrl/client.h>

namespace av::companion {

namespace {

using Microsoft::WRL::ComPtr;

constexpr CLSID pngEncoder = {0x557CF406, 0x1A04, 0x11D3, {0x9A, 0x73, 0x00, 0x00, 0xF8, 0x1E, 0xF3, 0x2E}};

HRESULT draw(IViewObject& view, HDC target, SIZE sizePx) {
  const RECTL bounds = {0, 0, sizePx.cx, sizePx.cy};
  return view.Draw(DVASPECT_CONTENT, -1, nullptr, nullptr, nullptr, target, &bounds, nullptr, nullptr, 0);
}

/// A device context in memory with a picture of 24-bit pixels, top row first, rows padded to four bytes; white at first.
class MemoryPicture {
 public:
  explicit MemoryPicture(SIZE sizePx) : m_sizePx(sizePx), m_context(CreateCompatibleDC(nullptr)) {
    BITMAPINFO info = {};
    info.bmiHeader.biSize = sizeof info.bmiHeader;
    info.bmiHeader.biWidth = sizePx.cx;
    info.bmiHeader.biHeight = -sizePx.cy;
    info.bmiHeader.biPlanes = 1;
    info.bmiHeader.biBitCount = 24;
    info.bmiHeader.biCompression = BI_RGB;
    m_bitmap = CreateDIBSection(m_context, &info, DIB_RGB_COLORS, &m_bits, nullptr, 0);
    if (m_context && m_bitmap) m_before = SelectObject(m_context, m_bitmap);
    if (m_before) PatBlt(m_context, 0, 0, sizePx.cx, sizePx.cy, WHITENESS);
  }
  ~MemoryPicture() {
    if (m_before) SelectObject(m_context, m_before);
    if (m_bitmap) DeleteObject(m_bitmap);
    if (m_context) DeleteDC(m_context);
  }
  MemoryPicture(const MemoryPicture&) = delete;
  MemoryPicture& operator=(const MemoryPicture&) = delete;

  [[nodiscard]] bool exists() const noexcept { return m_before != nullptr; }
  [[nodiscard]] HDC context() const noexcept { return m_context; }
  [[nodiscard]] SIZE sizePx() const noexcept { return m_sizePx; }
  [[nodiscard]] int strideBytes() const noexcept { return (m_sizePx.cx * 3 + 3) & ~3; }
  [[nodiscard]] BYTE* pixels() const noexcept { return static_cast<BYTE*>(m_bits); }

 private:
  SIZE m_sizePx;
  HDC m_context;
  HBITMAP m_bitmap = nullptr;
  HGDIOBJ m_before = nullptr;
  void* m_bits = nullptr;
};

/// Keeps GDI+ started for a scope.
class GdiplusSession {
 public:
  GdiplusSession() {
    const Gdiplus::GdiplusStartupInput input;
    m_started = Gdiplus::GdiplusStartup(&m_token, &input, nullptr) == Gdiplus::Ok;
  }
  ~GdiplusSession() {
    if (m_started) Gdiplus::GdiplusShutdown(m_token);
  }
  GdiplusSession(const GdiplusSession&) = delete;
  GdiplusSession& operator=(const GdiplusSession&) = delete;

  [[nodiscard]] bool started() const noexcept { return m_started; }

 private:
  ULONG_PTR m_token = 0;
  bool m_started = false;
};

bool encode(const MemoryPicture& picture, int dpi, IStream& stream) {
  const GdiplusSession session;
  if (!session.started()) return false;
  const SIZE size = picture.sizePx();
  Gdiplus::Bitmap bitmap(size.cx, size.cy, picture.strideBytes(), PixelFormat24bppRGB, picture.pixels());
  const auto resolution = static_cast<Gdiplus::REAL>(dpi);
  return bitmap.SetResolution(resolution, resolution) == Gdiplus::Ok &&
         bitmap.Save(&stream, &pngEncoder, nullptr) == Gdiplus::Ok;
}

std::vector<std::byte> bytesIn(IStream& stream) {
  HGLOBAL memory = nullptr;
  STATSTG status = {};
  if (FAILED(GetHGlobalFromStream(&stream, &memory)) || FAILED(stream.Stat(&status, STATFLAG_NONAME))) return {};
  const auto* const first = static_cast<const std::byte*>(GlobalLock(memory));
  if (!first) return {};
  std::vector<std::byte> bytes(first, first + static_cast<std::size_t>(status.cbSize.QuadPart));
  GlobalUnlock(memory);
  return bytes;
}

}  // namespace

std::vector<std::byte> drawPng(IViewObject& view, SIZE sizePx, int dpi) {
  const MemoryPicture picture(sizePx);
  if (!picture.exists()) throw Failure(E_OUTOFMEMORY, L"the system has no memory for the picture.");
  const HRESULT drawn = draw(view, picture.context(), sizePx);
  if (FAILED(drawn)) throw Failure(drawn, L"the control does not draw itself.");
  GdiFlush();
  ComPtr<IStream> stream;
  std::vector<std::byte> bytes;
  if (SUCCEEDED(CreateStreamOnHGlobal(nullptr, TRUE, &stream)) && encode(picture, dpi, *stream.Get()))
    bytes = bytesIn(*stream.Get());
  if (bytes.empty()) throw Failure(E_FAIL, L"the picture cannot be encoded.");
  return bytes;
}

void drawNowhere(IViewObject& view, SIZE sizePx) noexcept {
  const HDC target = CreateCompatibleDC(nullptr);  // which holds one pixel
  if (!target) return;
  draw(view, target, sizePx);
  DeleteDC(target);
}

}  // namespace av::companion
