#pragma once

#include "host/message_pump.h"
#include "support/win/holdings.h"
#include "support/win/import_probe.h"

#include <string>
#include <utility>
#include <vector>

namespace av::test {

/// Imports of the DLL that give memory.
inline const std::vector<std::string> allocators = {
    "malloc",           "calloc",         "realloc",           "_strdup",
    "_wcsdup",          "HeapAlloc",      "HeapReAlloc",       "HeapCreate",
    "LocalAlloc",       "GlobalAlloc",    "VirtualAlloc",      "CoTaskMemAlloc",
    "CoTaskMemRealloc", "SysAllocString", "SysAllocStringLen", "SysAllocStringByteLen",
    "??2@YAPAXI@Z",     "??2@YAPEAX_K@Z", "_aligned_malloc",   "_aligned_realloc"};

/// Imports that make something, with those that end it.
struct MakersAndEnders {
  std::vector<std::string> makers;
  std::vector<std::string> enders;
};

inline const std::vector<MakersAndEnders> gdiplusPairs = {
    {{"GdiplusStartup"}, {"GdiplusShutdown"}},
    {{"GdipCreateBitmapFromResource", "GdipCreateBitmapFromScan0"}, {"GdipDisposeImage"}},
    {{"GdipGetImageGraphicsContext"}, {"GdipDeleteGraphics"}},
    {{"GdipCreatePen1"}, {"GdipDeletePen"}},
    {{"GdipCreateSolidFill"}, {"GdipDeleteBrush"}},
    {{"GdipCreateStringFormat"}, {"GdipDeleteStringFormat"}},
    {{"GdipCreateFont"}, {"GdipDeleteFont"}},
    {{"GdipCreateFontFamilyFromName", "GdipCloneFontFamily", "GdipGetGenericFontFamilySansSerif"},
     {"GdipDeleteFontFamily"}},
};

inline std::vector<std::string> namesIn(const std::vector<MakersAndEnders>& pairs) {
  std::vector<std::string> names;
  for (const MakersAndEnders& pair : pairs) {
    names.insert(names.end(), pair.makers.begin(), pair.makers.end());
    names.insert(names.end(), pair.enders.begin(), pair.enders.end());
  }
  return names;
}

/// GDI+ objects that a module has made and not ended since the probe came, one number a kind. Makers that fail count, so
/// this is for makers that succeed.
inline std::vector<long> liveObjects(const ImportProbe& probe) {
  std::vector<long> live;
  for (const MakersAndEnders& pair : gdiplusPairs) {
    live.push_back(0);
    for (const std::string& maker : pair.makers) live.back() += probe.calls(maker);
    for (const std::string& ender : pair.enders) live.back() -= probe.calls(ender);
  }
  return live;
}

/// A repaint timer's first call gives COM an event and more for its thread. It comes two periods after the timer's start,
/// or later on a busy machine: messages are dispatched until nothing has come any more for a while.
inline void awaitTheTimersFirstCall() {
  Holdings last = Holdings::now();
  for (int quiet = 0; quiet < 6; ++quiet) {
    avhost::pumpMessages(50);
    if (Holdings now = Holdings::now(); now != last) {
      last = std::move(now);
      quiet = 0;
    }
  }
}

}  // namespace av::test
