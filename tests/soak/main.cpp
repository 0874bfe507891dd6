// Runs the three controls with random blocks, properties, sizes and hosts for as long as is wanted, and says what they
// left behind:  soak [--seconds N] [--seed S] [--leak handle|brush|block|reference]
// The last line has the figures. Exit code 1 on any growth and on any answer that was not as documented. --leak lets the
// program itself lose such a thing (ten blocks) with each life of the controls, to show that it would be noticed.

#include "tests/soak/soak.h"

#include <windows.h>

#include <algorithm>
#include <cwchar>
#include <iostream>
#include <string>
#include <vector>

namespace av::soak {
namespace {

struct Options {
  double seconds = 60;
  std::uint64_t seed = GetTickCount64();
  std::wstring leak;
};

// The system's libraries keep something for each property, font and message that was never seen before.
constexpr int livesToWarmUp = 20;
// Its caches come and go by a few blocks, and a look takes two.
constexpr int heapBlocksToSpare = 30;

double secondsSince(ULONGLONG start) { return static_cast<double>(GetTickCount64() - start) / 1000.0; }

void leakOne(const std::wstring& kind, const avhost::ControlLibrary& library) {
  if (kind == L"handle") CreateEventW(nullptr, TRUE, FALSE, nullptr);
  if (kind == L"brush") CreateSolidBrush(RGB(1, 2, 3));
  if (kind == L"block")
    for (int i = 0; i < 10; ++i) HeapAlloc(GetProcessHeap(), 0, 100);
  IAudioVisualizationTemplate* control = nullptr;
  if (kind == L"reference") library.create(CLSID_CAudioVisualization4Type1, &control);
}

void report(const Footprint& footprint, const Deeds& deeds, double seconds) {
  std::cout << static_cast<int>(seconds) << " s: " << deeds.lives << " lives, " << deeds.blocks << " blocks, "
            << footprint.kernelHandles.size() << " kernel handles, " << footprint.spareGdiObjects
            << " GDI objects to spare, " << footprint.heapBlocks.size() << " heap blocks of " << footprint.heapBytes()
            << " bytes" << std::endl;
}

void reportGrowth(const char* when, const Growth& growth) {
  std::cout << when << ": ";
  for (const auto& [type, count] : growth.kernelHandles)
    std::cout << count << " of " << std::string(type.begin(), type.end()) << ", ";
  for (const auto& [size, count] : growth.heapBlocks)
    if (count > 2) std::cout << count << " heap blocks of " << size << " bytes, ";
  std::cout << growth.gdiObjects << " GDI objects, " << growth.ofTheSystem << " heap blocks of the system's marshaller"
            << std::endl;
}

/// What grows goes on growing. What a system's library keeps when it is first asked for something rare comes once, so a
/// growth counts when it is seen in both halves of the time.
struct Drift {
  int handles = 0;
  int blocks = 0;
};

Drift driftOf(const std::vector<Footprint>& looks) {
  const Footprint& middle = looks[looks.size() / 2];
  const Growth first = Growth::between(looks.front(), middle), second = Growth::between(middle, looks.back());
  reportGrowth("more after the first half", first);
  reportGrowth("more after the second half", second);
  return {std::min(first.handles(), second.handles()), std::min(first.blocks(), second.blocks())};
}

int run(const Options& options) {
  const avhost::Apartment apartment;
  Soak soak(options.seed);
  if (!soak.load()) {
    std::cerr << "soak: QELAudioVisualization4.dll cannot be loaded\n";
    return 2;
  }
  std::cout << "seed " << options.seed << std::endl;
  soak.warmUp();
  const ULONGLONG start = GetTickCount64();
  const ULONGLONG deadline = start + static_cast<ULONGLONG>(options.seconds * 1000);
  const Deeds& deeds = soak.deeds();
  std::vector<Footprint> looks;
  looks.reserve(100);
  const auto look = [&] {
    looks.push_back(soak.rest());
    report(looks.back(), deeds, secondsSince(start));
  };
  double nextLook = options.seconds / 5;
  while (GetTickCount64() < deadline) {
    soak.live(deadline);
    if (!looks.empty()) leakOne(options.leak, soak.controlsDll());
    if (secondsSince(start) < nextLook || (looks.empty() && deeds.lives < livesToWarmUp)) continue;
    nextLook = secondsSince(start) + std::clamp(options.seconds / 10, 1.0, 300.0);
    look();
  }
  look();
  if (looks.size() < 3) {
    std::cerr << "soak: too short to tell: " << deeds.lives << " lives\n";
    return 2;
  }
  const Drift drift = driftOf(looks);
  const bool good = faults == 0 && drift.handles == 0 && drift.blocks <= heapBlocksToSpare;
  std::cout << "soak: " << (good ? "passed" : "FAILED") << ", " << deeds.blocks << " blocks, " << deeds.paints
            << " paints, " << deeds.draws << " draws, " << deeds.puts << " puts, " << deeds.lives * 3
            << " controls, peak " << soak.peakBytes() / (1024 * 1024) << " MB, handle drift " << drift.handles
            << ", heap drift " << drift.blocks << " blocks, faults " << faults << ", seed " << options.seed << ", "
            << static_cast<int>(secondsSince(start)) << " s" << std::endl;
  return good ? 0 : 1;
}

}  // namespace
}  // namespace av::soak

int wmain(int argc, wchar_t** argv) {
  av::soak::Options options;
  for (int i = 1; i < argc; i += 2) {
    const std::wstring name = argv[i];
    const wchar_t* const value = i + 1 < argc ? argv[i + 1] : L"";
    if (name == L"--seconds") options.seconds = std::wcstod(value, nullptr);
    else if (name == L"--seed") options.seed = std::wcstoull(value, nullptr, 10);
    else if (name == L"--leak") options.leak = value;
    else std::wcerr << L"soak: unknown option " << name << L'\n';
  }
  return av::soak::run(options);
}
