#include "bench/win/control_grid.h"

#include "bench/win/bench_control.h"
#include "host/container.h"
#include "host/message_pump.h"
#include "support/win/import_probe.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <vector>

namespace av::bench {

namespace {

constexpr int controlCount = 100;
constexpr SIZE controlPx{200, 100};
constexpr int columns = 5, rows = 7;  // what fits on Wine's screen of 1024 × 768; the next ones lie over these

/// The controls, children of one window. Siblings do not clip each other, so that each of them is painted as a whole.
class Grid {
 public:
  Grid(const Library& library, const std::string& shown) {
    need(SUCCEEDED(m_frame.open({.title = L"grid", .clientSizePx = {1000, 700}, .positionPx = {0, 0}})),
         "opening the window");
    for (int i = 0; i < controlCount; ++i) {
      m_controls.push_back(library.create(shown));
      const POINT at{i % columns * controlPx.cx, i / columns % rows * controlPx.cy};
      need(SUCCEEDED(m_containers[static_cast<std::size_t>(i)].show(
               m_controls.back().Get(), {.clientSizePx = controlPx, .parent = m_frame.window(), .positionPx = at})),
           "hosting a control");
    }
    for (const avhost::Container& container : m_containers) {
      const HWND window = container.controlWindow();
      const HDC context = GetDC(window);
      RECT seen{};
      GetClipBox(context, &seen);
      ReleaseDC(window, context);
      RECT client{};
      GetClientRect(window, &client);
      need(client.right >= controlPx.cx - 5 && EqualRect(&seen, &client), "seeing a control as a whole");
    }
  }

  void send(Recording& recording) {
    for (const auto& control : m_controls) recording.sendTo(*control.Get());
    recording.advance();
  }

 private:
  std::vector<ComPtr<IAudioVisualizationTemplate>> m_controls;
  avhost::Container m_frame;
  std::array<avhost::Container, controlCount> m_containers;
};

/// Whoever reads this looks at the clock of Wine's server.
void mark(const char* moment) {
  std::puts(moment);
  std::fflush(stdout);
}

}  // namespace

void watchGrid(const std::string& shown, const char* wav, int blocksPerSecond, int seconds) {
  const Library library;
  Recording recording(wav, 48000 / 20);
  Grid grid(library, shown);
  // As a host's message loop: sleeps until there is a message or a block.
  const auto play = [&](int lengthMs) {
    const ULONGLONG start = GetTickCount64();
    for (int blocks = 0;;) {
      const auto elapsedMs = static_cast<int>(GetTickCount64() - start);
      if (elapsedMs >= lengthMs) return blocks;
      int dueMs = lengthMs;
      if (blocksPerSecond > 0) {
        if (blocks * 1000 <= elapsedMs * blocksPerSecond) {
          grid.send(recording);
          ++blocks;
        }
        dueMs = std::min(dueMs, blocks * 1000 / blocksPerSecond);
      }
      avhost::pumpMessages(0);
      const int leftMs = dueMs - static_cast<int>(GetTickCount64() - start);
      if (leftMs > 0)
        MsgWaitForMultipleObjectsEx(0, nullptr, static_cast<DWORD>(leftMs), QS_ALLINPUT, MWMO_INPUTAVAILABLE);
    }
  };
  play(1000);
  const test::ImportProbe probe(library.module(), {"BitBlt"});  // which ends each paint
  mark("begin");
  const ULONGLONG start = GetTickCount64();
  const double before = processorTimeMs();
  const int blocks = play(seconds * 1000);
  const double usedMs = processorTimeMs() - before;
  const auto elapsedS = static_cast<double>(GetTickCount64() - start) / 1000;
  const auto paints = static_cast<double>(probe.calls());
  mark("end");
  std::printf("share-percent %.1f\nblocks-per-second %.1f\npaints-per-second %.1f\n", usedMs / elapsedS / 10,
              blocks / elapsedS, paints / controlCount / elapsedS);
}

}  // namespace av::bench
