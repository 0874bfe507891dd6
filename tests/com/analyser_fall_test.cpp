// What the spectrum analyser does when the audio stops: columns and ticks that fall, and how they come to rest.

#include "host/analyser_test.h"
#include "host/message_pump.h"

namespace av::test {
namespace {

constexpr DWORD columnHoldMs = 500;
constexpr int stepRows = 5;

class AnalyserFall : public AnalyserTest {
 protected:
  /// Lets the time pass, without a message being dispatched: no tick comes by itself.
  static void passOver(DWORD ms) { Sleep(ms + 30); }
};

TEST_F(AnalyserFall, ColumnsFallByFiveRowsATickOnceNoBlockHasComeForHalfASecond) {
  showFourPlainColumns();
  ASSERT_EQ(S_OK, send(sineBlock(100)));
  ASSERT_EQ(81, columnShown(1).litRows);
  smear();
  EXPECT_EQ(S_OK, m_analyser->_OnTimer());
  EXPECT_TRUE(isSmeared());  // too early
  passOver(columnHoldMs);
  for (int rows = 81 - stepRows; rows > 0; rows -= stepRows) {
    EXPECT_EQ(S_OK, m_analyser->_OnTimer());
    EXPECT_EQ(rows, columnShown(1).litRows);
  }
  EXPECT_EQ(S_OK, m_analyser->_OnTimer());
  EXPECT_EQ(0, columnShown(1).litRows);  // not below the foot
}

TEST_F(AnalyserFall, ABlockRaisesThemAgainAndStartsTheHoldAnew) {
  showFourPlainColumns();
  ASSERT_EQ(S_OK, send(sineBlock(100)));
  passOver(columnHoldMs);
  ASSERT_EQ(S_OK, m_analyser->_OnTimer());
  ASSERT_EQ(76, columnShown(1).litRows);
  ASSERT_EQ(S_OK, send(sineBlock(100)));
  EXPECT_EQ(S_OK, m_analyser->_OnTimer());
  EXPECT_EQ(81, columnShown(1).litRows);
}

TEST_F(AnalyserFall, ADroppedBlockAndNullDoNotStartTheHoldAnew) {
  showFourPlainColumns();
  ASSERT_EQ(S_OK, send(sineBlock(100)));
  passOver(columnHoldMs);
  WAVEFORMATEX refused = analyserMono16;
  refused.wFormatTag = 3;
  ASSERT_EQ(S_OK, send(sineBlock(100), refused));
  ASSERT_EQ(S_OK, m_analyser->SendAudioData(nullptr));
  EXPECT_EQ(S_OK, m_analyser->_OnTimer());
  EXPECT_EQ(76, columnShown(1).litRows);
}

TEST_F(AnalyserFall, WithAutoRepaintOffOrNotQuiteOnTheyStay) {
  showFourPlainColumns();
  ASSERT_EQ(S_OK, send(sineBlock(100)));
  passOver(columnHoldMs);
  for (const VARIANT_BOOL value : {VARIANT_FALSE, VARIANT_BOOL{1}, VARIANT_BOOL{2}, VARIANT_BOOL{-2}}) {
    ASSERT_EQ(S_OK, m_analyser->put_AutoRepaint(value));
    smear();
    EXPECT_EQ(S_OK, m_analyser->_OnTimer());
    EXPECT_TRUE(isSmeared()) << value;
  }
  ASSERT_EQ(S_OK, m_analyser->put_AutoRepaint(VARIANT_TRUE));
  EXPECT_EQ(S_OK, m_analyser->_OnTimer());
  EXPECT_EQ(76, columnShown(1).litRows);
}

TEST_F(AnalyserFall, ColumnsAndTicksComeToRestByThemselves) {
  ASSERT_EQ(S_OK, m_analyser->put_ScaleXVisible(VARIANT_FALSE));
  ASSERT_EQ(S_OK, m_analyser->put_ScaleYVisible(VARIANT_FALSE));
  activate({300, 100});
  const WindowPicture empty = picture();
  ASSERT_EQ(S_OK, send(noiseBlock()));
  ASSERT_NE(empty, picture());
  // The control's own timer, 50 ms: half a second, 20 steps, and the ticks.
  EXPECT_TRUE(avhost::pumpUntil(10000, [&] { return picture() == empty; }));
  // At rest: neither ticks of the timer nor a put brings anything back, and nothing is drawn any more.
  ASSERT_TRUE(avhost::pumpUntil(2000, [&] {
    smear();
    return m_analyser->_OnTimer() == S_OK && isSmeared();
  }));
  ASSERT_EQ(S_OK, m_analyser->put_AlignmentY(0));
  EXPECT_EQ(empty, picture());
}

TEST_F(AnalyserFall, TheFirstColumnsHoldTheirTicksForTwoHundredMilliseconds) {
  ASSERT_EQ(S_OK, m_analyser->put_TickColor(tickColour));
  ASSERT_EQ(S_OK, m_analyser->put_ScaleYVisible(VARIANT_FALSE));
  ASSERT_EQ(S_OK, m_analyser->put_ScaleXVisible(VARIANT_FALSE));
  activate({300, 200});
  const auto highestTick = [&] {
    EXPECT_EQ(S_OK, m_analyser->Repaint());
    const WindowPicture shown = picture();
    for (int y = 0; y < shown.height; ++y)
      for (int x = 0; x < shown.width; ++x)
        if (shown.at(x, y) == 0xFF0000) return y;
    return shown.height;
  };
  ASSERT_EQ(S_OK, send(noiseBlock()));
  ASSERT_EQ(S_OK, send(std::vector<std::int16_t>(512)));
  const int held = highestTick();
  ASSERT_LT(held, 150);
  Sleep(700);  // 200 of it held, 500 falling by a pixel each 10 ms or a little more
  EXPECT_GT(highestTick(), held + 5);
}

TEST_F(AnalyserFall, ColumnsOfALaterLineCountHoldTheirTicksForASecond) {
  showFourPlainColumns();  // puts LineCount
  ASSERT_EQ(S_OK, send(noiseBlock()));
  ASSERT_EQ(S_OK, send(std::vector<std::int16_t>(512)));
  const int held = columnShown(1).tickTop;
  ASSERT_GE(held, 0);
  Sleep(450);
  ASSERT_EQ(S_OK, m_analyser->Repaint());
  EXPECT_EQ(held, columnShown(1).tickTop);
  Sleep(1100);
  ASSERT_EQ(S_OK, m_analyser->Repaint());
  EXPECT_NE(held, columnShown(1).tickTop);
}

TEST_F(AnalyserFall, TicksThatAreSwitchedOffDoNotFall) {
  showFourPlainColumns();
  ASSERT_EQ(S_OK, send(noiseBlock()));
  ASSERT_EQ(S_OK, send(std::vector<std::int16_t>(512)));
  const int held = columnShown(1).tickTop;
  ASSERT_GE(held, 0);
  ASSERT_EQ(S_OK, m_analyser->put_TickVisible(VARIANT_FALSE));
  Sleep(1500);
  ASSERT_EQ(S_OK, m_analyser->put_TickVisible(VARIANT_TRUE));
  EXPECT_NEAR(held, columnShown(1).tickTop, 3);  // the thread may have made its first steps already
  Sleep(500);
  ASSERT_EQ(S_OK, m_analyser->Repaint());
  EXPECT_NE(held, columnShown(1).tickTop);
}

TEST_F(AnalyserFall, TheControlMayBeReleasedWhileItFalls) {
  activate({300, 100});
  ASSERT_EQ(S_OK, send(noiseBlock()));
  avhost::pumpMessages(700);
  // TearDown checks that nothing stays behind.
}

TEST_F(AnalyserFall, AnInactiveControlIsTickedByNobody) {
  const auto analyser = create<IAudioVisualization4Type3>(CLSID_CAudioVisualization4Type3);
  avhost::ControlSite* const sink = new avhost::ControlSite(nullptr, {});
  ComPtr<IViewObject> viewObject;
  ASSERT_EQ(S_OK, analyser.As(&viewObject));
  ASSERT_EQ(S_OK, viewObject->SetAdvise(DVASPECT_CONTENT, 0, sink));
  ASSERT_EQ(S_OK, sendSamples(analyser.Get(), noiseBlock()));
  avhost::pumpMessages(900);
  EXPECT_EQ(1u, sink->viewChanges());
  ASSERT_EQ(S_OK, viewObject->SetAdvise(DVASPECT_CONTENT, 0, nullptr));
  EXPECT_EQ(0u, sink->Release());
}

}  // namespace
}  // namespace av::test
