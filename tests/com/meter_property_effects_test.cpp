// What follows a put of each of the level meter's properties, as it can be seen from outside: redraws, layouts, rebuilt
// segments, and the ticks that hold, fall or stand still.

#include "host/meter_test.h"

#include <atomic>
#include <ostream>
#include <string>
#include <thread>
#include <vector>

namespace av::test {
namespace {

/// A row of the table as a test parameter.
struct Put {
  const NumberRow* row;
  bool redraws;
};

void PrintTo(const Put& put, std::ostream* out) {
  const std::wstring name = put.row->name;
  *out << std::string(name.begin(), name.end());
}

std::vector<Put> allPuts() {
  std::vector<Put> puts;
  for (const NumberRow& row : meterRows) {
    const bool silent =
        row.dispId == 30 || row.dispId == 31 || row.dispId == 50 || row.dispId == 51 || row.dispId >= 60;
    puts.push_back({&row, !silent});
  }
  return puts;
}

class EachMeterPut : public MeterTest, public testing::WithParamInterface<Put> {
 protected:
  HRESULT putTheOtherValue(IAudioVisualization4Type2* meter) {
    const NumberRow& row = *GetParam().row;
    const Value value(row.type, row.otherValue);
    VARIANT argument = value;
    DISPID put = DISPID_PROPERTYPUT;
    DISPPARAMS parameters{&argument, &put, 1, 1};
    return meter->Invoke(row.dispId, IID_NULL, LOCALE_USER_DEFAULT, DISPATCH_PROPERTYPUT, &parameters, nullptr, nullptr,
                         nullptr);
  }
};

TEST_P(EachMeterPut, AsksAnInactiveContainerForOneRedrawOrNone) {
  avhost::ControlSite* const sink = new avhost::ControlSite(nullptr, {});
  ComPtr<IViewObject> viewObject;
  ASSERT_EQ(S_OK, m_meter.As(&viewObject));
  ASSERT_EQ(S_OK, viewObject->SetAdvise(DVASPECT_CONTENT, 0, sink));
  const unsigned before = sink->viewChanges();
  EXPECT_EQ(S_OK, putTheOtherValue(m_meter.Get()));
  EXPECT_EQ(GetParam().redraws ? 1u : 0u, sink->viewChanges() - before);
  ASSERT_EQ(S_OK, viewObject->SetAdvise(DVASPECT_CONTENT, 0, nullptr));
  EXPECT_EQ(0u, sink->Release());
}

TEST_P(EachMeterPut, DrawsAnActiveControlAtOnceOrNotAtAll) {
  ASSERT_NO_FATAL_FAILURE(activate({300, 200}));
  smear();
  ASSERT_TRUE(isSmeared());
  const Value same(GetParam().row->type, getLong(GetParam().row->dispId));
  EXPECT_EQ(S_OK, invokePut(GetParam().row->dispId, same));
  EXPECT_EQ(!GetParam().redraws, isSmeared());
}

/// Whatever a put changes of geometry, segments and colours, the picture is the one of a meter that was born with it.
TEST_P(EachMeterPut, ShowsWhatAMeterShowsThatHadTheValueBefore) {
  const auto born = createMeter();
  avhost::Container container;
  for (IAudioVisualization4Type2* const meter : {m_meter.Get(), born.Get()})
    ASSERT_EQ(S_OK, meter->put_TickVisible(VARIANT_FALSE));  // ticks fall with the time
  ASSERT_EQ(S_OK, putTheOtherValue(born.Get()));
  ASSERT_NO_FATAL_FAILURE(activate({601, 200}));
  ASSERT_EQ(S_OK, sendNoise(m_meter.Get()));
  ASSERT_EQ(S_OK, putTheOtherValue(m_meter.Get()));

  ASSERT_EQ(S_OK, container.open({.title = L"born", .clientSizePx = {601, 200}, .positionPx = {0, 0}}));
  ASSERT_EQ(S_OK, container.host(born.Get()));
  for (IAudioVisualization4Type2* const meter : {m_meter.Get(), born.Get()}) {
    ASSERT_EQ(S_OK, sendNoise(meter));  // what a put leaves to the next block has happened
    ASSERT_EQ(S_OK, meter->Repaint());
  }
  if (GetParam().row->type != VT_UI4) {
    EXPECT_LT(300, litPixels(pictureOf(container.controlWindow()))) << "nothing is shown that could differ";
  }
  EXPECT_EQ(pictureOf(container.controlWindow()), picture());
  EXPECT_EQ(0u, container.close());
}

INSTANTIATE_TEST_SUITE_P(, EachMeterPut, testing::ValuesIn(allPuts()), [](const auto& put) {
  const std::wstring name = put.param.row->name;
  return std::string(name.begin(), name.end());
});

class MeterEffects : public MeterTest {
 protected:
  void SetUp() override {
    ASSERT_NO_FATAL_FAILURE(MeterTest::SetUp());
    // One unlit colour, so that what is lit and no bar is a tick.
    for (const DISPID id : {17, 18, 19}) ASSERT_EQ(S_OK, invokePut(id, Value(VT_UI4, 0)));
    ASSERT_NO_FATAL_FAILURE(activate({301, 200}));
  }

