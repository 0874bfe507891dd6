// The view's mouse events: which message sends which, with which arguments. The expected values come from the formulas
// in wider precision (support/pointer_oracle.h).

#include "host/view_mouse.h"
#include "host/audio_buffers.h"
#include "host/view_test.h"

#include <mmreg.h>

namespace av::test {
namespace {

class ViewMouse : public ViewTest {
 protected:
  void TearDown() override {
    ViewTest::TearDown();
    EXPECT_EQ(1u, m_sink.references);
  }

  void show(SIZE clientSizePx) {
    ASSERT_NO_FATAL_FAILURE(activate(clientSizePx));
    ASSERT_NE(0u, connect(m_view.Get(), m_sink));
    m_window = m_container.controlWindow();
  }

  LRESULT send(UINT message, int x, int y, WPARAM wParam = 0) {
    return SendMessageW(m_window, message, wParam, MAKELPARAM(x, y));
  }

  /// The events since the last look.
  std::vector<EventSink::Event> take() { return std::exchange(m_sink.events, {}); }

  /// Moves, presses and releases at every place that matters, and compares what is read there.
  void expectReadings(const PointerOracle& view) {
    const int right = view.plotWidthPx(), bottom = view.plotHeightPx();
    for (const int x : {0, 1, right / 3, right / 2, right - 1, right, view.clientWidthPx - 1, -7}) {
      for (const int y : {0, 1, bottom / 3, bottom / 2, bottom - 1, bottom, view.clientHeightPx - 1, -7}) {
        take();
        send(WM_MOUSEMOVE, x, y);
        const bool moves = x < right && y < bottom;
        ASSERT_EQ(moves ? 1u : 0u, m_sink.events.size()) << x << ", " << y;
        if (moves) {
          ASSERT_TRUE(reads(view, mouseMove, x, y, m_sink.events[0]));
        }
        take();
        send(WM_LBUTTONDOWN, x, y, MK_LBUTTON);
        send(WM_LBUTTONUP, x, y);
        ASSERT_EQ((std::vector<DISPID>{mouseDown, mouseUp, mouseClick}), idsOf(m_sink.events));
        ASSERT_TRUE(reads(view, mouseDown, x, y, m_sink.events[0]));
        ASSERT_TRUE(reads(view, mouseUp, x, y, m_sink.events[1]));
        ASSERT_EQ((EventSink::Event{mouseClick, {x, y}}), m_sink.events[2]);
      }
    }
    take();
  }

  /// A block of one frame: too short to be seen, but it sets sample rate and dynamic range.
  void sendFormat(WORD bits, DWORD sampleRateHz) {
    const auto frameBytes = static_cast<WORD>(bits / 8);
    const WAVEFORMATEX format{WAVE_FORMAT_PCM, 1, sampleRateHz, sampleRateHz * frameBytes, frameBytes, bits, 0};
    const std::int32_t silence = 0;
    ASSERT_EQ(S_OK, m_view->SendAudioData(avhost::audioFrames(format, &silence, frameBytes).get()));
  }

