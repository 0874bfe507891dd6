#include "support/win/failing_imports.h"

#include "gfx/win/gdiplus_flat.h"

#include <malloc.h>
#include <olectl.h>

#include <algorithm>
#include <atomic>
#include <cstdlib>
#include <iterator>
#include <mutex>
#include <utility>

namespace av::test {
namespace {

std::atomic<long> callsLeft{-1};  // before the one that fails; below 0: none does
std::atomic<bool> forEver{false};
std::atomic<long> failed{0};

bool isToFail() noexcept {
  if (callsLeft < 0 || callsLeft-- > 0) return false;
  if (forEver) callsLeft = 0;
  ++failed;
  return true;
}

/// Stands in for one imported function, which is the only one of its tag.
template <class Tag, class Function>
struct StandIn;

template <class Tag, class Result, class... Arguments>
struct StandIn<Tag, Result(WINAPI*)(Arguments...)> {
  static inline Result(WINAPI* original)(Arguments...) = nullptr;
  static Result WINAPI call(Arguments... arguments) { return isToFail() ? Tag::failure() : original(arguments...); }
};

/// SelectObject fails where an object is put into a device context, not where the one that was there before is put back:
/// that needs nothing that could be missing.
class Selections {
 public:
  HGDIOBJ select(HDC dc, HGDIOBJ object, HGDIOBJ(WINAPI* original)(HDC, HGDIOBJ)) {
    const std::lock_guard guard(m_lock);
    const auto last =
        std::find_if(m_replaced.rbegin(), m_replaced.rend(), [=](const auto& one) { return one.dc == dc; });
    if (last != m_replaced.rend() && last->object == object) {
      m_replaced.erase(std::next(last).base());
      return original(dc, object);
    }
    if (isToFail()) return nullptr;
    const HGDIOBJ before = original(dc, object);
    if (before) m_replaced.push_back({dc, before});
    return before;
  }

 private:
  struct Replaced {
    HDC dc;
    HGDIOBJ object;
  };
  std::mutex m_lock;
  std::vector<Replaced> m_replaced;
};

struct SelectObjectTag {
  static constexpr const char* name = "SelectObject";
  struct Type {
    static inline HGDIOBJ(WINAPI* original)(HDC, HGDIOBJ) = nullptr;
    static HGDIOBJ WINAPI call(HDC dc, HGDIOBJ object) {
      static Selections selections;
      return selections.select(dc, object, original);
    }
  };
};

// A stand-in for a function that is known here, so that its type is the header's, and what it answers when it fails.
#define AV_STAND_IN(scope, function, answer)                         \
  struct function##Tag {                                             \
    static constexpr const char* name = #function;                   \
    static auto failure() noexcept { return answer; }                \
    using Type = StandIn<function##Tag, decltype(&scope::function)>; \
  }

namespace flat = Gdiplus::DllExports;

AV_STAND_IN(, CreateCompatibleDC, HDC{});
AV_STAND_IN(, CreateDIBSection, HBITMAP{});
AV_STAND_IN(, CreateFontIndirectW, HFONT{});
AV_STAND_IN(, CreatePen, HPEN{});
AV_STAND_IN(, GetTextExtentPoint32W, FALSE);
AV_STAND_IN(, GetTextMetricsW, FALSE);
AV_STAND_IN(, Polyline, FALSE);
AV_STAND_IN(, BitBlt, FALSE);
AV_STAND_IN(, GetDC, HDC{});
AV_STAND_IN(, DrawTextW, 0);
AV_STAND_IN(, OleCreateFontIndirect, E_OUTOFMEMORY);
AV_STAND_IN(flat, GdipBitmapSetResolution, Gdiplus::OutOfMemory);
AV_STAND_IN(flat, GdipCloneFontFamily, Gdiplus::OutOfMemory);
AV_STAND_IN(flat, GdipCreateBitmapFromResource, Gdiplus::OutOfMemory);
AV_STAND_IN(flat, GdipCreateBitmapFromScan0, Gdiplus::OutOfMemory);
AV_STAND_IN(flat, GdipCreateFont, Gdiplus::OutOfMemory);
AV_STAND_IN(flat, GdipCreateFontFamilyFromName, Gdiplus::OutOfMemory);
AV_STAND_IN(flat, GdipCreatePen1, Gdiplus::OutOfMemory);
AV_STAND_IN(flat, GdipCreateSolidFill, Gdiplus::OutOfMemory);
AV_STAND_IN(flat, GdipCreateStringFormat, Gdiplus::OutOfMemory);
AV_STAND_IN(flat, GdipDrawImageRectRectI, Gdiplus::OutOfMemory);
AV_STAND_IN(flat, GdipDrawLineI, Gdiplus::OutOfMemory);
AV_STAND_IN(flat, GdipDrawLinesI, Gdiplus::OutOfMemory);
AV_STAND_IN(flat, GdipDrawString, Gdiplus::OutOfMemory);
AV_STAND_IN(flat, GdipGetDpiY, Gdiplus::OutOfMemory);
AV_STAND_IN(flat, GdipGetFontHeightGivenDPI, Gdiplus::OutOfMemory);
AV_STAND_IN(flat, GdipGetGenericFontFamilySansSerif, Gdiplus::OutOfMemory);
AV_STAND_IN(flat, GdipGetImageGraphicsContext, Gdiplus::OutOfMemory);
AV_STAND_IN(flat, GdipMeasureString, Gdiplus::OutOfMemory);
AV_STAND_IN(flat, GdipNewInstalledFontCollection, Gdiplus::OutOfMemory);
AV_STAND_IN(flat, GdipSetInterpolationMode, Gdiplus::OutOfMemory);
AV_STAND_IN(flat, GdipSetPenColor, Gdiplus::OutOfMemory);
AV_STAND_IN(flat, GdipSetPenLineJoin, Gdiplus::OutOfMemory);
AV_STAND_IN(flat, GdipSetPenWidth, Gdiplus::OutOfMemory);
AV_STAND_IN(flat, GdipSetSmoothingMode, Gdiplus::OutOfMemory);
AV_STAND_IN(flat, GdipSetSolidFillColor, Gdiplus::OutOfMemory);
AV_STAND_IN(flat, GdipSetStringFormatAlign, Gdiplus::OutOfMemory);
AV_STAND_IN(flat, GdipSetStringFormatLineAlign, Gdiplus::OutOfMemory);
AV_STAND_IN(Gdiplus, GdiplusStartup, Gdiplus::OutOfMemory);

#undef AV_STAND_IN

void* mallocOrNull(std::size_t bytes) { return isToFail() ? nullptr : std::malloc(bytes); }

void* alignedMallocOrNull(std::size_t bytes, std::size_t alignment) {
  return isToFail() ? nullptr : _aligned_malloc(bytes, alignment);
}

template <class Tag>
std::unique_ptr<ImportReplacement> replaced(HMODULE module) {
  using Type = typename Tag::Type;
  auto replacement = std::make_unique<ImportReplacement>(module, Tag::name, reinterpret_cast<void*>(&Type::call));
  Type::original = reinterpret_cast<decltype(Type::original)>(replacement->original());
  return replacement->original() ? std::move(replacement) : nullptr;
}

template <class... Tags>
void replace(HMODULE module, std::vector<std::unique_ptr<ImportReplacement>>& replacements) {
  for (auto& replacement : {&replaced<Tags>...})
    if (auto made = replacement(module)) replacements.push_back(std::move(made));
}

}  // namespace