  /// The row of the highest pixel that is lit, when everything has been drawn; the height without one.
  int highestLitRow() {
    EXPECT_EQ(S_OK, m_meter->Repaint());
    const WindowPicture shown = picture();
    for (int y = 0; y < shown.height; ++y)
      for (int x = 0; x < shown.width; ++x)
        if (shown.at(x, y) != 0) return y;
    return shown.height;
  }

  /// Lifts all ticks and empties the bars below them.
  void raiseTicks() {
    ASSERT_EQ(S_OK, sendNoise(m_meter.Get()));
    ASSERT_EQ(S_OK, sendNoise(m_meter.Get(), 64));
  }

  bool fallsWithin(DWORD limitMs) {
    const int before = highestLitRow();
    return avhost::pumpUntil(limitMs, [&] { return highestLitRow() > before; });
  }
};

TEST_F(MeterEffects, FreshLinesHoldTheirTicksForASecondWhateverTickDelayTimeReads) {
  ASSERT_EQ(200, getLong(30));
  const DWORD start = GetTickCount();
  ASSERT_NO_FATAL_FAILURE(raiseTicks());
  ASSERT_TRUE(fallsWithin(10000));
  EXPECT_GE(GetTickCount() - start, 1000u - 20u);
}

TEST_F(MeterEffects, APutOfTickDelayTimeCountsForTheLinesThatThereAre) {
  ASSERT_EQ(S_OK, m_meter->put_TickDelayTime(3000));
  const DWORD start = GetTickCount();
  ASSERT_NO_FATAL_FAILURE(raiseTicks());
  ASSERT_TRUE(fallsWithin(20000));
  EXPECT_GE(GetTickCount() - start, 3000u - 20u);
  ASSERT_EQ(S_OK, m_meter->put_LineCount(50));  // new lines
  EXPECT_EQ(3000, getLong(30));
  const DWORD again = GetTickCount();
  ASSERT_NO_FATAL_FAILURE(raiseTicks());
  ASSERT_TRUE(fallsWithin(20000));
  EXPECT_GE(GetTickCount() - again, 1000u - 20u);
}

TEST_F(MeterEffects, ATickReleaseTimeOfZeroOrLessLetsThemFallFast) {
  for (const LONG periodMs : {0L, -1L, -2147483647L - 1}) {
    ASSERT_EQ(S_OK, m_meter->put_TickReleaseTime(periodMs));
    ASSERT_EQ(S_OK, m_meter->put_TickDelayTime(0));
    ASSERT_NO_FATAL_FAILURE(raiseTicks());
    EXPECT_TRUE(avhost::pumpUntil(10000, [&] { return highestLitRow() >= 197; })) << periodMs;
  }
}

TEST_F(MeterEffects, ALongTickReleaseTimeHoldsThem) {
  for (const LONG periodMs : {10000L, 2147483647L}) {
    ASSERT_EQ(S_OK, m_meter->put_TickDelayTime(0));
    ASSERT_EQ(S_OK, m_meter->put_TickReleaseTime(periodMs));
    avhost::pumpMessages(100);  // the sleep of 10 ms that was under way, or none
    ASSERT_NO_FATAL_FAILURE(raiseTicks());
    EXPECT_FALSE(fallsWithin(500)) << periodMs;
    const DWORD start = GetTickCount();
    ASSERT_EQ(0u, m_container.close());
    ASSERT_EQ(0u, m_meter.Reset());
    EXPECT_LT(GetTickCount() - start, 5000u) << "the end waits for no such sleep";
    m_meter = createMeter();
    ASSERT_NO_FATAL_FAILURE(activate({301, 200}));
  }
}

TEST_F(MeterEffects, TicksThatAreSwitchedOffAreNotDrawnAndDoNotFall) {
  ASSERT_EQ(S_OK, m_meter->put_TickDelayTime(0));
  ASSERT_EQ(S_OK, m_meter->put_TickReleaseTime(50));
  ASSERT_NO_FATAL_FAILURE(raiseTicks());
  const int before = highestLitRow();
  ASSERT_GT(100, before);
  ASSERT_EQ(S_OK, m_meter->put_TickVisible(VARIANT_FALSE));
  EXPECT_EQ(200, highestLitRow());
  avhost::pumpMessages(1000);
  ASSERT_EQ(S_OK, m_meter->put_TickVisible(VARIANT_TRUE));
  const int after = highestLitRow();
  EXPECT_LT(after, before + 20) << "twenty steps of a decibel, 44 rows, further down otherwise";
  EXPECT_TRUE(fallsWithin(10000)) << "and now they fall again";
}

TEST_F(MeterEffects, APutOfTickReleaseTimeLetsHiddenTicksFall) {
  ASSERT_EQ(S_OK, m_meter->put_TickDelayTime(0));
  ASSERT_EQ(S_OK, m_meter->put_TickVisible(VARIANT_FALSE));
  ASSERT_NO_FATAL_FAILURE(raiseTicks());
  ASSERT_EQ(S_OK, m_meter->put_TickReleaseTime(1));
  avhost::pumpMessages(1000);
  EXPECT_EQ(200, highestLitRow());
  EXPECT_EQ(0, getLong(32));
  ASSERT_EQ(S_OK, m_meter->put_TickVisible(VARIANT_TRUE));
  EXPECT_LT(150, highestLitRow()) << "they have fallen meanwhile";
}

TEST_F(MeterEffects, EveryValueButZeroShowsTheTicks) {
  ASSERT_EQ(S_OK, m_meter->put_TickDelayTime(1000000));
  ASSERT_NO_FATAL_FAILURE(raiseTicks());
  for (const VARIANT_BOOL value : {VARIANT_BOOL{1}, VARIANT_BOOL{2}, VARIANT_BOOL{-2}, VARIANT_TRUE}) {
    ASSERT_EQ(S_OK, m_meter->put_TickVisible(VARIANT_FALSE));
    ASSERT_EQ(200, highestLitRow());
    ASSERT_EQ(S_OK, m_meter->put_TickVisible(value));
    EXPECT_GT(100, highestLitRow()) << value;
  }
}

TEST_F(MeterEffects, NewLinesAreEmpty) {
  ASSERT_EQ(S_OK, sendNoise(m_meter.Get()));
  ASSERT_GT(100, highestLitRow());
  ASSERT_EQ(S_OK, m_meter->put_LineCount(99));
  EXPECT_EQ(200, highestLitRow());
}

/// While it is told of a change, another thread has to get a block through that needs every lock of the meter.
class BlockSendingSink final : public IAdviseSink {
 public:
  explicit BlockSendingSink(IAudioVisualization4Type2* meter) : m_meter(meter) {}

