// What a thread of the host is set to: the arithmetic of its processor, its locale, the system's colours. Pictures do not
// depend on it, and it is what it was afterwards.

#include "host/any_control_test.h"
#include "host/floating_point_mode.h"

#include <string>

namespace av::test {
namespace {

class HostEnvironment : public AnyControlTest {
 protected:
  /// Every look after loud and soft noise, in the window and outside. `around` gets each call of the control.
  template <class Around>
  std::vector<WindowPicture> pictures(Around&& around) {
    std::vector<WindowPicture> all;
    const Look look = looks();
    // Off and on again, so that nothing is left of the levels before.
    for (const LONG value : look.values) {
      around([&] { put(look.property, value); });
      around([&] { EXPECT_EQ(S_OK, send(std::vector<std::int16_t>(2048))); });
      for (int i = 0; i < 40; ++i) around([&] { m_audio->_OnTimer(); });
      for (const int amplitude : {20000, 3}) {
        around([&] { EXPECT_EQ(S_OK, sendNoise(amplitude)); });
        for (int i = 0; i < 3; ++i) around([&] { EXPECT_EQ(S_OK, m_audio->_OnTimer()); });
        around([&] { EXPECT_EQ(S_OK, m_audio->Repaint()); });
        all.push_back(pictureOf(window()));
        all.emplace_back();
        around([&] { all.back() = drawn({150, 110}); });
      }
      around([&] {
        SendMessageW(window(), WM_SIZE, SIZE_RESTORED, MAKELPARAM(300, 200));
        SendMessageW(window(), WM_MOUSEMOVE, 0, MAKELPARAM(40, 30));
        SendMessageW(window(), WM_LBUTTONUP, 0, MAKELPARAM(40, 30));
      });
    }
    return all;
  }
  std::vector<WindowPicture> pictures() {
    return pictures([](auto&& call) { call(); });
  }
};

class HostArithmetic : public HostEnvironment {
 protected:
  void expectNothingOf(const FloatingPointMode& mode) {
    SCOPED_TRACE(mode.name);
    const std::vector<WindowPicture> shownThen = pictures([&](auto&& call) { EXPECT_EQ(mode, runIn(mode, call)); });
    ASSERT_EQ(m_expected.size(), shownThen.size());
    for (std::size_t i = 0; i < shownThen.size(); ++i) EXPECT_TRUE(m_expected[i] == shownThen[i]) << "picture " << i;
  }
  std::vector<WindowPicture> m_expected;
};

TEST_P(HostArithmetic, ChangesNoPixelAndIsTheSameAfterEveryCall) {
  ASSERT_NO_FATAL_FAILURE(activate({300, 200}));
  pictures();
  m_expected = pictures();
  ASSERT_FALSE(m_expected[0] == m_expected[2]) << "loud and soft look alike";
  for (const FloatingPointMode& mode : hostFloatingPointModes) ASSERT_NO_FATAL_FAILURE(expectNothingOf(mode));
}

TEST_P(HostEnvironment, LocalesWithDecimalCommasAndFromRightToLeftChangeNoPixel) {
  ASSERT_NO_FATAL_FAILURE(activate({300, 200}));
  pictures();
  const std::vector<WindowPicture> expected = pictures();
  const LCID before = GetThreadLocale();
  for (const int language : {LANG_GERMAN, LANG_ARABIC, LANG_HEBREW, LANG_JAPANESE}) {
    const auto locale = static_cast<LCID>(MAKELANGID(language, SUBLANG_DEFAULT));
    ASSERT_TRUE(SetThreadLocale(locale));
    const std::vector<WindowPicture> shownThen = pictures();
    EXPECT_EQ(locale, GetThreadLocale());
    SetThreadLocale(before);
    EXPECT_TRUE(expected == shownThen) << language;
  }
}

TEST_P(HostEnvironment, NewSystemColoursAreDrawnOnAndChangeNoColourThatIsKept) {
  ASSERT_NO_FATAL_FAILURE(activate({300, 200}));
  ASSERT_EQ(S_OK, sendNoise());
  const WindowPicture before = shown();
  INT element = COLOR_BTNFACE;
  const COLORREF kept = GetSysColor(element);
  const COLORREF contrast = RGB(0, 255, 0);
  ASSERT_TRUE(SetSysColors(1, &element, &contrast));
  SendMessageW(m_container.window(), WM_SYSCOLORCHANGE, 0, 0);
  SendMessageW(window(), WM_SYSCOLORCHANGE, 0, 0);
  SendMessageW(window(), WM_SETTINGCHANGE, SPI_SETHIGHCONTRAST, 0);
  SendMessageW(window(), WM_THEMECHANGED, 0, 0);
  const WindowPicture after = shown();
  ASSERT_TRUE(SetSysColors(1, &element, &kept));
  EXPECT_TRUE(before == after);
}

INSTANTIATE_TEST_SUITE_P(, HostArithmetic, eachControl);
INSTANTIATE_TEST_SUITE_P(, HostEnvironment, eachControl);

}  // namespace
}  // namespace av::test
