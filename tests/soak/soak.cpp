#include "tests/soak/soak.h"

#include <algorithm>
#include <cstdio>
#include <optional>

namespace av::soak {
namespace {

/// A host's audio thread: hands blocks to the view and to the meter until it ends.
class AudioThread {
 public:
  AudioThread(const std::vector<SoakBlock>& blocks, HostedControl& view, HostedControl& meter, Deeds& deeds)
      : m_blocks(blocks), m_view(view), m_meter(meter), m_deeds(deeds) {
    m_handle = CreateThread(nullptr, 0, &main, this, 0, nullptr);
  }
  ~AudioThread() {
    m_ends = true;
    WaitForSingleObject(m_handle, INFINITE);
    CloseHandle(m_handle);
  }
  AudioThread(const AudioThread&) = delete;
  AudioThread& operator=(const AudioThread&) = delete;

 private:
  static DWORD WINAPI main(void* argument) {
    auto& self = *static_cast<AudioThread*>(argument);
    for (std::size_t i = 0; !self.m_ends; ++i) {
      IUnknown* const block = self.m_blocks[i % self.m_blocks.size()].object.get();
      self.m_view.hear(block);
      self.m_meter.hear(block);
      self.m_deeds.blocks += 2;
      if (i % 8 == 7) Sleep(1);  // the control's thread has its turn
    }
    return 0;
  }

  const std::vector<SoakBlock>& m_blocks;
  HostedControl& m_view;
  HostedControl& m_meter;
  Deeds& m_deeds;
  std::atomic<bool> m_ends{false};
  HANDLE m_handle;
};

}  // namespace

Soak::Soak(std::uint64_t seed) : m_random(seed) {
  for (int i = 0; i < 200; ++i) m_blocks.push_back(randomBlock(m_random));
}

void Soak::warmUp() {
  for (const CLSID& classId :
       {CLSID_CAudioVisualization4Type1, CLSID_CAudioVisualization4Type2, CLSID_CAudioVisualization4Type3})
    for (const Keeping keeping : {Keeping::window, Keeping::windowless, Keeping::unsited}) {
      HostedControl control(m_library, classId, keeping, m_random);
      for (int look = 0; look < 12; ++look) {
        control.put(classId == CLSID_CAudioVisualization4Type1   ? L"VisualizationType"
                    : classId == CLSID_CAudioVisualization4Type2 ? L"LineType"
                                                                 : L"ViewType",
                    look);
        for (int i = 0; i < 10; ++i) control.hear(m_random.oneOf(m_blocks).object.get());
        for (const Canvas canvas : {Canvas::colour, Canvas::monochrome, Canvas::metafile}) control.draw(canvas);
      }
      control.persist();
      dispatchMessages({});
    }
}

void Soak::live(ULONGLONG deadline) {
  const auto keeping = [this] {
    return m_random.oneOf<Keeping>({Keeping::window, Keeping::window, Keeping::windowless, Keeping::unsited});
  };
  HostedControl view(m_library, CLSID_CAudioVisualization4Type1, keeping(), m_random);
  HostedControl meter(m_library, CLSID_CAudioVisualization4Type2, keeping(), m_random);
  HostedControl analyser(m_library, CLSID_CAudioVisualization4Type3, keeping(), m_random);
  const std::vector<HostedControl*> all = {&view, &meter, &analyser};
  {
    std::optional<AudioThread> audio;
    if (m_random.chance(50)) audio.emplace(m_blocks, view, meter, m_deeds);
    const int rounds = m_random.upTo(m_random.chance(20) ? 10 : 600);
    for (int round = 0; round < rounds && GetTickCount64() < deadline; ++round) {
      IUnknown* const block = m_random.oneOf(m_blocks).object.get();
      analyser.hear(block);
      ++m_deeds.blocks;
      if (!audio) {
        view.hear(block);
        meter.hear(block);
        m_deeds.blocks += 2;
      }
      makeTrouble(*m_random.oneOf(all));
      dispatchMessages(all);
      if (round % 16 == 0) m_peakBytes = std::max(m_peakBytes, committedBytes());
    }
  }
  for (const HostedControl* control : all) m_deeds.draws += control->draws();
  ++m_deeds.lives;
}

Footprint Soak::rest() {
  for (int i = 0; i < 400 && m_library.canUnloadNow() != S_OK; ++i) {
    dispatchMessages({});
    Sleep(5);
  }
  if (m_library.canUnloadNow() != S_OK) {
    InterlockedIncrement(&faults);
    std::fwprintf(stderr, L"soak: something of the library lives on\n");
  }
  return Footprint::now();
}

void Soak::makeTrouble(HostedControl& control) {
  const int what = m_random.upTo(99);
  if (what < 30) {
    control.putProperty();
    ++m_deeds.puts;
  } else if (what < 35) {
    control.resize();
  } else if (what < 40) {
    control.draw(m_random.oneOf<Canvas>({Canvas::colour, Canvas::colour, Canvas::colour, Canvas::colour, Canvas::colour,
                                         Canvas::colour, Canvas::colour, Canvas::monochrome, Canvas::metafile}));
  } else if (what < 43) {
    control.disturb();
  } else if (what < 44) {
    control.persist();
  }
}

void Soak::dispatchMessages(const std::vector<HostedControl*>& controls) {
  MSG message;
  // Some pictures take longer than a timer's period: there would be no end of messages.
  for (int i = 0; i < 20 && PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE); ++i) {
    if (message.message == WM_PAINT)
      for (const HostedControl* control : controls) m_deeds.paints += control->window() == message.hwnd ? 1 : 0;
    TranslateMessage(&message);
    DispatchMessageW(&message);
  }
}

}  // namespace av::soak
