// The finished library when memory runs out, or when GDI and GDI+ fail: each call in turn, once and for ever. Nothing
// crashes, nothing is lost, puts that fail keep the old value, a picture is whole or stays the one before, and the next
// call works.

#include "host/analyser_test.h"
#include "host/audio_buffers.h"
#include "host/each_control_test.h"
#include "host/first_exception.h"
#include "host/meter_test.h"
#include "host/view_test.h"
#include "host/window_picture.h"
#include "support/win/failing_imports.h"
#include "support/win/resource_probes.h"

#include <array>
#include <functional>
#include <memory>
#include <span>
#include <string>
#include <tuple>
#include <vector>

namespace av::test {
namespace {

using Kind = FailingImports::Kind;
using Failing = FailingImports::Failing;
using Step = std::function<void()>;

constexpr DISPID sendAudioDataId = 0xaae62;
constexpr DISPID repaintId = 0xaae63;
constexpr DISPID onTimerId = 0xaae61;

/// Two states of a control that look different, as puts of numbers.
struct Change {
  DISPID dispId;
  LONG from;
  LONG to;
};

std::span<const NumberRow> rowsOf(int control) {
  if (control == 1) return numberRows;
  if (control == 2) return meterRows;
  return analyserRows;
}

/// Changes of everything that is drawn in a way of its own.
std::vector<Change> changesOf(int control) {
  if (control == 1) {
    return {{5, 1, 2}, {5, 2, 3}, {5, 5, 6}, {5, 6, 7}, {25, 0, -1}, {20, 0, -1}, {31, 0, 2}, {23, 0, 20}};
  }
  if (control == 2) return {{7, 0, 1}, {7, 0, 2}, {7, 0, 4}, {45, 0, 2}, {41, 0, 1}, {33, 2, 5}};
  return {{40, 0, 1}, {40, 0, 2}, {6, 0, -1}, {7, 0, -1}, {29, 0, 1}, {39, 0, 1}, {36, 0, 1}};
}

class FailingCallsTest : public EachControlTest {
 protected:
  /// Which of the calls fail one after the other: all in the full tests, else fewer and fewer.
  virtual long next(long before) const { return before < 3 ? before + 1 : 2 * before + 1; }

  void SetUp() override {
    ASSERT_NO_FATAL_FAILURE(EachControlTest::SetUp());
    m_dispatch = as<IDispatch>();
    meetAnException(m_dispatch.Get());
  }

  void TearDown() override {
    m_imports.reset();
    m_dispatch.Reset();
    EachControlTest::TearDown();
  }

  void fail(Kind kind) {
    m_imports = std::make_unique<FailingImports>(m_library.module(), kind);
    ASSERT_LT(0u, m_imports->count());
  }

  HRESULT call(DISPID id, WORD flags, VARIANT* arguments, UINT count, VARIANT* result = nullptr) {
    DISPID put = DISPID_PROPERTYPUT;
    const bool puts = (flags & DISPATCH_PROPERTYPUT) != 0;
    DISPPARAMS parameters{arguments, puts ? &put : nullptr, count, puts ? 1u : 0u};
    return m_dispatch->Invoke(id, IID_NULL, LOCALE_USER_DEFAULT, flags, &parameters, result, nullptr, nullptr);
  }

  HRESULT put(DISPID id, VARTYPE type, LONG number) {
    Value value(type, number);
    return call(id, DISPATCH_PROPERTYPUT, &value, 1);
  }

  LONG get(DISPID id) {
    Value value;
    EXPECT_EQ(S_OK, call(id, DISPATCH_PROPERTYGET, nullptr, 0, &value)) << id;
    EXPECT_EQ(S_OK, VariantChangeType(&value, &value, 0, VT_I4)) << id;
    return V_I4(&value);
  }

  HRESULT send(IUnknown* data) {
    VARIANT argument;
    V_VT(&argument) = VT_UNKNOWN;
    V_UNKNOWN(&argument) = data;
    return call(sendAudioDataId, DISPATCH_METHOD, &argument, 1);
  }

  HRESULT sendSound() {
    const auto samples = noise(4096);
    return send(avhost::audioFrames(meterFormat, samples.data(), 8192).get());
  }

  /// Active, with sound, and with nothing that moves by itself.
  void show(SIZE size) {
    switch (GetParam()) {
      case 1:
        ASSERT_EQ(S_OK, put(6, VT_BOOL, VARIANT_FALSE));  // no smoothing
        ASSERT_EQ(S_OK, put(40, VT_I4, 64));              // few samples, each of which may be a line
        break;
      case 2: ASSERT_EQ(S_OK, put(32, VT_BOOL, VARIANT_FALSE)); break;  // no ticks
      default:
        ASSERT_EQ(S_OK, put(24, VT_BOOL, VARIANT_FALSE));
        ASSERT_EQ(S_OK, put(35, VT_BOOL, VARIANT_FALSE));  // columns do not fall
        ASSERT_EQ(S_OK, put(28, VT_I4, 0xC08040));         // a border of another colour than pens have at first
        break;
    }
    ASSERT_EQ(S_OK, m_container.open({.title = L"test", .clientSizePx = size, .positionPx = {0, 0}}));
    ASSERT_EQ(S_OK, m_container.host(m_control.Get()));
    ASSERT_EQ(S_OK, sendSound());
    draw();
  }

