// The finished control on random walks through puts, blocks, ticks and sizes: after every step its window shows, to the
// pixel, what the model says was drawn last.

#include "picture/view_picture_fixture.h"

namespace av::test {
namespace {

class ViewWalk : public ViewPictures, public testing::WithParamInterface<std::uint32_t> {
 protected:
  static std::uint32_t automationColour(std::uint32_t rgb) { return (rgb & 0xFF) << 16 | (rgb & 0xFF00) | rgb >> 16; }

  int below(int count) { return static_cast<int>(m_engine() % static_cast<std::uint32_t>(count)); }
  std::uint32_t rgb() { return m_engine() & 0xFFFFFF; }

  /// One random step; true if it draws the window.
  bool step() {
    const int kind = below(20);
    m_history << kind << ' ';
    switch (kind) {
      case 0: return putType(below(4) == 0 ? below(11) - 1 : 1 + below(7)), true;
      case 1: return putSmooth(below(2) == 0), true;
      case 2: return putAxis(1 + below(2)), true;
      case 3: return putScaleY(below(3) == 0 ? below(60) - 20 : 0, below(3) == 0 ? 40 + below(110) : 100), true;
      case 4: return putDynamicRange(1 + below(190)), true;
      case 5: return putWindowSize(64 << below(2)), true;
      case 6: return showScales(below(2) == 0), true;
      case 7: return showGrid(below(2) == 0), true;
      case 8: return putBorder(below(6) - 1, rgb()), true;
      case 9: return putLine(1 + below(18), rgb()), true;
      case 10: return putBack(rgb()), true;
      case 11: return putWindowType(below(6)), false;
      case 12: return resize(80 + below(500), 50 + below(350)), UpdateWindow(m_container.controlWindow()), true;
      case 13:
      case 14: {
        const bool draws = m_model.animating && m_model.smooth;
        return tick(), draws;
      }
      default: return sendBlock();
    }
  }

  void start() {
    open(80 + below(500), 50 + below(350));
    m_model.reset();
  }

  std::ostringstream m_history;

 private:
  void putLine(int index, std::uint32_t colour) {
    ASSERT_EQ(S_OK, m_view->put_LineColor(index, automationColour(colour)));
    m_model.lineColours[static_cast<std::size_t>(index)] = colour;
  }
  void putBack(std::uint32_t colour) {
    ASSERT_EQ(S_OK, m_view->put_BackColor(automationColour(colour)));
    m_model.back = colour;
  }
  void putWindowType(int type) {
    ASSERT_EQ(S_OK, m_view->put_FFTWindowType(type));
    m_model.windowType = type;
  }

  bool sendBlock() {
    const int bits = 8 * (1 + below(4));
    const DWORD rate = std::array<DWORD, 4>{8000, 22050, 44100, 192000}[static_cast<std::size_t>(below(4))];
    // A short block keeps the channels: what one that adds some leaves in them is another test's.
    const bool isShort = below(6) == 0;
    const int channels = isShort ? m_model.channels : 1 + below(4);
    const int frames = isShort ? below(m_model.windowSize) : m_model.windowSize + below(9);
    const double amplitude = std::pow(2.0, -below(10));
    send(bits, channels, pcm(bits, channels, frames, [&](int, int) { return amplitude * (below(2001) - 1000) / 1000; }),
         rate);
    return !isShort && !m_model.smooth;
  }

  std::mt19937 m_engine{GetParam()};
};

TEST_P(ViewWalk, ShowsAfterEveryStepWhatWasDrawnLast) {
  start();
  Canvas drawn = m_model.picture();
  for (int i = 0; i < 50; ++i) {
    if (step()) drawn = m_model.picture();
    ASSERT_FALSE(HasFatalFailure());
    ASSERT_EQ("", differences(drawn, picture())) << "steps " << m_history.str();
  }
}

INSTANTIATE_TEST_SUITE_P(Seeds, ViewWalk, testing::Range(1u, 5u));
INSTANTIATE_TEST_SUITE_P(FullSeeds, ViewWalk, testing::Range(5u, 25u));

}  // namespace
}  // namespace av::test