FailingImports::FailingImports(HMODULE module, Kind kind) {
  if (kind == Kind::memory) {
    for (const auto& [name, replacement] :
         {std::pair("malloc", reinterpret_cast<void*>(&mallocOrNull)),
          std::pair("_aligned_malloc", reinterpret_cast<void*>(&alignedMallocOrNull))}) {
      m_replacements.push_back(std::make_unique<ImportReplacement>(module, name, replacement));
      if (!m_replacements.back()->original()) m_replacements.pop_back();
    }
    return;
  }
  replace<SelectObjectTag, CreateCompatibleDCTag, CreateDIBSectionTag, CreateFontIndirectWTag, CreatePenTag,
          GetTextExtentPoint32WTag, GetTextMetricsWTag, PolylineTag, BitBltTag, GetDCTag, DrawTextWTag,
          OleCreateFontIndirectTag, GdipBitmapSetResolutionTag, GdipCloneFontFamilyTag, GdipCreateBitmapFromResourceTag,
          GdipCreateBitmapFromScan0Tag, GdipCreateFontTag, GdipCreateFontFamilyFromNameTag, GdipCreatePen1Tag,
          GdipCreateSolidFillTag, GdipCreateStringFormatTag, GdipDrawImageRectRectITag, GdipDrawLineITag,
          GdipDrawLinesITag, GdipDrawStringTag, GdipGetDpiYTag, GdipGetFontHeightGivenDPITag,
          GdipGetGenericFontFamilySansSerifTag, GdipGetImageGraphicsContextTag, GdipMeasureStringTag,
          GdipNewInstalledFontCollectionTag, GdipSetInterpolationModeTag, GdipSetPenColorTag, GdipSetPenLineJoinTag,
          GdipSetPenWidthTag, GdipSetSmoothingModeTag, GdipSetSolidFillColorTag, GdipSetStringFormatAlignTag,
          GdipSetStringFormatLineAlignTag, GdiplusStartupTag>(module, m_replacements);
}

FailingImports::~FailingImports() { stop(); }

void FailingImports::failAfter(long before, Failing failing) noexcept {
  failed = 0;
  forEver = failing == Failing::forEver;
  callsLeft = before;
}

long FailingImports::stop() noexcept {
  callsLeft = -1;
  return failed;
}

}  // namespace av::test
