// A hundred level meters in one process, as a mixing desk has them: every one that is seen is painted in time, and nothing
// is left of them all.

#include "host/message_pump.h"
#include "host/meter_test.h"
#include "host/process_threads.h"
#include "support/win/holdings.h"

#include <algorithm>
#include <array>
#include <atomic>
#include <iostream>
#include <vector>

namespace av::test {
namespace {

constexpr int sitedMeters = 10;
constexpr int allMeters = 100;
constexpr DWORD blockPeriodMs = 50;
constexpr COLORREF marker = RGB(0x12, 0x34, 0x56);

/// Meters that hear blocks of one audio thread, and a count of how often each of the sited ones was painted.
class Desk {
 public:
  explicit Desk(const avhost::ControlLibrary& library) {
    for (int i = 0; i < allMeters; ++i) {
      m_meters.emplace_back();
      EXPECT_EQ(S_OK, library.create(CLSID_CAudioVisualization4Type2, m_meters.back().GetAddressOf()));
    }
    for (int i = 0; i < sitedMeters; ++i) {
      avhost::Container& container = m_containers[static_cast<std::size_t>(i)];
      EXPECT_EQ(S_OK, container.open({.title = L"meter", .clientSizePx = {200, 100}, .positionPx = {0, 0}}));
      EXPECT_EQ(S_OK, container.host(m_meters[static_cast<std::size_t>(i)].Get()));
      UpdateWindow(container.controlWindow());
    }
  }
  ~Desk() {
    for (avhost::Container& container : m_containers) EXPECT_EQ(0u, container.close());
    for (auto& meter : m_meters) EXPECT_EQ(0u, meter.Reset());
  }
  Desk(const Desk&) = delete;
  Desk& operator=(const Desk&) = delete;

  /// Plays for so long while messages are dispatched. Returns how many blocks each meter has heard.
  int play(DWORD durationMs) {
    std::atomic<bool> ends{false};
    int blocks = 0;
    const DWORD start = GetTickCount();
    {
      const PlainThread audio([&] {
        const std::vector<std::int16_t> loud = noise(1024), soft = noise(1024, 300);
        while (!ends) {
          const auto block = avhost::audioFrames(meterFormat, (blocks % 2 == 0 ? loud : soft).data(), 2048);
          for (const auto& meter : m_meters) EXPECT_EQ(S_OK, meter->SendAudioData(block.get()));
          ++blocks;
          const DWORD dueMs = static_cast<DWORD>(blocks) * blockPeriodMs, nowMs = GetTickCount() - start;
          if (dueMs > nowMs) Sleep(dueMs - nowMs);
        }
      });
      for (const avhost::Container& container : m_containers) putMarker(container.controlWindow());
      DWORD looked = start;
      avhost::pumpUntil(durationMs, [&] {
        if (GetTickCount() - looked >= 4) {  // a meter's ticks are further apart
          looked = GetTickCount();
          countPaints();
        }
        return false;
      });
      ends = true;
    }
    return blocks;
  }

  /// How often each of the sited meters was painted while it played: never more than it was.
  const std::array<int, sitedMeters>& paints() const { return m_paints; }

 private:
  static void putMarker(HWND window) {
    const HDC context = GetDC(window);
    SetPixel(context, 0, 0, marker);
    ReleaseDC(window, context);
  }

  void countPaints() {
    for (std::size_t i = 0; i < m_containers.size(); ++i) {
      const HWND window = m_containers[i].controlWindow();
      const HDC context = GetDC(window);
      const bool painted = GetPixel(context, 0, 0) != marker;
      ReleaseDC(window, context);
      if (!painted) continue;
      ++m_paints[i];
      putMarker(window);
    }
  }

  std::vector<ComPtr<IAudioVisualization4Type2>> m_meters;
  std::array<avhost::Container, sitedMeters> m_containers;
  std::array<int, sitedMeters> m_paints{};
};

class FullMeterStress : public DllTest {};

TEST_F(FullMeterStress, AHundredMetersArePaintedInTimeAndLeaveNothing) {
  // What the system's libraries keep for threads, apartments and windows once there were so many.
  for (int i = 0; i < 3; ++i) Desk(m_library).play(1500);
  ASSERT_EQ(S_OK, m_library.canUnloadNow());
  const int threadsBefore = threadsOfThisProcess();
  const Holdings holdingsBefore = Holdings::now();
  const HeapUse heapBefore = HeapUse::now();  // last, since the others live in the heap

  constexpr DWORD durationMs = 30000;
  int blocks = 0;
  std::array<int, sitedMeters> paints{};
  {
    Desk desk(m_library);
    blocks = desk.play(durationMs);
    paints = desk.paints();
  }

  const HeapUse heapAfter = HeapUse::now();
  EXPECT_LE(static_cast<int>(durationMs / blockPeriodMs * 9 / 10), blocks)
      << "the blocks came too slowly for this test";
  for (const int count : paints) {
    EXPECT_LE(15 * static_cast<int>(durationMs / 1000), count);
    EXPECT_GE(20 * static_cast<int>(durationMs / 1000) + 20, count) << "more than there are ticks: the count is wrong";
  }
  const auto [fewest, most] = std::minmax_element(paints.begin(), paints.end());
  std::cout << "paints of a meter: " << *fewest << " to " << *most << " in " << durationMs / 1000
            << " s, blocks: " << blocks << '\n';
  EXPECT_GE(threadsBefore, threadsOfThisProcess());
  EXPECT_EQ(holdingsBefore, Holdings::now());
  // Wine keeps a block of 2 KB whenever it has loaded a type library to marshal by, whoever marshals, and threads of the
  // system's take one now and then. A block kept by each meter would be a hundred, one by each block of audio thousands.
  EXPECT_GE(heapBefore.blocks + 5, heapAfter.blocks) << heapAfter.bytes - heapBefore.bytes << " bytes more";
}

}  // namespace
}  // namespace av::test
