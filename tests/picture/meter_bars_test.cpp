// Bars and dots of the finished meter, pixel by pixel.

#include "picture/meter_picture_fixture.h"

namespace av::test {
namespace {

class MeterBarPictures : public MeterPictures {};

TEST_F(MeterBarPictures, TheFloorShowsTheUnlitImageOnlyAndZeroDecibelsLightAllOfIt) {
  // 7 lines of 10 with a pixel between: 76, and a margin of 1. 30 segments of 2 and 29 gaps: 89 of 90.
  open(78, 92, 7);
  putTicks(false);
  sendFullScale();
  const WindowPicture shown = picture();
  ASSERT_EQ(78, shown.width);
  for (int y = 0; y < 92; ++y) {
    for (int x = 0; x < 78; ++x) {
      std::uint32_t expected = 0;
      const int column = x - 1, row = y - 1;
      const bool onALine = column >= 0 && column < 76 && column % 11 != 10;
      if (onALine && row >= 0 && row < 89 && row % 3 != 2) {
        // From the top: a fifth of the segments high, a fifth of them middle, three fifths low.
        const int segment = row / 3;
        const bool lit = column / 11 == 3;
        if (segment < 6) expected = lit ? 0xFF0000 : 0x550000;
        else if (segment < 12) expected = lit ? 0xFFFF00 : 0x555500;
        else expected = lit ? 0x00FF00 : 0x005500;
      }
      ASSERT_EQ(expected, shown.at(x, y)) << x << ", " << y;
    }
  }
  expectBars();
}

TEST_F(MeterBarPictures, ASilentMeterThatHasHeardSomethingShowsItsTicks) {
  open(78, 92, 7);
  sendFullScale();
  sendSilence();
  const WindowPicture shown = picture();
  int tickPixels = 0;
  for (int y = 0; y < 92; ++y)
    for (int x = 0; x < 78; ++x) {
      if (shown.at(x, y) != 0xFF0000) continue;
      ++tickPixels;
      EXPECT_TRUE(x >= 34 && x < 44 && y >= 1 && y < 3) << x << ", " << y;
    }
  EXPECT_EQ(20, tickPixels);  // the topmost segment of line 4
  expectBars();
  putTicks(false);
  expectBars();
}

TEST_F(MeterBarPictures, EveryKindOfBarsAndDotsIsToThePixel) {
  open(200, 120, 20);
  putColours();
  sendSounds();
  for (const int alignmentX : {0, 1}) {
    for (const int lineType : {0, 1, 2, 3}) {
      for (const bool ticks : {true, false}) {
        putMode(lineType, alignmentX);
        putTicks(ticks);
        expectBars("mode " + std::to_string(alignmentX * 8 + lineType) + (ticks ? "" : " without ticks"));
      }
    }
  }
  for (const int lineType : {8, 9, 10, 11}) {  // the same modes without AlignmentX: from the corner, not centred
    putMode(lineType);
    expectBars("type " + std::to_string(lineType));
  }
}

TEST_F(MeterBarPictures, EveryLevelLightsItsSegments) {
  open(200, 120, 20);
  putColours();
  for (std::uint32_t seed = 2; seed < 12; ++seed) {
    sendSounds(seed);
    expectBars("sound " + std::to_string(seed));
  }
}

TEST_F(MeterBarPictures, ZonesBeginWhereTheirPointsSay) {
  open(200, 120, 20);
  putColours();
  sendSounds();
  for (const auto& [mid, high] : {std::pair{60, 80}, {0, 0}, {100, 100}, {33, 66}, {80, 20}, {0, 100}, {50, 50}}) {
    putZones(mid, high);
    for (const auto& [lineType, alignmentX] : {std::pair{0, 0}, {1, 0}, {0, 1}, {1, 1}}) {
      putMode(lineType, alignmentX);
      expectBars(std::to_string(mid) + " and " + std::to_string(high) + ", mode " +
                 std::to_string(alignmentX * 8 + lineType));
    }
  }
}

TEST_F(MeterBarPictures, LinesAndSegmentsOfAnySizeStandInTheMiddle) {
  open(211, 127, 20);
  putColours();
  sendSounds();
  for (const auto& [height, gap] :
       {std::pair{2, 1}, {1, 0}, {3, 2}, {7, 5}, {0, 3}, {0, 0}, {5, 0}, {125, 0}, {200, 9}}) {
    for (const int interval : {0, 1, 4}) {
      putSegments(height, gap);
      putLineInterval(interval);
      expectBars(std::to_string(height) + " + " + std::to_string(gap) + ", " + std::to_string(interval) +
                 " between lines");
    }
  }
}

TEST_F(MeterBarPictures, EveryBorderWidthMovesTheBarsInwards) {
  open(211, 127, 20);
  putColours();
  sendSounds();
  for (const int width : {0, 1, 2, 5, 30, 61, 62, 63, 100, -1, -4}) {
    putBorder(0, width, 0);
    expectBars("border of " + std::to_string(width));
  }
}

TEST_F(MeterBarPictures, EverySizeOfTheWindowHasItsOwnLayout) {
  open(200, 120, 20);
  putColours();
  sendSounds();
  for (const SIZE size : {SIZE{201, 121}, SIZE{240, 60}, SIZE{61, 200}, SIZE{40, 9}, SIZE{700, 500}, SIZE{200, 120}}) {
    ASSERT_EQ(S_OK, m_container.resize({size.cx, size.cy}));
    expectBars(std::to_string(size.cx) + " x " + std::to_string(size.cy));
  }
}

TEST_F(MeterBarPictures, WithAutoSizeWholeLinesAndSegmentsFillTheControlFromItsCorner) {
  open(211, 127, 20);
  putColours();
  sendSounds();
  ASSERT_EQ(S_OK, m_meter->put_AutoSize(VARIANT_TRUE));
  m_settings.autoSize = -1;
  // 20 lines of 9 and 19 pixels between; 42 segments of 2 and 41 gaps; a margin of 1.
  WindowPicture shown = picture();
  EXPECT_EQ(20 * 9 + 19 + 2, shown.width);
  EXPECT_EQ(42 * 2 + 41 + 2, shown.height);
  expectBars();
  ASSERT_EQ(S_OK, m_meter->put_AutoSize(VARIANT_FALSE));
  ASSERT_EQ(S_OK, m_container.resize({211, 127}));
  putMode(1, 1);
  ASSERT_EQ(S_OK, m_meter->put_AutoSize(VARIANT_TRUE));
  shown = picture();  // mirrored: a segment in the centre
  EXPECT_EQ(20 * 9 + 19 + 2, shown.width);
  EXPECT_EQ(41 * 2 + 40 + 2, shown.height);
  expectBars("mirrored");
}

TEST_F(MeterBarPictures, MoreLinesThanLevelsAreDarkWhereThereIsNoNumber) {
  open(200, 120, 20);
  putTicks(false);
  send(std::vector<std::int16_t>(16, 3000));  // fewer frames than lines: empty, which silence is too
  for (LineInfo& line : m_lines) line = {};
  expectBars("a short block");
  std::vector<std::int16_t> noise(64);
  std::mt19937 random(5);
  for (std::int16_t& sample : noise) sample = static_cast<std::int16_t>(static_cast<int>(random() % 60001) - 30000);
  putLineCount(40);  // 31 levels: each mean is of none of them
  send(noise);
  ASSERT_TRUE(std::isnan(m_lines[5].value));
  expectBars("no number");
}

TEST_F(MeterBarPictures, AContainersPictureHasTheLayoutOfItsOwnRectangle) {
  open(200, 120, 20);
  putColours();
  putMode(1);
  sendSounds();
  ComPtr<IViewObject> viewObject;
  ASSERT_EQ(S_OK, m_meter.As(&viewObject));
  ASSERT_EQ(0u, m_container.close());
  for (const SIZE size : {SIZE{200, 120}, SIZE{333, 222}, SIZE{90, 40}}) {
    const WindowPicture drawn = pictureDrawnBy({size.cx + 20, size.cy + 10}, [&](HDC target) {
      const RECTL bounds{20, 10, 20 + size.cx, 10 + size.cy};
      EXPECT_EQ(S_OK, viewObject->Draw(DVASPECT_CONTENT, -1, nullptr, nullptr, nullptr, target, &bounds, nullptr,
                                       nullptr, 0));
    });
    const PixelGrid expected = meterBars(m_settings, m_lines, size.cx, size.cy);
    EXPECT_EQ("", differences(expected, cutOut(drawn, {20, 10, 20 + size.cx, 10 + size.cy})));
    EXPECT_EQ(0u, drawn.at(10, 5)) << "beyond its rectangle";
  }
}

}  // namespace
}  // namespace av::test
