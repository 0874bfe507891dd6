// Graphs of the finished meter: against lines of one pixel set by hand, and wide ones against GDI+ itself.

#include "picture/meter_picture_fixture.h"
#include "support/line_oracle.h"

#include <objidl.h>

namespace Gdiplus {
using std::max;
using std::min;
}  // namespace Gdiplus
#include <gdiplus.h>

namespace av::test {
namespace {

constexpr std::uint32_t valueColour = 0x00FF00;
constexpr std::uint32_t peakColour = 0xFF0000;

class MeterGraphPictures : public MeterPictures {
 protected:
  /// The points of a graph; `direction` is 1 up from the bottom, ½ and −½ up and down from the centre line.
  std::vector<Point> points(int width, int height, double LineInfo::*level, double direction = 1) const {
    const int margin = m_settings.borderWidthPx + 1;
    const double Hb = height - 2 * margin;
    const double step = static_cast<double>(width - 2 * margin) / static_cast<double>(m_lines.size() - 1);
    const double y0 = direction == 1 ? height - margin : margin + Hb / 2;
    std::vector<Point> result;
    for (std::size_t i = 0; i < m_lines.size(); ++i) {
      const double dB = m_lines[i].*level;
      result.push_back({static_cast<int>(static_cast<double>(i) * step + margin),
                        static_cast<int>(y0 - (dB + 91) * Hb * direction / 91)});
    }
    return result;
  }

  struct Line {
    std::vector<Point> points;
    std::uint32_t colour;
  };
  /// The polylines of the graph of now, in the order in which they are drawn.
  std::vector<Line> graph(int width, int height, bool mirrored) const {
    std::vector<Line> lines;
    for (const double direction : mirrored ? std::vector<double>{0.5, -0.5} : std::vector<double>{1}) {
      if (m_settings.tickVisible) lines.push_back({points(width, height, &LineInfo::peak, direction), peakColour});
      lines.push_back({points(width, height, &LineInfo::value, direction), valueColour});
    }
    return lines;
  }

