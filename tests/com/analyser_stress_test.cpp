// What no well-behaved host does to the spectrum analyser: everything at once, in any order, with any values.

#include "host/analyser_test.h"
#include "host/message_pump.h"

#include <climits>
#include <random>

namespace av::test {
namespace {

class AnalyserStress : public AnalyserTest {
 protected:
  LONG anyLong() {
    constexpr LONG ends[] = {INT_MIN, -101, -1, 0,   1,   2,   3,   4,   5,     49,
                             50,      51,   99, 100, 101, 199, 200, 201, 32767, INT_MAX};
    return ends[m_random() % std::size(ends)];
  }

  /// A put of any row with any value: it is taken or refused, and reads back what was taken.
  void putSomething() {
    const NumberRow& row = analyserRows[m_random() % std::size(analyserRows)];
    const LONG before = getLong(row.dispId);
    LONG value = row.type == VT_BOOL ? static_cast<LONG>(m_random() % 4) - 2 : anyLong();
    if (row.dispId == 10) value = 4 << m_random() % 11;  // lengths below 4 end the process
    if (row.type == VT_UI4) value = static_cast<LONG>(m_random());
    const HRESULT put = putLong(row.dispId, value);
    if (FAILED(put)) {
      ASSERT_TRUE(put == E_INVALIDARG || row.type == VT_UI4) << row.dispId << " = " << value;
      ASSERT_EQ(before, getLong(row.dispId)) << row.dispId;
    } else if (row.type != VT_UI4) {
      ASSERT_EQ(value, getLong(row.dispId)) << row.dispId;
    }
  }

  void sendSomething() {
    const WORD bits[] = {8, 16, 24, 32, 12};
    const WAVEFORMATEX format{WAVE_FORMAT_PCM,
                              static_cast<WORD>(1 + m_random() % 3),
                              m_random() % 5 ? 44100 : static_cast<DWORD>(m_random()),
                              0,
                              0,
                              bits[m_random() % std::size(bits)],
                              0};
    std::vector<std::int16_t> samples(m_random() % 3000);
    for (std::int16_t& sample : samples) sample = static_cast<std::int16_t>(m_random());
    ASSERT_EQ(S_OK, send(samples, format));
  }

  void expectItStillDraws() {
    for (const NumberRow& row : analyserRows) ASSERT_EQ(S_OK, putLong(row.dispId, row.defaultValue)) << row.dispId;
    ASSERT_EQ(S_OK, m_analyser->put_LineCount(60));  // silent
    const WindowPicture silent = picture();
    ASSERT_EQ(S_OK, send(noiseBlock()));
    EXPECT_NE(silent, picture());
  }

  std::mt19937 m_random{20261121};
};

TEST_F(AnalyserStress, AnySequenceOfPutsBlocksTicksAndSizesIsSurvived) {
  activate({300, 200});
  for (int round = 0; round < 2500 && !HasFatalFailure(); ++round) {
    switch (m_random() % 10) {
      case 0:
      case 1: sendSomething(); break;
      case 2: ASSERT_EQ(S_OK, m_analyser->_OnTimer()); break;
      case 3:
        if (round % 4 == 0) {
          ASSERT_EQ(S_OK, m_container.resize(
                              {1 + static_cast<LONG>(m_random() % 500), 1 + static_cast<LONG>(m_random() % 300)}));
          UpdateWindow(window());
        }
        break;
      case 4: ASSERT_EQ(S_OK, m_analyser->SendAudioData(nullptr)); break;
      default: putSomething(); break;
    }
  }
  ASSERT_EQ(S_OK, m_container.resize({300, 200}));
  UpdateWindow(window());
  expectItStillDraws();
}

TEST_F(AnalyserStress, TheSameWhileItsTimerTicksAndItsTicksFall) {
  activate({300, 120});
  for (int round = 0; round < 60 && !HasFatalFailure(); ++round) {
    putSomething();
    if (round % 3 == 0) sendSomething();
    avhost::pumpMessages(20);
  }
  expectItStillDraws();
}

TEST_F(AnalyserStress, AnyWindowSizeIsSurvived) {
  activate({300, 200});
  ASSERT_EQ(S_OK, send(noiseBlock()));
  for (const SIZE& size :
       {SIZE{0, 0}, SIZE{1, 1}, SIZE{2, 2}, SIZE{1, 500}, SIZE{500, 1}, SIZE{3000, 3}, SIZE{3, 3000}, SIZE{300, 200}}) {
    SetWindowPos(window(), nullptr, 0, 0, size.cx, size.cy, SWP_NOZORDER | SWP_NOACTIVATE);
    InvalidateRect(window(), nullptr, FALSE);
    UpdateWindow(window());
    ASSERT_EQ(S_OK, send(noiseBlock()));
    ASSERT_EQ(S_OK, m_analyser->put_ScaleYMax(100));
    ASSERT_EQ(S_OK, m_analyser->put_AlignmentY(1));
    ASSERT_EQ(S_OK, m_analyser->put_AlignmentY(0));
  }
  ASSERT_EQ(S_OK, m_container.resize({301, 200}));
  expectItStillDraws();
}

TEST_F(AnalyserStress, FiftyOfThemAtOnceEachShowTheirOwnSound) {
  std::vector<ComPtr<IAudioVisualization4Type3>> analysers(50);
  for (auto& analyser : analysers) {
    analyser = create<IAudioVisualization4Type3>(CLSID_CAudioVisualization4Type3);
    ASSERT_TRUE(analyser);
    ASSERT_EQ(S_OK, analyser->put_TickVisible(VARIANT_FALSE));
  }
  const auto drawn = [](IAudioVisualization4Type3* analyser) {
    ComPtr<IViewObject> view;
    EXPECT_EQ(S_OK, analyser->QueryInterface(IID_PPV_ARGS(&view)));
    return pictureDrawnBy({400, 100}, [&](HDC target) {
      const RECTL bounds{0, 0, 400, 100};
      EXPECT_EQ(S_OK,
                view->Draw(DVASPECT_CONTENT, -1, nullptr, nullptr, nullptr, target, &bounds, nullptr, nullptr, 0));
    });
  };
  for (std::size_t i = 0; i < analysers.size(); ++i)
    ASSERT_EQ(S_OK, sendSamples(analysers[i].Get(), sineBlock(static_cast<double>(4 + 5 * i))));
  for (std::size_t i = 1; i < analysers.size(); ++i)
    EXPECT_NE(drawn(analysers[i - 1].Get()), drawn(analysers[i].Get())) << i;
  const WindowPicture last = drawn(analysers.back().Get());
  analysers.resize(analysers.size() - 1);
  analysers.erase(analysers.begin(), analysers.end() - 1);
  ASSERT_EQ(S_OK, sendSamples(m_analyser.Get(), sineBlock(4 + 5 * 49)));
  ASSERT_EQ(S_OK, m_analyser->put_TickVisible(VARIANT_FALSE));
  EXPECT_EQ(last, drawn(m_analyser.Get()));
}

}  // namespace
}  // namespace av::test
