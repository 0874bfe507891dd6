// Blocks that the host's audio thread brings to the level meter: ticks arrive on the control's own thread, and of worker,
// fall thread and audio thread nothing is left.

#include "host/message_pump.h"
#include "host/meter_test.h"
#include "host/process_threads.h"
#include "support/win/holdings.h"
#include "support/win/import_probe.h"
#include "support/win/resource_probes.h"

#include <atomic>
#include <random>

namespace av::test {
namespace {

class MeterThreads : public MeterTest, public testing::WithParamInterface<AudioApartment> {
 protected:
  void SetUp() override {
    ASSERT_NO_FATAL_FAILURE(MeterTest::SetUp());
    ASSERT_EQ(S_OK, m_meter->put_TickVisible(VARIANT_FALSE));  // the fall thread has ended; pictures stand still
  }

  static void push(IAudioVisualization4Type2* meter, AudioApartment apartment, int amplitude = 30000) {
    const PlainThread audio([=] { EXPECT_EQ(S_OK, sendNoise(meter, 1024, amplitude)); }, apartment);
  }
};

TEST_P(MeterThreads, ABlockOfAnAudioThreadIsDrawnByTicksOfTheControlsThread) {
  ASSERT_NO_FATAL_FAILURE(activate({300, 200}));
  const WindowPicture before = picture();
  push(m_meter.Get(), GetParam());
  Sleep(300);  // no tick without messages
  EXPECT_EQ(before, picture());
  EXPECT_TRUE(avhost::pumpUntil(10000, [&] { return picture() != before; }));
  smear();
  EXPECT_TRUE(avhost::pumpUntil(10000, [&] { return !isSmeared(); })) << "and the next one";
  smear();
  Sleep(200);
  EXPECT_TRUE(isSmeared());
}

TEST_P(MeterThreads, TheWorkerEndsAfterANullBlockAndComesBackWithTheNextOne) {
  ASSERT_NO_FATAL_FAILURE(activate({300, 200}));
  push(m_meter.Get(), GetParam());
  smear();
  ASSERT_TRUE(avhost::pumpUntil(10000, [&] { return !isSmeared(); }));
  const int ticking = threadsOfThisProcess();
  {
    const PlainThread audio([this] { EXPECT_EQ(S_OK, m_meter->SendAudioData(nullptr)); }, GetParam());
  }
  EXPECT_TRUE(avhost::pumpUntil(10000, [&] { return threadsOfThisProcess() < ticking; }));
  avhost::pumpMessages(200);
  const ImportProbe probe(m_library.module(), {"CreateThread"});
  push(m_meter.Get(), GetParam());
  EXPECT_EQ(1, probe.calls());
  smear();
  EXPECT_TRUE(avhost::pumpUntil(10000, [&] { return !isSmeared(); }));
}

TEST_P(MeterThreads, AnUnsitedMeterTicksToo) {
  avhost::ControlSite* const sink = new avhost::ControlSite(nullptr, {});
  ComPtr<IViewObject> viewObject;
  ASSERT_EQ(S_OK, m_meter.As(&viewObject));
  ASSERT_EQ(S_OK, viewObject->SetAdvise(DVASPECT_CONTENT, 0, sink));
  push(m_meter.Get(), GetParam());
  EXPECT_EQ(0u, sink->viewChanges());
  EXPECT_TRUE(avhost::pumpUntil(10000, [&] { return sink->viewChanges() >= 3; }));
  ASSERT_EQ(S_OK, viewObject->SetAdvise(DVASPECT_CONTENT, 0, nullptr));
  EXPECT_EQ(0u, sink->Release());
}

TEST_P(MeterThreads, TheLastReleaseLeavesNothing) {
  const auto live = [&](bool pumps) {
    ComPtr<IAudioVisualization4Type2> meter = createMeter();
    avhost::Container container;
    ASSERT_EQ(S_OK, container.open({.clientSizePx = {100, 80}, .visible = false}));
    ASSERT_EQ(S_OK, container.host(meter.Get()));
    push(meter.Get(), GetParam());
    if (pumps) avhost::pumpMessages(150);
    ASSERT_EQ(0u, container.close());
    ASSERT_EQ(0u, meter.Reset());
  };
  for (int i = 0; i < 4; ++i) ASSERT_NO_FATAL_FAILURE(live(i % 2 == 0));  // what the system keeps for itself
  const int threads = threadsOfThisProcess();
  const std::size_t slots = spareThreadLocalSlots();
  const Holdings before = Holdings::now();
  for (int i = 0; i < 10; ++i) ASSERT_NO_FATAL_FAILURE(live(i % 2 == 0));
  EXPECT_GE(threads, threadsOfThisProcess());  // threads of the system's own come to their end as well
  EXPECT_EQ(slots, spareThreadLocalSlots());
  EXPECT_EQ(before, Holdings::now());
  m_meter.Reset();
  EXPECT_EQ(S_OK, m_library.canUnloadNow());
  EXPECT_TRUE(m_library.unload());
  EXPECT_EQ(nullptr, GetModuleHandleW(dllName)) << "a worker still holds the library";
}

INSTANTIATE_TEST_SUITE_P(, MeterThreads,
                         testing::Values(AudioApartment::none, AudioApartment::singleThreaded,
                                         AudioApartment::multiThreaded),
                         [](const auto& apartment) { return std::string(nameOf(apartment.param)); });

class MeterInNoHurry : public MeterTest {};

TEST_F(MeterInNoHurry, ANewMeterMakesItsFallThreadAndTheFirstBlockOneWorker) {
  const int threads = threadsOfThisProcess();
  {
    const ImportProbe probe(m_library.module(), {"CreateThread"});
    auto meter = createMeter();
    EXPECT_EQ(1, probe.calls());
    ASSERT_EQ(S_OK, sendNoise(meter.Get()));
    EXPECT_EQ(2, probe.calls());
    for (int i = 0; i < 5; ++i) ASSERT_EQ(S_OK, sendNoise(meter.Get()));
    EXPECT_EQ(2, probe.calls()) << "it is not started twice";
    EXPECT_EQ(0u, meter.Reset());
    EXPECT_EQ(2, probe.calls());
  }
  EXPECT_GE(threads, threadsOfThisProcess());  // threads of the system's own come to their end as well
}

TEST_F(MeterInNoHurry, ABlockRightAfterANullBlockBeginsASecondWorkerAndBothEndWithTheMeter) {
  const int threads = threadsOfThisProcess();
  ASSERT_EQ(S_OK, sendNoise(m_meter.Get()));
  avhost::pumpMessages(200);
  {
    const ImportProbe probe(m_library.module(), {"CreateThread"});
    // The worker is in its wait of 50 ms, or about to begin one: it does not see the flag in between.
    ASSERT_EQ(S_OK, m_meter->SendAudioData(nullptr));
    ASSERT_EQ(S_OK, sendNoise(m_meter.Get()));
    EXPECT_EQ(1, probe.calls());
    avhost::pumpMessages(300);
    EXPECT_EQ(0u, m_meter.Reset());
  }
  EXPECT_GT(threads, threadsOfThisProcess()) << "the fall thread has ended as well";
}

TEST_F(MeterInNoHurry, AudioThreadsMayPushBlocksWhileEverythingElseChanges) {
  ASSERT_NO_FATAL_FAILURE(activate({300, 200}));
  IAudioVisualization4Type2* const meter = m_meter.Get();
  std::atomic<bool> ends{false};
  std::atomic<int> pushed{0};
  {
    const auto push = [&](unsigned seed) {
      std::mt19937 random(seed);
      while (!ends) {
        const unsigned kind = random() % 12;
        const HRESULT sent =
            kind == 0 ? meter->SendAudioData(nullptr) : sendNoise(meter, kind == 1 ? 16 : 256u << (random() % 3));
        EXPECT_EQ(S_OK, sent);
        ++pushed;
        Sleep(random() % 4);
      }
    };
    const PlainThread first([&] { push(1); }), second([&] { push(2); }, AudioApartment::multiThreaded);
    std::mt19937 random(3);
    const DWORD start = GetTickCount();
    while (GetTickCount() - start < 3000) {
      const NumberRow& row = meterRows[random() % std::size(meterRows)];
      if (row.dispId == 31) continue;  // its thread would sleep on when it is switched off
      EXPECT_EQ(S_OK, invokePut(row.dispId, Value(row.type, random() % 2 ? row.otherValue : row.defaultValue)));
      if (random() % 4 == 0) {
        ASSERT_EQ(S_OK, m_container.resize({static_cast<LONG>(100 + random() % 300), 150}));
      }
      avhost::pumpMessages(random() % 8);
    }
    ends = true;
  }
  EXPECT_LT(100, pushed);
  for (const NumberRow& row : meterRows) ASSERT_EQ(S_OK, invokePut(row.dispId, Value(row.type, row.defaultValue)));
  ASSERT_EQ(S_OK, m_container.resize({301, 200}));
  ASSERT_EQ(S_OK, sendNoise(meter));
  ASSERT_EQ(S_OK, m_meter->Repaint());
  EXPECT_LT(1000, litPixels(picture())) << "it still shows what it hears";
}

TEST_F(MeterInNoHurry, TheApartmentMayGoBeforeTheMeter) {
  IAudioVisualization4Type2* const meter = m_meter.Get();
  ASSERT_EQ(S_OK, sendNoise(meter));
  avhost::pumpMessages(200);
  CoUninitialize();
  Sleep(100);
  ASSERT_EQ(S_OK, meter->SendAudioData(nullptr));
  {
    const PlainThread audio([meter] { EXPECT_EQ(S_OK, sendNoise(meter)); });
  }
  const DWORD start = GetTickCount();
  EXPECT_EQ(0u, m_meter.Reset());
  EXPECT_LT(GetTickCount() - start, 10000u);
  EXPECT_EQ(S_OK, m_library.canUnloadNow());
  ASSERT_EQ(S_OK, CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED));
}

}  // namespace
}  // namespace av::test