  void expectThinGraph(bool mirrored, const char* what) {
    const WindowPicture shown = picture();
    PixelGrid expected(shown.width, shown.height, 0xFF000000);
    for (const Line& line : graph(shown.width, shown.height, mirrored))
      forEachLinePixel(line.points, [&](Point p) { expected.set(p.x, p.y, line.colour); });
    EXPECT_EQ("", differences(expected, shown)) << what;
  }
};

TEST_F(MeterGraphPictures, AGraphOfThinLinesIsToThePixel) {
  open(203, 121, 20);
  putSegments(1, 1);
  sendSounds();
  for (const bool ticks : {true, false}) {
    putTicks(ticks);
    for (const int border : {0, 3, 20}) {
      putBorder(0, border, 0);
      putMode(4);
      expectThinGraph(false, "upward");
      putMode(4, 1);
      expectThinGraph(true, "mirrored");
    }
  }
  putSegments(0, 1);  // no pen is thinner
  expectThinGraph(true, "of no width");
}

TEST_F(MeterGraphPictures, AGraphIsAsWideAsItsSegmentsAreHighInThePixelsOfGdiplus) {
  open(203, 121, 20);
  sendSounds();
  ULONG_PTR token = 0;
  const Gdiplus::GdiplusStartupInput input;
  ASSERT_EQ(Gdiplus::Ok, Gdiplus::GdiplusStartup(&token, &input, nullptr));
  for (const int width : {2, 3, 5, 12}) {
    for (const int alignmentX : {0, 1}) {
      putSegments(width, 1);
      putMode(4, alignmentX);
      Gdiplus::Bitmap bitmap(203, 121, PixelFormat32bppPARGB);
      Gdiplus::Graphics graphics(&bitmap);
      graphics.Clear(Gdiplus::Color::Black);
      for (const Line& line : graph(203, 121, alignmentX != 0)) {
        Gdiplus::Pen pen(Gdiplus::Color(0xFF000000 | line.colour), static_cast<float>(width));
        pen.SetLineJoin(Gdiplus::LineJoinRound);
        std::vector<Gdiplus::Point> same;
        for (const Point& point : line.points) same.emplace_back(point.x, point.y);
        graphics.DrawLines(&pen, same.data(), static_cast<INT>(same.size()));
      }
      PixelGrid expected(203, 121, 0xFF000000);
      for (int y = 0; y < 121; ++y) {
        for (int x = 0; x < 203; ++x) {
          Gdiplus::Color colour;
          bitmap.GetPixel(x, y, &colour);
          expected.set(x, y, colour.GetValue());
        }
      }
      EXPECT_EQ("", differences(expected, picture())) << width << " wide, AlignmentX " << alignmentX;
    }
  }
  Gdiplus::GdiplusShutdown(token);
}

/// The one row where a column of the picture shows a colour; −1 for none, −2 for several apart.
int rowOf(const WindowPicture& shown, int x, std::uint32_t colour) {
  int first = -1, last = -1, count = 0;
  for (int y = 0; y < shown.height; ++y) {
    if (shown.at(x, y) != colour) continue;
    if (first < 0) first = y;
    last = y;
    ++count;
  }
  return count == 0 ? -1 : last - first + 1 == count ? first : -2;
}

TEST_F(MeterGraphPictures, ASmoothGraphMeetsTheLevelsAndStaysBetweenThem) {
  open(402, 202, 20);
  putSegments(1, 1);
  putTicks(false);
  sendSounds();
  putMode(5);
  const WindowPicture smooth = picture();
  const std::vector<Point> corners = points(402, 202, &LineInfo::value);
  int curved = 0;
  for (std::size_t i = 0; i + 1 < corners.size(); ++i) {
    const Point from = corners[i], to = corners[i + 1];
    EXPECT_EQ(valueColour, smooth.at(from.x, from.y)) << "line " << i;
    for (int x = from.x; x <= to.x; ++x) {
      const int row = rowOf(smooth, x, valueColour);
      ASSERT_GE(row, 0) << "no single piece at " << x;
      for (int y = 0; y < smooth.height; ++y) {
        if (smooth.at(x, y) != valueColour || x == from.x || x == to.x) continue;
        EXPECT_GE(y, std::min(from.y, to.y)) << x;
        EXPECT_LE(y, std::max(from.y, to.y)) << x;
        const double straight = from.y + static_cast<double>((to.y - from.y) * (x - from.x)) / (to.x - from.x);
        if (std::abs(y - straight) > 2 + std::abs(to.y - from.y) / (to.x - from.x)) ++curved;
      }
    }
  }
  EXPECT_GT(curved, 20) << "it is a straight one";
  putMode(6);
  EXPECT_EQ(smooth, picture()) << "type 6 is drawn as type 5";
  putMode(4);
  EXPECT_NE(smooth, picture());
}

TEST_F(MeterGraphPictures, ASmoothGraphOfCrowdedLinesIsStraight) {
  open(102, 102, 50);  // 2 pixels from line to line
  sendSounds();
  putMode(5);
  const WindowPicture smooth = picture();
  putMode(4);
  EXPECT_EQ(picture(), smooth);
}

TEST_F(MeterGraphPictures, MirroredSmoothGraphsAreTheSameUpAndDown) {
  open(402, 203, 20);
  putTicks(false);
  putSegments(1, 1);
  sendSounds();
  putMode(5, 1);
  const WindowPicture shown = picture();
  for (int x = 1; x < 400; ++x) {
    // The centre line lies in the middle of row 101; truncation moves the lower graph up by less than a pixel.
    int top = 0, bottom = 202;
    while (top < 202 && shown.at(x, top) != valueColour) ++top;
    while (bottom > 0 && shown.at(x, bottom) != valueColour) --bottom;
    EXPECT_NEAR(101.5 - top, bottom - 101.5, 2.0) << x;
  }
  putMode(6, 1);
  EXPECT_EQ(shown, picture()) << "type 14 is drawn as type 13";
}

TEST_F(MeterGraphPictures, TheTypesOfTheMirroredGraphsAreModesOfTheirOwnToo) {
  open(203, 121, 20);
  sendSounds();
  for (const int lineType : {4, 5, 6}) {
    putMode(lineType, 1);
    const WindowPicture mirrored = picture();
    putMode(lineType + 8);
    EXPECT_EQ(mirrored, picture()) << lineType + 8;
    putMode(lineType + 8, 1);
    EXPECT_EQ(mirrored, picture()) << lineType + 8 << ", mirrored";
  }
}

TEST_F(MeterGraphPictures, SilenceIsALineAtTheBottomAndFullScaleReachesTheTop) {
  open(78, 93, 7);
  putSegments(1, 1);
  putTicks(false);
  putMode(4);
  sendFullScale();
  const WindowPicture shown = picture();
  EXPECT_EQ(92, rowOf(shown, 1, valueColour));
  EXPECT_EQ(92, rowOf(shown, 10, valueColour));
  EXPECT_EQ(valueColour, shown.at(39, 1));  // the middle one of 7 points
  EXPECT_NE(valueColour, shown.at(39, 0));
}

}  // namespace
}  // namespace av::test
