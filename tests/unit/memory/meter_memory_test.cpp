// The level meter's portable half when memory runs out at any place.

#include "support/counting_lock.h"
#include "support/pcm.h"
#include "type2/analysis.h"
#include "type2/frame.h"
#include "type2/segments.h"
#include "unit/memory/memory_test.h"

#include <memory>
#include <optional>
#include <vector>

namespace av::type2 {
namespace {

test::Pcm block(int frames) {
  return test::makePcm(16, 1, frames, [](int frame, int) { return frame * 7919 % 65536 - 32768; });
}

struct Meter {
  test::CountingLock lock;
  LineList lines{lock};
  MeterSettings settings;

  std::vector<LineInfo> copy() {
    std::vector<LineInfo> all;
    lines.withLines([&](std::span<const LineInfo> each) { all.assign(each.begin(), each.end()); });
    return all;
  }
};

class MeterMemory : public test::MemoryTest {};
INSTANTIATE_TEST_SUITE_P(AnAllocationFails, MeterMemory, testing::Values(test::Failing::once, test::Failing::forEver));

TEST_P(MeterMemory, AnAnalysisThatCannotBeMadeLeavesNothing) {
  Meter meter;
  const auto allocations = forEachFailure(
      [] { return std::optional<MeterAnalysis>(); }, [&](auto& analysis) { analysis.emplace(meter.lines); },
      [](const auto& analysis, bool threw) { EXPECT_NE(threw, analysis.has_value()); });
  EXPECT_LT(5u, allocations);
}

TEST_P(MeterMemory, LinesThatDoNotFitLeaveTheOldOnes) {
  const auto allocations = forEachFailure(
      [] {
        auto meter = std::make_unique<Meter>();
        meter->lines.SetLineCount(5);
        meter->lines.SetHoldTime(77);
        return meter;
      },
      [](auto& meter) { meter->lines.SetLineCount(100); },
      [](auto& meter, bool threw) {
        EXPECT_EQ(threw ? 5 : 100, meter->lines.count());
        const auto lines = meter->copy();
        EXPECT_EQ(threw ? 5u : 100u, lines.size());
        EXPECT_EQ(threw ? 77 : 1000, lines.front().holdMs);
        EXPECT_EQ(0, meter->lock.depth);
      });
  EXPECT_EQ(1u, allocations);
}

TEST_P(MeterMemory, BlocksOfAnyLengthNeedNone) {
  Meter meter;
  meter.lines.SetLineCount(50);
  MeterAnalysis analysis(meter.lines);
  std::vector<int> lengths = {48000, 47999, 33000, 16385, 16384, 16383};
  for (int length = 50; length < 10000; length += length / 7 + 1) lengths.push_back(length);
  for (const int length : lengths) {
    const test::Pcm pcm = block(length);
    meter.settings.fftWindowType = length % 5;
    const auto before = test::allocationCount();
    analysis.accept(pcm.block(), meter.settings, 0);
    EXPECT_EQ(before, test::allocationCount()) << length;
  }
}

TEST_P(MeterMemory, AFrameThatDoesNotFitIsBuiltOnceThereIsSome) {
  struct Picture {
    MeterFrame frame;
    SegmentColumns columns;
  };
  const std::vector<LineInfo> lines(20, LineInfo{1000, -30, -20, 0});
  for (int type = 0; type <= 6; ++type) {
    MeterSettings settings;
    settings.lineType = type;
    settings.borderType = 1;
    const MeterGeometry geometry = computeGeometry(settings, 20, {0, 0, 300, 200});
    const auto build = [&](Picture& picture) {
      fillSegmentColumns(picture.columns, settings, geometry);
      buildFrame(picture.frame, settings, geometry, lines, true);
    };
    Picture expected;
    build(expected);
    const auto allocations = forEachFailure([] { return Picture(); }, build,
                                            [&](Picture& picture, bool threw) {
                                              if (threw) build(picture);
                                              EXPECT_EQ(expected.columns.lit, picture.columns.lit);
                                              EXPECT_EQ(expected.columns.unlit, picture.columns.unlit);
                                              EXPECT_TRUE(expected.frame.border == picture.frame.border &&
                                                          expected.frame.segments == picture.frame.segments &&
                                                          expected.frame.graphs == picture.frame.graphs);
                                            });
    EXPECT_LT(4u, allocations) << type;
  }
}

}  // namespace
}  // namespace av::type2
