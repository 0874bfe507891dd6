#include "bench/win/import_clock.h"

#include "bench/win/bench_control.h"
#include "gfx/win/gdiplus_flat.h"
#include "support/win/import_probe.h"

#include <x86intrin.h>
#include <algorithm>
#include <array>
#include <chrono>
#include <cstdio>
#include <optional>
#include <string>

namespace av::bench {

namespace {

using namespace Gdiplus::DllExports;

// What the library imports of GDI and GDI+, and what it draws with of the window system. Functions that only start-up or
// a change of font calls are listed too: a frame that called them would show it.
// clang-format off
#define AV_TIMED_FUNCTIONS(X)                                                                                        \
  X(BitBlt) X(CreateCompatibleDC) X(CreateDIBSection) X(CreateFontIndirectW) X(CreatePen) X(CreateRectRgnIndirect)   \
  X(DeleteDC) X(DeleteObject) X(GdiFlush) X(GetDeviceCaps) X(GetObjectType) X(GetObjectW) X(GetTextExtentPoint32W)   \
  X(GetTextFaceW) X(GetTextMetricsW) X(LPtoDP) X(ModifyWorldTransform) X(Polyline) X(RestoreDC) X(SaveDC)            \
  X(SelectObject) X(SetBkColor) X(SetBkMode) X(SetMapMode) X(SetTextColor) X(SetViewportOrgEx) X(SetWindowOrgEx)     \
  X(DrawTextW) X(GetDC) X(ReleaseDC) X(GetClientRect) X(InvalidateRect) X(ValidateRect) X(BeginPaint) X(EndPaint)    \
  X(GdipBitmapSetResolution) X(GdipCloneFontFamily) X(GdipCreateBitmapFromResource) X(GdipCreateBitmapFromScan0)     \
  X(GdipCreateFont) X(GdipCreateFontFamilyFromName) X(GdipCreatePen1) X(GdipCreateSolidFill)                         \
  X(GdipCreateStringFormat) X(GdipDeleteBrush) X(GdipDeleteFont) X(GdipDeleteFontFamily) X(GdipDeleteGraphics)       \
  X(GdipDeletePen) X(GdipDeleteStringFormat) X(GdipDisposeImage) X(GdipDrawImageRectRectI) X(GdipDrawLineI)          \
  X(GdipDrawLinesI) X(GdipDrawString) X(GdipFlush) X(GdipGetDpiY) X(GdipGetFontCollectionFamilyCount)                \
  X(GdipGetFontCollectionFamilyList) X(GdipGetFontHeightGivenDPI) X(GdipGetGenericFontFamilySansSerif)               \
  X(GdipGetImageGraphicsContext) X(GdipGetImageHeight) X(GdipGetImageWidth) X(GdipMeasureString)                     \
  X(GdipNewInstalledFontCollection) X(GdipSetInterpolationMode) X(GdipSetPenColor) X(GdipSetPenLineJoin)             \
  X(GdipSetPenWidth) X(GdipSetSmoothingMode) X(GdipSetSolidFillColor) X(GdipSetStringFormatAlign)                    \
  X(GdipSetStringFormatLineAlign)
// clang-format on

enum Timed {
#define AV_NUMBER(function) timed##function,
  AV_TIMED_FUNCTIONS(AV_NUMBER)
#undef AV_NUMBER
      timedCount
};

constexpr std::array<const char*, timedCount> names = {
#define AV_NAME(function) #function,
    AV_TIMED_FUNCTIONS(AV_NAME)
#undef AV_NAME
};

std::int64_t ticksNow() { return static_cast<std::int64_t>(__rdtsc()); }

struct Sum {
  std::int64_t ticks = 0, calls = 0;
};
std::array<Sum, timedCount> sums;  // of the frame that is being made

class CallClock {
 public:
  explicit CallClock(Sum& sum) : m_sum(sum) {}
  ~CallClock() {
    m_sum.ticks += ticksNow() - m_start;
    ++m_sum.calls;
  }
  CallClock(const CallClock&) = delete;
  CallClock& operator=(const CallClock&) = delete;

 private:
  Sum& m_sum;
  std::int64_t m_start = ticksNow();
};

template <Timed number, class Function>
struct Wrapper;
template <Timed number, class Result, class... Arguments>
struct Wrapper<number, Result(WINAPI*)(Arguments...)> {
  static inline Result(WINAPI* original)(Arguments...) = nullptr;
  static Result WINAPI call(Arguments... arguments) {
    const CallClock clock(sums[number]);
    return original(arguments...);
  }
};

double ticksOfAMicrosecond() {
  using Clock = std::chrono::steady_clock;
  const auto start = Clock::now();
  const std::int64_t first = ticksNow();
  while (Clock::now() - start < std::chrono::milliseconds(50)) {
  }
  const double us = std::chrono::duration<double, std::micro>(Clock::now() - start).count();
  return static_cast<double>(ticksNow() - first) / us;
}

double median(std::vector<std::int64_t> values) {
  if (values.empty()) return 0;
  std::ranges::sort(values);
  return static_cast<double>(values[values.size() / 2]);
}

}  // namespace

struct ImportClock::Replacements {
  std::vector<std::unique_ptr<test::ImportReplacement>> all;

  template <Timed number, class Function>
  void add(HMODULE module) {
    using Wrapped = Wrapper<number, Function>;
    // The wrapper may be called as soon as it stands in the table.
    const char* const name = names[number];
    Wrapped::original = reinterpret_cast<Function>(test::importedFunction(module, name));
    need(Wrapped::original != nullptr, name);
    all.push_back(std::make_unique<test::ImportReplacement>(module, name, reinterpret_cast<void*>(&Wrapped::call)));
  }
};

ImportClock::ImportClock(HMODULE module)
    : m_replacements(std::make_unique<Replacements>()), m_ticks(timedCount), m_calls(timedCount) {
#define AV_ADD(function) m_replacements->add<timed##function, decltype(&function)>(module);
  AV_TIMED_FUNCTIONS(AV_ADD)
#undef AV_ADD
  m_ticksPerUs = ticksOfAMicrosecond();
}

ImportClock::~ImportClock() = default;

void ImportClock::frame(const std::function<void()>& make) {
  sums = {};
  const std::int64_t start = ticksNow();
  make();
  const std::int64_t all = ticksNow() - start;
  std::int64_t system = 0;
  for (std::size_t i = 0; i < timedCount; ++i) {
    system += sums[i].ticks;
    m_ticks[i].push_back(sums[i].ticks);
    m_calls[i] += sums[i].calls;
  }
  m_frameTicks.push_back(all);
  m_systemTicks.push_back(system);
  m_ourTicks.push_back(all - system);
}

void ImportClock::print() const {
  const auto frames = static_cast<double>(m_frameTicks.size());
  const auto line = [&](const char* name, double calls, const std::vector<std::int64_t>& ticks) {
    std::printf("%s %.2f %.2f\n", name, calls, median(ticks) / m_ticksPerUs);
  };
  double all = 0;
  for (std::size_t i = 0; i < timedCount; ++i) {
    if (m_calls[i] == 0) continue;
    const double calls = static_cast<double>(m_calls[i]) / frames;
    all += calls;
    line(names[i], calls, m_ticks[i]);
  }
  line("system", all, m_systemTicks);
  line("ours", 0, m_ourTicks);
  line("frame", 0, m_frameTicks);
}

}  // namespace av::bench
