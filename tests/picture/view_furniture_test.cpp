// Background, strips, border and grid of the finished control, pixel by pixel.

#include "picture/view_picture_fixture.h"

namespace av::test {
namespace {

class Furniture : public ViewPictures {
 protected:
  void putBorderType(int type) {
    ASSERT_EQ(S_OK, m_view->put_BorderType(type));
    m_model.borderType = type;
  }
};

TEST_F(Furniture, StripsBeginOnePixelBehindThePlot) {
  open(400, 300);
  showGrid(false);
  expectPicture();
  const WindowPicture shown = picture();
  const int plotBottom = 300 - (m_model.textHeightPx + 10);
  const int plotRight = 400 - (2 + 2) * m_model.textHeightPx;  // "90" and two more
  EXPECT_EQ(plotBottom, m_model.plotHeight);
  EXPECT_EQ(plotRight, m_model.plotWidth);
  EXPECT_EQ(0u, shown.at(10, plotBottom));
  EXPECT_EQ(0x00FF00u, shown.at(10, plotBottom + 1));
  EXPECT_EQ(0u, shown.at(plotRight, 10));
  EXPECT_EQ(0x00FF00u, shown.at(plotRight + 1, 10));
  EXPECT_EQ(0x00FF00u, shown.at(399, 299));
}

TEST_F(Furniture, EachScaleComesAndGoesAlone) {
  open(400, 300);
  for (const bool scaleX : {true, false}) {
    for (const bool scaleY : {true, false}) {
      for (const bool grid : {true, false}) {
        ASSERT_EQ(S_OK, m_view->put_ScaleXVisible(scaleX ? VARIANT_TRUE : VARIANT_FALSE));
        ASSERT_EQ(S_OK, m_view->put_ScaleYVisible(scaleY ? VARIANT_TRUE : VARIANT_FALSE));
        m_model.scaleX = scaleX;
        m_model.scaleY = scaleY;
        showGrid(grid);
        EXPECT_EQ("", differences(m_model.picture(), picture())) << scaleX << scaleY << grid;
      }
    }
  }
}

TEST_F(Furniture, HorizontalLabelsStandInTheMiddleOfTheirRectangles) {
  open(400, 150);
  showGrid(false);
  ASSERT_EQ(S_OK, m_view->put_TextColor(0x000000));
  const int textHeight = m_model.textHeightPx;
  for (const int width : {400, 517, 703, 900}) {
    resize(width, 150);
    UpdateWindow(m_container.controlWindow());
    const WindowPicture shown = picture();
    const int plotWidth = width - 4 * textHeight;
    const int strip = 150 - (textHeight + 10);
    const int count = plotWidth / (5 * textHeight * 2 / 3) >= 20   ? 20
                      : plotWidth / (5 * textHeight * 2 / 3) >= 10 ? 10
                                                                   : 5;
    for (int i = 1; i < count; ++i) {  // the unit reaches into the last one's rectangle
      const int sample = static_cast<int>(1024.0 * (plotWidth * i / count) / plotWidth + 0.5);
      const double left = (i - 0.5) * plotWidth / count;
      const double right = left + textHeight * static_cast<double>(std::to_string(sample).size());
      int inkLeft = width;
      int inkRight = 0;
      for (int x = static_cast<int>(left); x < right; ++x) {
        for (int y = strip + 2; y < 150; ++y) {
          if ((shown.at(x, y) & 0xFF00) > 0x8000) continue;
          inkLeft = std::min(inkLeft, x);
          inkRight = std::max(inkRight, x + 1);
        }
      }
      ASSERT_LT(inkLeft, inkRight) << width << ", label " << i;
      // A digit's ink is up to a pixel off its cell's middle; the position itself is rounded to a pixel.
      EXPECT_NEAR((left + right) / 2, (inkLeft + inkRight) / 2.0, 1.5) << width << ", label " << i;
    }
  }
}

TEST_F(Furniture, BordersOfEveryType) {
  open(200, 150);
  ASSERT_EQ(S_OK, m_view->put_BorderColor(0x0000FF));
  m_model.border = 0xFF0000;
  ASSERT_EQ(S_OK, m_view->put_BackColor(0x808080));
  m_model.back = 0x808080;
  for (const int type : {0, 1, 2, 3, 4, -1, 1000}) {
    putBorderType(type);
    EXPECT_EQ("", differences(m_model.picture(), picture())) << type;
  }
  // The corners: the second line of the bevels lies over the first.
  putBorderType(2);
  EXPECT_EQ(0x100000u, picture().at(0, 0));
  EXPECT_EQ(0x100000u, picture().at(199, 0));
  EXPECT_EQ(0x100000u, picture().at(0, 149));
  EXPECT_EQ(0x140000u, picture().at(199, 149));
  putBorderType(3);
  EXPECT_EQ(0x140000u, picture().at(0, 0));
  EXPECT_EQ(0x140000u, picture().at(199, 0));
  EXPECT_EQ(0x140000u, picture().at(0, 149));
  EXPECT_EQ(0x100000u, picture().at(199, 149));
}

TEST_F(Furniture, ColoursAreTheAutomationColoursWithRedAndBlueExchanged) {
  open(200, 150);
  ASSERT_EQ(S_OK, m_view->put_BackColor(0x80112233));  // a system colour's flag is lost
  ASSERT_EQ(S_OK, m_view->put_GridColor(0x445566));
  m_model.back = 0x332211;
  m_model.grid = 0x665544;
  expectPicture();
}

TEST_F(Furniture, TheGridFollowsEverySize) {
  open(300, 200);
  for (int width = 80; width < 1000; width += 97) {
    for (int height = 50; height < 700; height += 133) {
      ASSERT_EQ(S_OK, m_container.resize({width, height}));
      UpdateWindow(m_container.controlWindow());
      m_model.width = width;
      m_model.height = height;
      m_model.layout();
      ASSERT_EQ("", differences(m_model.picture(), picture())) << width << " x " << height;
    }
  }
}

TEST_F(Furniture, TheGridFollowsScaleAndRange) {
  open(640, 480);
  const struct {
    int lowest, highest, decibels;
  } cases[] = {{0, 100, 90}, {0, 100, 42},    {0, 100, 5}, {0, 100, 1},    {0, 100, 0},   {0, 100, -30}, {50, 100, 90},
               {100, 0, 90}, {-100, 100, 90}, {0, 1, 60},  {0, 1000, 200}, {20, 20, 100}, {0, 100, 17},  {0, 100, 120}};
  for (const auto& each : cases) {
    putDynamicRange(each.decibels);
    putScaleY(each.lowest, each.highest);
    ASSERT_EQ("", differences(m_model.picture(), picture()))
        << each.lowest << " to " << each.highest << " of " << each.decibels << " dB";
  }
}

TEST_F(Furniture, TheGridOfASpectrumFollowsTheSampleRateWhenItIsLaidOutAgain) {
  open(900, 300);
  putType(2);
  for (const DWORD rate : {44100u, 8000u, 192000u, 96000u, 100u}) {
    send(16, 2, sines(16, 2, 8), rate);  // too short to be analysed, but its rate is taken over
    putType(2);
    EXPECT_EQ("", differences(m_model.picture(), picture())) << rate;
  }
}

TEST_F(Furniture, ABlockAloneChangesNoLayout) {
  open(640, 480);
  putSmooth(false);
  send(8, 1, Bytes(1024, 128));  // 42 dB: a layout of this would have other divisions
  const int divisions = m_model.yDivisions;
  expectPicture();
  putSmooth(false);  // lays out anew
  EXPECT_NE(divisions, m_model.yDivisions);
  expectPicture();
}

TEST_F(Furniture, IsDrawnIntoTheDeviceContextThatAMessageBrings) {
  open(300, 200);
  const HWND window = m_container.controlWindow();
  for (const UINT message : {WM_PRINTCLIENT, WM_PRINT, WM_PAINT}) {
    InvalidateRect(window, nullptr, FALSE);
    const WindowPicture drawn = pictureDrawnBy({300, 200}, [&](HDC target) {
      EXPECT_EQ(0, SendMessageW(window, message, reinterpret_cast<WPARAM>(target), PRF_CLIENT)) << message;
    });
    EXPECT_EQ("", differences(m_model.picture(), drawn)) << message;
    // What the window itself has to paint stays to be painted.
    EXPECT_TRUE(GetUpdateRect(window, nullptr, FALSE)) << message;
    UpdateWindow(window);
  }
}

TEST_F(Furniture, TypesOutsideTheListDrawNoCurveAndTypesAboveFiveNoRuledGrid) {
  open(300, 200);
  putSmooth(false);
  for (const int type : {9, 8, 100, 0, -3}) {
    putType(type);
    send(16, 2, sines(16, 2, 1024));
    EXPECT_EQ("", differences(m_model.picture(), picture())) << type;
  }
}

}  // namespace
}  // namespace av::test