  ViewSink m_sink;
  HWND m_window = nullptr;
};

TEST_F(ViewMouse, EachMessageSendsItsEventsAndIsAnsweredWithZero) {
  ASSERT_NO_FATAL_FAILURE(show({400, 300}));
  const PointerOracle view = oracleOf(m_view.Get(), m_window);
  take();
  EXPECT_EQ(0, send(WM_LBUTTONDOWN, 20, 30, MK_LBUTTON));
  ASSERT_EQ(1u, m_sink.events.size());
  EXPECT_TRUE(reads(view, mouseDown, 20, 30, take()[0]));
  EXPECT_EQ(0, send(WM_LBUTTONUP, 21, 31));
  ASSERT_EQ(2u, m_sink.events.size());
  EXPECT_TRUE(reads(view, mouseUp, 21, 31, m_sink.events[0]));
  EXPECT_EQ((EventSink::Event{mouseClick, {21, 31}}), take()[1]);
  EXPECT_EQ(0, send(WM_LBUTTONDBLCLK, 22, 32, MK_LBUTTON));
  ASSERT_EQ(1u, m_sink.events.size());
  EXPECT_EQ((EventSink::Event{mouseDblClick, {}}), take()[0]);
  EXPECT_EQ(0, send(WM_MOUSEMOVE, 23, 33));
  ASSERT_EQ(1u, m_sink.events.size());
  EXPECT_TRUE(reads(view, mouseMove, 23, 33, take()[0]));
  EXPECT_EQ(0, send(WM_MOUSEMOVE, view.plotWidthPx(), 33)) << "over the scale it sends nothing, but is handled";
  EXPECT_TRUE(m_sink.events.empty());
}

TEST_F(ViewMouse, AReleaseIsAClickWhereverThePressWas) {
  ASSERT_NO_FATAL_FAILURE(show({400, 300}));
  take();
  send(WM_LBUTTONUP, 5, 6);
  send(WM_LBUTTONUP, 7, 8);
  EXPECT_EQ((std::vector<DISPID>{mouseUp, mouseClick, mouseUp, mouseClick}), idsOf(take()));
  send(WM_LBUTTONDOWN, 9, 10, MK_LBUTTON);
  EXPECT_NE(m_window, GetCapture()) << "the mouse is not captured";
  send(WM_MOUSELEAVE, 0, 0);
  EXPECT_EQ((std::vector<DISPID>{mouseDown}), idsOf(take()));
}

TEST_F(ViewMouse, OtherButtonsAndKeysSendNothing) {
  ASSERT_NO_FATAL_FAILURE(show({400, 300}));
  take();
  for (const UINT message : {WM_RBUTTONDOWN,   WM_RBUTTONUP,   WM_RBUTTONDBLCLK, WM_MBUTTONDOWN,    WM_MBUTTONUP,
                             WM_MBUTTONDBLCLK, WM_XBUTTONDOWN, WM_XBUTTONUP,     WM_XBUTTONDBLCLK,  WM_MOUSEWHEEL,
                             WM_MOUSEHWHEEL,   WM_MOUSELEAVE,  WM_MOUSEHOVER,    WM_CAPTURECHANGED, WM_NCLBUTTONDOWN,
                             WM_NCMOUSEMOVE,   WM_KEYDOWN,     WM_KEYUP,         WM_CHAR,           WM_CONTEXTMENU}) {
    send(message, 30, 40);
    EXPECT_TRUE(m_sink.events.empty()) << message;
  }
}

TEST_F(ViewMouse, TheWaveformReadsItsMirroredLevels) {
  ASSERT_NO_FATAL_FAILURE(show({640, 400}));
  PointerOracle view = oracleOf(m_view.Get(), m_window);
  if (view.plotHeightPx() % 2) {  // the centre line has to be a row of pixels
    ASSERT_EQ(S_OK, m_container.resize({640, 401}));
    view = oracleOf(m_view.Get(), m_window);
  }
  const int centre = view.plotHeightPx() / 2;
  const auto levelAt = [&](int y) {
    take();
    send(WM_LBUTTONDOWN, 10, y, MK_LBUTTON);
    return take()[0].arguments[3];
  };
  EXPECT_EQ(0, levelAt(0));
  EXPECT_EQ(-89, levelAt(centre));
  EXPECT_EQ(0, levelAt(2 * centre));
  EXPECT_EQ(levelAt(centre - 50), levelAt(centre + 50));
}

TEST_F(ViewMouse, BothFrequencyAxesEndAtHalfTheSampleRate) {
  ASSERT_NO_FATAL_FAILURE(show({640, 400}));
  ASSERT_EQ(S_OK, m_view->put_VisualizationType(2));
  for (const LONG axis : {1, 2}) {
    ASSERT_EQ(S_OK, m_view->put_FFTViewType(axis));
    const PointerOracle view = oracleOf(m_view.Get(), m_window);
    take();
    send(WM_LBUTTONDOWN, view.plotWidthPx(), 0, MK_LBUTTON);
    EXPECT_EQ(22050, take()[0].arguments[2]);
    send(WM_LBUTTONDOWN, 0, view.plotHeightPx(), MK_LBUTTON);
    const EventSink::Event bottomLeft = take()[0];
    // On the octave axis 22050 ÷ 1024 + 0.5: the reading has one octave more than the curve.
    EXPECT_EQ(axis == 1 ? 0 : 22, bottomLeft.arguments[2]);
    EXPECT_EQ(-89, bottomLeft.arguments[3]) << "-90.3 + 0.5";
  }
}

TEST_F(ViewMouse, EveryTypeReadsByItsRuleOnEveryAxis) {
  ASSERT_NO_FATAL_FAILURE(show({333, 222}));
  for (const LONG type : {1, 2, 3, 4, 5, 6, 7, 0, 8, -3}) {
    for (const LONG axis : {1, 2, 0}) {
      SCOPED_TRACE(testing::Message() << "type " << type << ", axis " << axis);
      ASSERT_EQ(S_OK, m_view->put_VisualizationType(type));
      ASSERT_EQ(S_OK, m_view->put_FFTViewType(axis));
      ASSERT_NO_FATAL_FAILURE(expectReadings(oracleOf(m_view.Get(), m_window)));
    }
  }
}

TEST_F(ViewMouse, HiddenScalesLeaveTheirRoomToThePlot) {
  ASSERT_NO_FATAL_FAILURE(show({333, 222}));
  for (const LONG type : {1, 2}) {
    ASSERT_EQ(S_OK, m_view->put_VisualizationType(type));
    for (const VARIANT_BOOL x : {VARIANT_FALSE, VARIANT_TRUE}) {
      for (const VARIANT_BOOL y : {VARIANT_FALSE, VARIANT_TRUE}) {
        SCOPED_TRACE(testing::Message() << "type " << type << ", scales " << x << ", " << y);
        ASSERT_EQ(S_OK, m_view->put_ScaleXVisible(x));
        ASSERT_EQ(S_OK, m_view->put_ScaleYVisible(y));
        const PointerOracle view = oracleOf(m_view.Get(), m_window);
        ASSERT_EQ(x != 0, view.xScaleHeightPx > 0);
        ASSERT_EQ(y != 0, view.yScaleWidthPx > 0);
        ASSERT_NO_FATAL_FAILURE(expectReadings(view));
      }
    }
  }
}

TEST_F(ViewMouse, ScalesWithoutRoomTakeNothingOff) {
  ASSERT_NO_FATAL_FAILURE(show({100, 60}));
  // The ten digits of the top label need more than half of the width, which they do not get.
  ASSERT_EQ(S_OK, m_view->put_ScaleYMax(2000000000));
  const PointerOracle view = oracleOf(m_view.Get(), m_window);
  ASSERT_EQ(0, view.yScaleWidthPx);
  ASSERT_NO_FATAL_FAILURE(expectReadings(view));
}

TEST_F(ViewMouse, WindowSizeAndLimitsOfTheScaleEnterTheReading) {
  ASSERT_NO_FATAL_FAILURE(show({400, 300}));
  struct Case {
    LONG windowSize, minimum, maximum;
  };
  for (const Case& c : {Case{64, 0, 100}, Case{16384, 0, 100}, Case{1024, 20, 70}, Case{1024, -50, 150},
                        Case{1024, 100, 0}, Case{1024, 50, 50}}) {
    for (const LONG type : {1, 2}) {
      for (const LONG axis : {1, 2}) {
        SCOPED_TRACE(testing::Message() << "N " << c.windowSize << ", " << c.minimum << " to " << c.maximum << ", type "
                                        << type << ", axis " << axis);
        ASSERT_EQ(S_OK, m_view->put_VisualizationType(type));
        ASSERT_EQ(S_OK, m_view->put_FFTViewType(axis));
        ASSERT_EQ(S_OK, m_view->put_FFTWindowSize(c.windowSize));
        ASSERT_EQ(S_OK, m_view->put_ScaleYMin(c.minimum));
        ASSERT_EQ(S_OK, m_view->put_ScaleYMax(c.maximum));
        ASSERT_NO_FATAL_FAILURE(expectReadings(oracleOf(m_view.Get(), m_window)));
      }
    }
  }
}

TEST_F(ViewMouse, BlocksSetTheRateAndTheRangeThatAreRead) {
  ASSERT_NO_FATAL_FAILURE(show({400, 300}));
  struct Format {
    WORD bits;
    DWORD rateHz;
    double fullScale;
  };
  for (const Format& format : {Format{8, 8000, 127.0}, Format{16, 48000, 32767.0}, Format{24, 192000, 8388607.0},
                               Format{32, 11025, 2147483647.0}, Format{16, 1, 32767.0}}) {
    for (const LONG type : {1, 2}) {
      SCOPED_TRACE(testing::Message() << format.bits << " bits, " << format.rateHz << " Hz, type " << type);
      ASSERT_EQ(S_OK, m_view->put_VisualizationType(type));
      ASSERT_NO_FATAL_FAILURE(sendFormat(format.bits, format.rateHz));
      PointerOracle view = oracleOf(m_view.Get(), m_window);
      view.sampleRateHz = format.rateHz;
      view.dynamicRangeDb = 20 * std::log10(format.fullScale);
      ASSERT_NO_FATAL_FAILURE(expectReadings(view));
    }
  }
  ASSERT_EQ(S_OK, m_view->put_DynamicRange(60));
  PointerOracle view = oracleOf(m_view.Get(), m_window);
  view.sampleRateHz = 1;
  view.dynamicRangeDb = 60;
  ASSERT_NO_FATAL_FAILURE(expectReadings(view));
}

TEST_F(ViewMouse, CoordinatesAreSignedSixteenBitNumbers) {
  ASSERT_NO_FATAL_FAILURE(show({400, 300}));
  for (const LONG type : {1, 2}) {
    ASSERT_EQ(S_OK, m_view->put_VisualizationType(type));
    const PointerOracle view = oracleOf(m_view.Get(), m_window);
    for (const POINT at : {POINT{-1, -1}, {-32768, -32768}, {32767, 32767}, {-32768, 32767}, {32767, -32768}}) {
      take();
      send(WM_LBUTTONDOWN, at.x, at.y, MK_LBUTTON);
      ASSERT_EQ(1u, m_sink.events.size());
      EXPECT_TRUE(reads(view, mouseDown, at.x, at.y, m_sink.events[0]));
      take();
      send(WM_LBUTTONUP, at.x, at.y);
      ASSERT_EQ(2u, m_sink.events.size());
      EXPECT_EQ((EventSink::Event{mouseClick, {at.x, at.y}}), m_sink.events[1]);
      take();
      // Only the right and the bottom end the plot: hosts that capture the mouse follow it out of the other two sides.
      send(WM_MOUSEMOVE, at.x, at.y, MK_LBUTTON);
      ASSERT_EQ(at.x < 0 && at.y < 0 ? 1u : 0u, m_sink.events.size());
      if (!m_sink.events.empty()) {
        EXPECT_TRUE(reads(view, mouseMove, at.x, at.y, m_sink.events[0]));
      }
    }
  }
}

TEST_F(ViewMouse, FrozenEventsAreDropped) {
  ASSERT_NO_FATAL_FAILURE(show({400, 300}));
  ComPtr<IOleControl> control;
  ASSERT_EQ(S_OK, m_view.As(&control));
  take();
  ASSERT_EQ(S_OK, control->FreezeEvents(TRUE));
  EXPECT_EQ(0, send(WM_LBUTTONDOWN, 5, 6, MK_LBUTTON));
  EXPECT_EQ(0, send(WM_LBUTTONUP, 5, 6));
  EXPECT_EQ(0, send(WM_MOUSEMOVE, 5, 6));
  EXPECT_EQ(0, send(WM_LBUTTONDBLCLK, 5, 6, MK_LBUTTON));
  ASSERT_EQ(S_OK, control->FreezeEvents(FALSE));
  EXPECT_TRUE(m_sink.events.empty()) << "they are not kept for later";
  send(WM_LBUTTONUP, 5, 6);
  EXPECT_EQ((std::vector<DISPID>{mouseUp, mouseClick}), idsOf(take()));
}

TEST_F(ViewMouse, WithoutSinksNothingIsSentAndNothingIsWrong) {
  ASSERT_NO_FATAL_FAILURE(activate({400, 300}));
  m_window = m_container.controlWindow();
  for (const UINT message : {WM_MOUSEMOVE, WM_LBUTTONDOWN, WM_LBUTTONUP, WM_LBUTTONDBLCLK})
    EXPECT_EQ(0, send(message, 5, 6));
}

TEST_F(ViewMouse, ErasingTheBackgroundIsAnsweredWithZeroAndErasesNothing) {
  ASSERT_NO_FATAL_FAILURE(show({400, 300}));
  const WindowPicture before = pictureOf(m_window);
  HDC context = GetDC(m_window);
  EXPECT_EQ(0, SendMessageW(m_window, WM_ERASEBKGND, reinterpret_cast<WPARAM>(context), 0));
  ReleaseDC(m_window, context);
  EXPECT_EQ(before, pictureOf(m_window));
}

}  // namespace
}  // namespace av::test