  void draw() {
    const HWND window = m_container.controlWindow();
    InvalidateRect(window, nullptr, FALSE);
    UpdateWindow(window);
  }

  WindowPicture picture() { return pictureOf(m_container.controlWindow()); }

  /// Runs `step` with one call after the other failing, until it makes no more of them. Afterwards `verify` is run, with
  /// all calls succeeding again. Returns how many calls it makes when none fails, or so.
  long withEachCallFailing(Failing failing, const Step& prepare, const Step& step, const Step& verify) {
    for (long before = 0;; before = next(before)) {
      prepare();
      m_imports->failAfter(before, failing);
      step();
      const long failures = m_imports->stop();
      verify();
      if (failures == 0 || HasFailure()) return before;
      if (before > 100000) ADD_FAILURE() << "it never has enough";
    }
  }

  ComPtr<IDispatch> m_dispatch;
  std::unique_ptr<FailingImports> m_imports;
};

/// What the tests do with either kind of failure.
class EveryFailure : public FailingCallsTest {
 protected:
  void makeControls(Kind kind) {
    fail(kind);
    static const CLSID classes[] = {CLSID_CAudioVisualization4Type1, CLSID_CAudioVisualization4Type2,
                                    CLSID_CAudioVisualization4Type3};
    const int spare = spareGdiObjects();
    for (const Failing failing : {Failing::once, Failing::forEver}) {
      ComPtr<IOleObject> made;
      HRESULT result = E_FAIL;
      const long calls = withEachCallFailing(
          failing, [] {}, [&] { result = m_library.create(classes[GetParam() - 1], made.ReleaseAndGetAddressOf()); },
          [&] {
            EXPECT_EQ(SUCCEEDED(result), made != nullptr);
            EXPECT_TRUE(result == S_OK || result == E_OUTOFMEMORY) << std::hex << result;
            made.Reset();
          });
      EXPECT_LT(0, calls) << "nothing is tested";
    }
    EXPECT_EQ(spare, spareGdiObjects());
  }

  void putEveryRow(Kind kind) {
    ASSERT_NO_FATAL_FAILURE(show({301, 201}));
    fail(kind);
    for (const NumberRow& row : rowsOf(GetParam())) {
      for (const Failing failing : {Failing::once, Failing::forEver}) {
        const LONG old = get(row.dispId);
        HRESULT result = E_FAIL;
        withEachCallFailing(
            failing, [&] { EXPECT_EQ(S_OK, put(row.dispId, row.type, old)); },
            [&] { result = put(row.dispId, row.type, row.otherValue); },
            [&] {
              EXPECT_TRUE(result == S_OK || result == E_OUTOFMEMORY || result == DISP_E_EXCEPTION)
                  << std::hex << result;
              const LONG now = get(row.dispId);
              EXPECT_TRUE(now == row.otherValue || now == old) << row.dispId << " is " << now;
              if (result == S_OK) {
                EXPECT_EQ(row.otherValue, now) << row.dispId;
              }
            });
        EXPECT_EQ(S_OK, put(row.dispId, row.type, old));
      }
    }
    EXPECT_EQ(S_OK, sendSound());
  }

  void pushBlocks(Kind kind) {
    ASSERT_NO_FATAL_FAILURE(show({300, 200}));
    const WindowPicture expected = picture();
    fail(kind);
    const auto samples = noise(4096);
    const auto block = avhost::audioFrames(meterFormat, samples.data(), 8192);
    for (const Failing failing : {Failing::once, Failing::forEver}) {
      withEachCallFailing(
          failing, [] {},
          [&] {
            EXPECT_EQ(S_OK, send(block.get()));
            EXPECT_EQ(S_OK, call(repaintId, DISPATCH_METHOD, nullptr, 0));
            EXPECT_EQ(S_OK, call(onTimerId, DISPATCH_METHOD, nullptr, 0));
          },
          [&] {
            EXPECT_EQ(S_OK, send(block.get()));
            draw();
            EXPECT_TRUE(expected == picture());
          });
    }
  }

