// The level meter when memory runs out: each allocation of the library in turn fails, in every call that a host makes.

#include "host/first_exception.h"
#include "host/message_pump.h"
#include "host/meter_test.h"
#include "host/process_threads.h"
#include "host/scarce_memory.h"

#include <optional>
#include <vector>

namespace av::test {
namespace {

/// The library takes its memory from the test, as long as that lets it. Threads of the meter's own take none.
class MeterMemory : public MeterTest {
 protected:
  void SetUp() override {
    ASSERT_NO_FATAL_FAILURE(MeterTest::SetUp());
    meetAnException(m_meter.Get());
    EXPECT_EQ(S_OK, m_meter->SendAudioData(nullptr));
    avhost::pumpMessages(200);  // the worker that the block has started ends
    m_memory.emplace(m_library.module());
  }
  void TearDown() override {
    ScarceMemory::isEnough();
    m_meter.Reset();
    m_memory.reset();
    MeterTest::TearDown();
  }

  std::optional<ScarceMemory> m_memory;
};

TEST_F(MeterMemory, IsWhatTheTestSaysItIs) {
  ScarceMemory::lastsFor(0);
  IAudioVisualization4Type2* none = nullptr;
  EXPECT_EQ(E_OUTOFMEMORY, m_library.create(CLSID_CAudioVisualization4Type2, &none));
  EXPECT_LT(0, ScarceMemory::refusals());
}

TEST_F(MeterMemory, EndsAMeterThatCannotBeMadeAndLeavesNothing) {
  const int threads = threadsOfThisProcess();
  const long took = ScarceMemory::withLessAndLessRefused([&] {
    ComPtr<IAudioVisualization4Type2> meter;
    const HRESULT made = m_library.create(CLSID_CAudioVisualization4Type2, meter.GetAddressOf());
    ScarceMemory::isEnough();
    EXPECT_EQ(SUCCEEDED(made), meter != nullptr);
    EXPECT_TRUE(made == S_OK || made == E_OUTOFMEMORY) << std::hex << made;
    meter.Reset();
    EXPECT_GE(threads, threadsOfThisProcess());
  });
  EXPECT_LT(3, took) << "nothing was tested";
  m_meter.Reset();
  EXPECT_EQ(S_OK, m_library.canUnloadNow());
}

TEST_F(MeterMemory, RefusesPutsOrDoesWithout) {
  ASSERT_NO_FATAL_FAILURE(activate({601, 200}));
  ASSERT_EQ(S_OK, sendNoise(m_meter.Get()));
  long took = 0;
  for (const NumberRow& row : meterRows) {
    for (const LONG value : {row.otherValue, row.defaultValue}) {
      took += ScarceMemory::withLessAndLessRefused([&] {
        const Value put(row.type, value);
        VARIANT argument = put;
        const HRESULT result = invoke(row.dispId, DISPATCH_PROPERTYPUT, &argument, 1);
        EXPECT_TRUE(result == S_OK || result == E_OUTOFMEMORY || result == DISP_E_EXCEPTION) << std::hex << result;
      });
      EXPECT_EQ(value, getLong(row.dispId)) << row.dispId;
    }
  }
  EXPECT_LT(0, took) << "nothing was tested";
  ASSERT_EQ(S_OK, sendNoise(m_meter.Get()));
  ASSERT_EQ(S_OK, m_meter->Repaint());
  EXPECT_LT(1000, litPixels(picture()));
}

TEST_F(MeterMemory, ALineCountThatDoesNotFitChangesNothing) {
  ScarceMemory::lastsFor(0);
  EXPECT_EQ(E_OUTOFMEMORY, m_meter->put_LineCount(48000));
  ScarceMemory::isEnough();
  EXPECT_EQ(100, lineCount());
}

TEST_F(MeterMemory, ShowsBlocksOrDropsThem) {
  ASSERT_NO_FATAL_FAILURE(activate({300, 200}));
  const std::vector<std::int16_t> samples = noise(1024);
  const auto block = avhost::audioFrames(meterFormat, samples.data(), 2048);
  for (int i = 0; i < 3; ++i)
    ScarceMemory::withLessAndLessRefused([&] {
      EXPECT_EQ(S_OK, m_meter->SendAudioData(block.get()));
      EXPECT_EQ(S_OK, m_meter->SendAudioData(nullptr));
      EXPECT_EQ(S_OK, m_meter->Repaint());
      EXPECT_EQ(S_OK, m_meter->_OnTimer());
    });
  ASSERT_EQ(S_OK, m_meter->SendAudioData(block.get()));
  ASSERT_EQ(S_OK, m_meter->Repaint());
  EXPECT_LT(1000, litPixels(picture()));
}

TEST_F(MeterMemory, PaintsAgainWhenThereIsSome) {
  ASSERT_NO_FATAL_FAILURE(activate({300, 200}));
  ASSERT_EQ(S_OK, sendNoise(m_meter.Get()));
  long size = 300;
  ScarceMemory::withLessAndLessRefused([&] {
    ASSERT_EQ(S_OK, m_container.resize({++size, 200}));  // surface and layout anew
    ASSERT_EQ(S_OK, m_meter->put_LineType(size % 6));
    EXPECT_EQ(S_OK, m_meter->Repaint());
    UpdateWindow(window());
  });
  ASSERT_EQ(S_OK, m_meter->put_LineType(0));
  ASSERT_EQ(S_OK, m_meter->Repaint());
  EXPECT_LT(1000, litPixels(picture()));
}

}  // namespace
}  // namespace av::test
