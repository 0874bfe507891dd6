// The spectrum analyser when memory runs out: each allocation of the library in turn fails, in every call that a host
// makes.

#include "host/analyser_test.h"
#include "host/first_exception.h"
#include "host/message_pump.h"
#include "host/process_threads.h"
#include "host/scarce_memory.h"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <vector>

namespace av::test {
namespace {

/// The library takes its memory from the test, as long as that lets it. Threads of the analyser's own take none.
class AnalyserMemory : public AnalyserTest {
 protected:
  void SetUp() override {
    ASSERT_NO_FATAL_FAILURE(AnalyserTest::SetUp());
    meetAnException(m_analyser.Get());
    m_memory.emplace(m_library.module());
  }
  void TearDown() override {
    ScarceMemory::isEnough();
    EXPECT_EQ(0u, m_container.close());
    m_analyser.Reset();
    m_memory.reset();
    AnalyserTest::TearDown();
  }

  int litPixels() const {
    const WindowPicture shown = picture();
    int count = 0;
    for (const std::uint32_t pixel : shown.pixels) count += pixel == 0x00FF00 || pixel == 0xFFFF00 || pixel == 0xFF0000;
    return count;
  }

  std::optional<ScarceMemory> m_memory;
};

TEST_F(AnalyserMemory, EndsAnAnalyserThatCannotBeMadeAndLeavesNothing) {
  const int threads = threadsOfThisProcess();
  const long took = ScarceMemory::withLessAndLessRefused([&] {
    ComPtr<IAudioVisualization4Type3> analyser;
    const HRESULT made = m_library.create(CLSID_CAudioVisualization4Type3, analyser.GetAddressOf());
    ScarceMemory::isEnough();
    EXPECT_EQ(SUCCEEDED(made), analyser != nullptr);
    EXPECT_TRUE(made == S_OK || made == E_OUTOFMEMORY) << std::hex << made;
    analyser.Reset();
    EXPECT_EQ(threads, threadsOfThisProcess());
  });
  EXPECT_LT(5, took) << "nothing was tested";
}

TEST_F(AnalyserMemory, RefusesPutsOrDoesWithout) {
  ASSERT_NO_FATAL_FAILURE(activate({401, 200}));
  ASSERT_EQ(S_OK, send(noiseBlock()));
  long took = 0;
  for (const NumberRow& row : analyserRows) {
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
  ASSERT_EQ(S_OK, send(noiseBlock()));
  EXPECT_LT(1000, litPixels());
}

TEST_F(AnalyserMemory, ALengthOrACountThatDoesNotFitChangesNothing) {
  ScarceMemory::lastsFor(0);
  EXPECT_EQ(E_OUTOFMEMORY, m_analyser->put_FFTLength(4096));
  EXPECT_EQ(E_OUTOFMEMORY, m_analyser->put_LineCount(200));
  ScarceMemory::isEnough();
  EXPECT_EQ(512, getLong(10));
  EXPECT_EQ(60, getLong(23));
}

TEST_F(AnalyserMemory, NeitherDoLengthsThatTheMachineHasNoMemoryFor) {
  ASSERT_NO_FATAL_FAILURE(activate({300, 200}));
  ASSERT_EQ(S_OK, send(noiseBlock()));
  for (const std::size_t megabytes : {0, 1, 16}) {
    ScarceMemory::hasNothingAbove(megabytes << 20);
    for (const LONG length : {1 << 22, 1 << 26, 1 << 30}) EXPECT_EQ(E_OUTOFMEMORY, m_analyser->put_FFTLength(length));
    ScarceMemory::isEnough();
    EXPECT_EQ(512, getLong(10));
  }
  ASSERT_EQ(S_OK, send(noiseBlock()));
  EXPECT_LT(1000, litPixels());
}

TEST_F(AnalyserMemory, RefusalsGoWithoutATextThen) {
  ScarceMemory::lastsFor(0);
  EXPECT_EQ(E_INVALIDARG, m_analyser->put_MidPoint(101));
  EXPECT_EQ(E_INVALIDARG, m_analyser->put_FFTLength(3));
  EXPECT_TRUE(FAILED(m_analyser->put_BackColor(0x800000FF)));
  ScarceMemory::isEnough();
}

TEST_F(AnalyserMemory, ShowsBlocksOrDropsThem) {
  ASSERT_NO_FATAL_FAILURE(activate({300, 200}));
  const std::vector<std::int16_t> samples = noiseBlock();
  const auto block = avhost::audioFrames(analyserMono16, samples.data(), 1024);
  for (int i = 0; i < 3; ++i) {
    ASSERT_EQ(S_OK, m_analyser->put_XScaleType(i % 2));
    ScarceMemory::withLessAndLessRefused([&] {
      EXPECT_EQ(S_OK, m_analyser->SendAudioData(block.get()));
      EXPECT_EQ(S_OK, m_analyser->SendAudioData(nullptr));
      EXPECT_EQ(S_OK, m_analyser->Repaint());
      EXPECT_EQ(S_OK, m_analyser->_OnTimer());
    });
  }
  ASSERT_EQ(S_OK, m_analyser->SendAudioData(block.get()));
  EXPECT_LT(1000, litPixels());
}

TEST_F(AnalyserMemory, PaintsAgainWhenThereIsSome) {
  ASSERT_NO_FATAL_FAILURE(activate({300, 200}));
  ASSERT_EQ(S_OK, send(noiseBlock()));
  long size = 300;
  ScarceMemory::withLessAndLessRefused([&] {
    ASSERT_EQ(S_OK, m_container.resize({++size, 200}));  // surface and layout anew
    m_analyser->put_ViewType(size % 4);
    EXPECT_EQ(S_OK, m_analyser->Repaint());
    UpdateWindow(window());
  });
  ASSERT_EQ(S_OK, m_analyser->put_ViewType(0));
  ASSERT_EQ(S_OK, send(noiseBlock()));
  EXPECT_LT(1000, litPixels());
}

}  // namespace
}  // namespace av::test