  void changePictures(Kind kind) {
    ASSERT_NO_FATAL_FAILURE(show({300, 200}));
    fail(kind);
    const auto show = [&](DISPID dispId, LONG value) {
      EXPECT_EQ(S_OK, put(dispId, VT_I4, value));
      EXPECT_EQ(S_OK, sendSound());
      draw();
      return picture();
    };
    // What is made when it is first needed and kept.
    for (const Change& change : changesOf(GetParam())) {
      for (const LONG value : {change.to, change.from}) show(change.dispId, value);
    }
    const int spare = spareGdiObjects();
    for (const Change& change : changesOf(GetParam())) {
      const auto shown = [&](LONG value) { return show(change.dispId, value); };
      const WindowPicture to = shown(change.to);
      const WindowPicture from = shown(change.from);
      // Some changes move the sound with the next block only.
      EXPECT_EQ(S_OK, put(change.dispId, VT_I4, change.to));
      draw();
      const WindowPicture before = picture();
      EXPECT_FALSE(from == to) << change.dispId << ": nothing is tested";
      for (const Failing failing : {Failing::once, Failing::forEver}) {
        const long calls = withEachCallFailing(
            failing, [&] { EXPECT_TRUE(from == shown(change.from)); },
            [&] {
              put(change.dispId, VT_I4, change.to);
              draw();
            },
            [&] {
              const WindowPicture now = picture();
              EXPECT_TRUE(now == from || now == before) << change.dispId << " to " << change.to << ": neither picture";
              EXPECT_TRUE(to == shown(change.to)) << change.dispId << " to " << change.to;
            });
        EXPECT_TRUE(calls > 0 || kind == Kind::memory) << change.dispId << ": no call is tested";
      }
      EXPECT_EQ(S_OK, put(change.dispId, VT_I4, change.from));
    }
    draw();
    EXPECT_EQ(spare, spareGdiObjects());
  }

  void resizeIt(Kind kind) {
    ASSERT_NO_FATAL_FAILURE(show({300, 200}));
    const WindowPicture small = picture();
    ASSERT_EQ(S_OK, m_container.resize({340, 230}));
    ASSERT_EQ(S_OK, sendSound());
    draw();
    const WindowPicture large = picture();
    fail(kind);
    for (const Failing failing : {Failing::once, Failing::forEver}) {
      const long calls = withEachCallFailing(
          failing,
          [&] {
            EXPECT_EQ(S_OK, m_container.resize({300, 200}));
            EXPECT_EQ(S_OK, sendSound());
            draw();
            EXPECT_TRUE(small == picture());
          },
          [&] {
            m_container.resize({340, 230});
            draw();
          },
          [&] {
            EXPECT_EQ(S_OK, sendSound());
            draw();
            EXPECT_TRUE(large == picture());
          });
      EXPECT_TRUE(calls > 0 || kind == Kind::memory) << "nothing is tested";
    }
  }
};

/// The same with each single call.
class FullEveryFailure : public EveryFailure {
 protected:
  long next(long before) const override { return before + 1; }
};

TEST_P(EveryFailure, OfMemoryWhileAControlIsMade) { makeControls(Kind::memory); }
TEST_P(EveryFailure, OfMemoryInAPut) { putEveryRow(Kind::memory); }
TEST_P(EveryFailure, OfMemoryInABlock) { pushBlocks(Kind::memory); }
TEST_P(EveryFailure, OfMemoryInAChangeOfThePicture) { changePictures(Kind::memory); }
TEST_P(EveryFailure, OfMemoryInAResize) { resizeIt(Kind::memory); }
TEST_P(EveryFailure, OfDrawingWhileAControlIsMade) { makeControls(Kind::drawing); }
TEST_P(EveryFailure, OfDrawingInABlock) { pushBlocks(Kind::drawing); }
TEST_P(EveryFailure, OfDrawingInAChangeOfThePicture) { changePictures(Kind::drawing); }
TEST_P(EveryFailure, OfDrawingInAResize) { resizeIt(Kind::drawing); }
INSTANTIATE_TEST_SUITE_P(, EveryFailure, eachControl);

TEST_P(FullEveryFailure, OfMemoryWhileAControlIsMade) { makeControls(Kind::memory); }
TEST_P(FullEveryFailure, OfMemoryInAPut) { putEveryRow(Kind::memory); }
TEST_P(FullEveryFailure, OfMemoryInABlock) { pushBlocks(Kind::memory); }
TEST_P(FullEveryFailure, OfMemoryInAChangeOfThePicture) { changePictures(Kind::memory); }
TEST_P(FullEveryFailure, OfMemoryInAResize) { resizeIt(Kind::memory); }
TEST_P(FullEveryFailure, OfDrawingWhileAControlIsMade) { makeControls(Kind::drawing); }
TEST_P(FullEveryFailure, OfDrawingInAPut) { putEveryRow(Kind::drawing); }
TEST_P(FullEveryFailure, OfDrawingInABlock) { pushBlocks(Kind::drawing); }
TEST_P(FullEveryFailure, OfDrawingInAChangeOfThePicture) { changePictures(Kind::drawing); }
TEST_P(FullEveryFailure, OfDrawingInAResize) { resizeIt(Kind::drawing); }
INSTANTIATE_TEST_SUITE_P(, FullEveryFailure, eachControl);

}  // namespace
}  // namespace av::test