  STDMETHODIMP QueryInterface(REFIID iid, void** object) override {
    *object = iid == IID_IUnknown || iid == IID_IAdviseSink ? this : nullptr;
    return *object ? S_OK : E_NOINTERFACE;
  }
  STDMETHODIMP_(ULONG) AddRef() override { return 2; }
  STDMETHODIMP_(ULONG) Release() override { return 1; }
  STDMETHODIMP_(void) OnDataChange(FORMATETC*, STGMEDIUM*) override {}
  STDMETHODIMP_(void) OnViewChange(DWORD, LONG) override {
    if (m_inside.exchange(true)) return;
    ++notices;
    const HANDLE done = CreateEventW(nullptr, TRUE, FALSE, nullptr);
    m_threads.emplace_back([this, done] {
      sendNoise(m_meter);
      SetEvent(done);
    });
    if (WaitForSingleObject(done, 5000) == WAIT_OBJECT_0) ++blocksThrough;
    m_events.push_back(done);
    m_inside = false;
  }
  STDMETHODIMP_(void) OnRename(IMoniker*) override {}
  STDMETHODIMP_(void) OnSave() override {}
  STDMETHODIMP_(void) OnClose() override {}

  void finish() {
    for (std::thread& thread : m_threads) thread.join();
    for (const HANDLE event : m_events) CloseHandle(event);
  }

  int notices = 0;
  int blocksThrough = 0;

 private:
  IAudioVisualization4Type2* m_meter;
  std::vector<std::thread> m_threads;
  std::vector<HANDLE> m_events;
  std::atomic<bool> m_inside{false};
};

class InactiveMeter : public MeterTest {};

TEST_F(InactiveMeter, AsksItsContainerForARedrawWithNoLockHeld) {
  BlockSendingSink sink(m_meter.Get());
  ComPtr<IViewObject> viewObject;
  ASSERT_EQ(S_OK, m_meter.As(&viewObject));
  ASSERT_EQ(S_OK, viewObject->SetAdvise(DVASPECT_CONTENT, 0, &sink));
  EXPECT_EQ(S_OK, m_meter->put_LineType(4));
  EXPECT_EQ(S_OK, m_meter->put_LineCount(10));
  EXPECT_EQ(S_OK, m_meter->put_TickVisible(VARIANT_FALSE));
  EXPECT_EQ(S_OK, m_meter->put_BackColor(7));
  EXPECT_EQ(S_OK, m_meter->Repaint());
  EXPECT_EQ(5, sink.notices);
  EXPECT_EQ(5, sink.blocksThrough);
  ASSERT_EQ(S_OK, viewObject->SetAdvise(DVASPECT_CONTENT, 0, nullptr));
  sink.finish();
}

}  // namespace
}  // namespace av::test
