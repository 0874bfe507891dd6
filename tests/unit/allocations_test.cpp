// Once a control has seen blocks of a kind, neither such blocks nor frames of them allocate anything.

#include "support/allocation_count.h"
#include "support/counting_lock.h"
#include "support/made_up_font.h"
#include "support/pcm.h"
#include "type1/analysis.h"
#include "type1/frame.h"
#include "type2/analysis.h"
#include "type2/frame.h"
#include "type2/segments.h"
#include "type3/analysis.h"
#include "type3/frame.h"

#include <gtest/gtest.h>

#include <functional>
#include <span>
#include <string>
#include <vector>

namespace av {
namespace {

constexpr Rect client{0, 0, 800, 400};
constexpr int textHeightPx = 13;

/// Blocks of all depths, of more and fewer frames.
std::vector<test::Pcm> blocks(int channels) {
  std::vector<test::Pcm> all;
  for (const int bits : {16, 8, 24, 32, 12})
    for (const int frames : {1024, 1000, 4410, 50})
      all.push_back(test::makePcm(bits, channels, frames, [](int frame, int channel) { return frame * channel % 97; }));
  return all;
}

/// Calls `work` for all blocks, which warms it up, and again, which may allocate nothing. Channels that are added later get
/// fresh arrays in the view, so each number of them is warmed up on its own.
void expectNoAllocations(const std::string& what, const std::function<void(const AudioBlock&)>& work) {
  for (const int channels : {2, 1, 6}) {
    const std::vector<test::Pcm> all = blocks(channels);
    for (const test::Pcm& pcm : all) work(pcm.block());
    const std::uint64_t before = test::allocationCount();
    for (const test::Pcm& pcm : all) work(pcm.block());
    EXPECT_EQ(test::allocationCount(), before) << what << ", " << channels << " channels";
  }
}

}  // namespace

TEST(Allocations, AreNoneForTheViewsBlocksAndFrames) {
  const test::MadeUpFont font(textHeightPx);
  for (int type = 1; type <= 7; ++type) {
    for (const int axis : {1, 2}) {
      test::CountingLock lock;
      type1::ViewSettings settings;
      settings.visualizationType = type;
      settings.fftViewType = axis;
      settings.fftWindowType = axis + 1;
      type1::ViewAnalysis analysis(lock);
      type1::ViewFrame frame;
      expectNoAllocations("type " + std::to_string(type), [&](const AudioBlock& block) {
        analysis.accept(block, settings);
        analysis.smoothingStep(settings);
        const auto signal = analysis.signal();
        const auto layout = type1::computeLayout(settings, signal.sampleRateHz, client, textHeightPx);
        type1::buildFrame(frame, settings, signal, layout, font);
      });
    }
  }
}

TEST(Allocations, AreNoneForTheLevelMetersBlocksAndFrames) {
  for (int lineType = 0; lineType <= 14; ++lineType) {
    for (const int layout : {0, 1, 2, 3}) {
      test::CountingLock lock;
      LineList lines(lock);
      lines.SetLineCount(100);
      type2::MeterSettings settings;
      settings.lineType = lineType;
      settings.fftViewType = layout / 2;
      settings.alignmentY = layout % 2;
      settings.fftWindowType = layout;
      type2::MeterAnalysis analysis(lines);
      const auto geometry = type2::computeGeometry(settings, lines.count(), client);
      type2::MeterFrame frame;
      expectNoAllocations("line type " + std::to_string(lineType), [&](const AudioBlock& block) {
        analysis.accept(block, settings, 1);
        lines.FallStep([] { return std::uint32_t{2}; });
        lines.withLines([&](auto all) { type2::buildFrame(frame, settings, geometry, all, true); });
      });
    }
  }
}

TEST(Allocations, AreNoneForTheSpectrumAnalysersBlocksAndColumns) {
  for (const std::int32_t length : {4, 512, 1024, 4096}) {
    for (const int scale : {0, 1}) {
      test::CountingLock lock;
      LineList columns(lock);
      type3::AnalyserSettings settings;
      settings.xScaleType = scale;
      type3::AnalyserAnalysis analysis(columns);
      analysis.setFftLength(length);
      const auto layout = type3::computeLayout(settings, {800, 400}, textHeightPx, test::MadeUpFont(textHeightPx));
      type3::ColumnImages images;
      type3::rebuildColumnImages(images, settings, layout.areaHeightPx);
      type3::AnalyserFrame frame;
      expectNoAllocations("length " + std::to_string(length), [&](const AudioBlock& block) {
        analysis.accept(block, settings, layout.areaHeightPx, 1);
        analysis.tick(settings, 2);
        columns.withLines([&](auto all) { type3::buildColumns(frame, settings, layout, images, all); });
      });
    }
  }
}

}  // namespace av
