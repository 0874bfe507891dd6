// The player's window: nothing overlaps and nothing is outside, at any size and DPI from the smallest on.

#include "player/window_layout.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace avplayer {
namespace {

bool overlap(const Box& a, const Box& b) {
  return a.x < b.right() && b.x < a.right() && a.y < b.bottom() && b.y < a.bottom();
}

bool within(const Box& inner, const Box& outer) {
  return inner.x >= outer.x && inner.y >= outer.y && inner.right() <= outer.right() && inner.bottom() <= outer.bottom();
}

bool isEmpty(const Box& box) { return box.width <= 0 || box.height <= 0; }

void expectApart(const std::vector<Box>& boxes, const Box& outer) {
  for (std::size_t i = 0; i < boxes.size(); ++i) {
    EXPECT_FALSE(isEmpty(boxes[i])) << i;
    EXPECT_TRUE(within(boxes[i], outer)) << i;
    for (std::size_t j = 0; j < i; ++j) EXPECT_FALSE(overlap(boxes[i], boxes[j])) << i << " and " << j;
  }
}

struct Display {
  int width96, height96, dpi;
};

constexpr Display displays[] = {{600, 400, 96},   {640, 480, 96},  {1180, 760, 96}, {3000, 500, 96}, {600, 2000, 96},
                                {1180, 760, 192}, {600, 400, 192}, {801, 603, 144}, {700, 500, 120}};

TEST(PlayerLayout, KeepsAllPartsApartAndInsideAtEverySizeAndDpi) {
  for (const Display& display : displays) {
    SCOPED_TRACE(std::to_string(display.width96) + " x " + std::to_string(display.height96) + " at " +
                 std::to_string(display.dpi));
    const int width = scaled(display.width96, display.dpi), height = scaled(display.height96, display.dpi);
    for (const bool panel : {true, false}) {
      const WindowLayout layout = layOutWindow(width, height, display.dpi, {panel, false});
      const Box client = {0, 0, width, height};
      std::vector<Box> parts = {layout.stage, layout.transport, layout.status};
      if (panel) parts.push_back(layout.panel);
      else EXPECT_TRUE(isEmpty(layout.panel));
      expectApart(parts, client);
      std::vector<Box> onStage;
      for (std::size_t i = 0; i < controlCount; ++i) {
        onStage.push_back(layout.controls[i]);
        onStage.push_back(layout.captions[i]);
        EXPECT_EQ(layout.captions[i].bottom(), layout.controls[i].y);
      }
      expectApart(onStage, layout.stage);
      std::vector<Box> buttons = {layout.toStart, layout.play,     layout.seek,
                                  layout.loop,    layout.snapshot, layout.fullScreen};
      if (!isEmpty(layout.time)) buttons.push_back(layout.time);
      expectApart(buttons, layout.transport);
    }
  }
}

TEST(PlayerLayout, LeavesNoGroundUncovered) {
  const WindowLayout layout = layOutWindow(1000, 700, 96, {true, false});
  const int area = layout.stage.width * layout.stage.height + layout.transport.width * layout.transport.height +
                   layout.panel.width * layout.panel.height + layout.status.width * layout.status.height;
  EXPECT_EQ(1000 * 700, area);
}

TEST(PlayerLayout, TreatsSmallerWindowsAsTheSmallest) {
  const WindowLayout smallest = layOutWindow(smallestWidth96, smallestHeight96, 96, {true, false});
  const WindowLayout smaller = layOutWindow(10, 0, 96, {true, false});
  EXPECT_EQ(smallest.controls, smaller.controls);
  EXPECT_EQ(smallest.panel, smaller.panel);
}

TEST(PlayerLayout, GrowsWithTheDpi) {
  const WindowLayout small = layOutWindow(1200, 800, 96, {true, false});
  const WindowLayout large = layOutWindow(2400, 1600, 192, {true, false});
  EXPECT_EQ(2 * small.panel.width, large.panel.width);
  EXPECT_EQ(2 * small.transport.height, large.transport.height);
  for (std::size_t i = 0; i < controlCount; ++i) EXPECT_NEAR(2 * small.controls[i].width, large.controls[i].width, 2);
}

TEST(PlayerLayout, GivesTheFullScreenToTheControlsAlone) {
  const WindowLayout layout = layOutWindow(1920, 1080, 96, {true, true});
  EXPECT_EQ((Box{0, 0, 1920, 1080}), layout.stage);
  EXPECT_TRUE(isEmpty(layout.panel) && isEmpty(layout.transport) && isEmpty(layout.status) &&
              isEmpty(layout.captions[0]));
  expectApart({layout.controls.begin(), layout.controls.end()}, layout.stage);
}

TEST(PanelLayout, KeepsItsPartsApart) {
  for (const Display& display : displays) {
    const WindowLayout window = layOutWindow(scaled(display.width96, display.dpi),
                                             scaled(display.height96, display.dpi), display.dpi, {true, false});
    const PanelLayout layout = layOutPanel(window.panel.width, window.panel.height, display.dpi);
    expectApart({layout.tabs[0], layout.tabs[1], layout.tabs[2], layout.presetName, layout.savePreset,
                 layout.deletePreset, layout.filter, layout.rows, layout.help},
                {0, 0, window.panel.width, window.panel.height});
    EXPECT_GE(layout.rows.height, scaled(90, display.dpi)) << "room for three properties";
    EXPECT_GE(layout.presetName.width, scaled(100, display.dpi));
  }
}

TEST(PropertyRowsLayout, StacksRowsWithoutGapsAndKeepsFieldsInTheirRows) {
  const RowsLayout layout = layOutRows(
      {RowKind::heading, RowKind::property, RowKind::property, RowKind::heading, RowKind::property}, 300, 144);
  ASSERT_EQ(5u, layout.rows.size());
  int y = 0;
  for (const RowLayout& row : layout.rows) {
    EXPECT_EQ(y, row.row.y);
    EXPECT_TRUE(within(row.label, row.row));
    if (!isEmpty(row.editor)) {
      EXPECT_TRUE(within(row.editor, row.row));
      EXPECT_FALSE(overlap(row.editor, row.label));
    }
    y = row.row.bottom();
  }
  EXPECT_TRUE(isEmpty(layout.rows[0].editor));
  EXPECT_GE(layout.heightPx, y);
  EXPECT_EQ(0, layOutRows({}, 300, 96).heightPx);
}

TEST(ScrollToShow, MovesNoFurtherThanNeeded) {
  EXPECT_EQ(100, scrollToShow({0, 150, 10, 30}, 100, 200)) << "visible already";
  EXPECT_EQ(50, scrollToShow({0, 50, 10, 30}, 100, 200)) << "above: its top becomes the first line";
  EXPECT_EQ(130, scrollToShow({0, 300, 10, 30}, 100, 200)) << "below: its bottom becomes the last line";
  EXPECT_EQ(300, scrollToShow({0, 300, 10, 30}, 100, 20)) << "higher than what is visible: its top";
}

}  // namespace
}  // namespace avplayer
