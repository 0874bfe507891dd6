// What the finished meter shows besides its lines: background and border.

#include "picture/meter_picture_fixture.h"
#include "support/line_oracle.h"

#include <limits>

namespace av::test {
namespace {

class MeterFurniturePictures : public MeterPictures {
 protected:
  /// Background, and the border over it.
  static PixelGrid furniture(int width, int height, int borderType, Argb border, Argb back) {
    PixelGrid grid(width, height, back);
    const int right = width - 1, bottom = height - 1;
    const auto line = [&](const std::vector<Point>& points, Argb colour) {
      forEachLinePixel(points, [&](Point p) { grid.set(p.x, p.y, colour); });
    };
    if (borderType == 1) line({{right, 0}, {right, bottom}, {0, bottom}, {0, 0}, {right, 0}}, border);
    if (borderType == 2 || borderType == 3) {
      line({{right, 0}, {right, bottom}, {0, bottom}}, borderType == 2 ? 0x140000 : 0x100000);
      line({{0, bottom}, {0, 0}, {right, 0}}, borderType == 2 ? 0x100000 : 0x140000);
    }
    return grid;
  }
};

TEST_F(MeterFurniturePictures, AMeterThatHasHeardNothingShowsBackgroundAndBorder) {
  open(90, 60, 10);
  putColours();
  for (const int type : {0, 1, 2, 3, 4, -1}) {
    for (const int width : {0, 4}) {
      putBorder(type, width, 0xABCDEF);
      EXPECT_EQ("", differences(furniture(90, 60, type, 0xABCDEF, m_settings.backColor), picture()))
          << "border " << type << ", " << width << " wide";
    }
  }
}

TEST_F(MeterFurniturePictures, ANullBlockTakesTheLinesAwayAndTheNextOneBringsThemBack) {
  open(90, 60, 10);
  putColours();
  for (const int lineType : {0, 4}) {
    putMode(lineType);
    sendSounds();
    const WindowPicture before = picture();
    ASSERT_EQ(S_OK, m_meter->SendAudioData(nullptr));
    EXPECT_EQ("", differences(furniture(90, 60, 0, 0, m_settings.backColor), picture())) << lineType;
    sendSounds();
    EXPECT_EQ(before, picture());
  }
}

TEST_F(MeterFurniturePictures, ABorderLiesOverTheBackgroundAndUnderTheLines) {
  open(90, 60, 10);
  putColours();
  sendSounds();
  for (const int type : {1, 2, 3, 4}) {
    putBorder(type, 0, 0xABCDEF);
    const PixelGrid bars = meterBars(m_settings, m_lines, 90, 60);
    PixelGrid expected = furniture(90, 60, type, 0xABCDEF, m_settings.backColor);
    for (int y = 1; y < 59; ++y)
      for (int x = 1; x < 89; ++x) expected.set(x, y, bars.at(x, y));
    EXPECT_EQ("", differences(expected, picture())) << type;
  }
}

TEST_F(MeterFurniturePictures, ModesThatDoNotExistShowBackgroundAndBorderOnly) {
  open(90, 60, 10);
  putColours();
  putBorder(1, 3, 0xABCDEF);
  sendSounds();
  const PixelGrid expected = furniture(90, 60, 1, 0xABCDEF, m_settings.backColor);
  for (const auto& [lineType, alignmentX] :
       {std::pair{7, 0}, {15, 0}, {16, 0}, {-1, 0}, {7, 1}, {0, 2}, {4, -1}, {1000000000, 0}, {0, 0x20000000}}) {
    putMode(lineType, alignmentX);
    EXPECT_EQ("", differences(expected, picture())) << lineType << ", " << alignmentX;
  }
  putMode(0);
  EXPECT_NE("", differences(expected, picture()));
}

TEST_F(MeterFurniturePictures, SizesBeyondReasonDoNoHarm) {
  open(203, 121, 20);
  putColours();
  sendSounds();
  constexpr LONG highest = std::numeric_limits<LONG>::max();
  constexpr LONG lowest = std::numeric_limits<LONG>::min();
  for (const int alignmentX : {0, 1}) {
    for (const int lineType : {0, 1, 2, 4, 5}) {
      putMode(lineType, alignmentX);
      const WindowPicture before = picture();
      for (const LONG value : {highest, 40000l, 0l, -1l, -40000l, lowest}) {
        ASSERT_EQ(S_OK, m_meter->put_BorderWidth(value));
        picture();
        ASSERT_EQ(S_OK, m_meter->put_SpotHeight(value));
        picture();
        ASSERT_EQ(S_OK, m_meter->put_BorderWidth(0));
        picture();
        ASSERT_EQ(S_OK, m_meter->put_SpotInterval(value));
        ASSERT_EQ(S_OK, m_meter->put_LineInterval(value));
        picture();
        ASSERT_EQ(S_OK, m_meter->put_SpotHeight(2));
        picture();
        ASSERT_EQ(S_OK, m_meter->put_SpotInterval(1));
        ASSERT_EQ(S_OK, m_meter->put_LineInterval(1));
        EXPECT_EQ(before, picture()) << lineType << ", " << value;
      }
    }
  }
}

TEST_F(MeterFurniturePictures, AWindowOfNoRoomShowsItsBackground) {
  open(40, 30, 10);
  putColours();
  sendSounds();
  for (const int lineType : {0, 4, 5}) {
    putMode(lineType);
    for (const SIZE size : {SIZE{1, 1}, SIZE{2, 30}, SIZE{40, 2}, SIZE{2, 2}}) {
      ASSERT_EQ(S_OK, m_container.resize({size.cx, size.cy}));
      const WindowPicture shown = picture();
      EXPECT_EQ("", differences(PixelGrid(shown.width, shown.height, m_settings.backColor), shown))
          << size.cx << " x " << size.cy;
    }
  }
}

}  // namespace
}  // namespace av::test
