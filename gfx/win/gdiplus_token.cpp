#include "gfx/win/gdiplus_token.h"

#include <atomic>

namespace av {
namespace {

std::atomic<long> liveTokens{0};

}  // namespace

GdiplusToken::GdiplusToken() noexcept {
  const Gdiplus::GdiplusStartupInput input;
  m_started = Gdiplus::GdiplusStartup(&m_token, &input, nullptr) == Gdiplus::Ok;
  if (m_started) ++liveTokens;
}

GdiplusToken::~GdiplusToken() {
  if (!m_started) return;
  Gdiplus::GdiplusShutdown(m_token);
  --liveTokens;
}

long GdiplusToken::liveCount() noexcept { return liveTokens; }

}  // namespace av
