// The spectrum analyser's portable half when memory runs out at any place.

#include "support/counting_lock.h"
#include "support/made_up_font.h"
#include "support/pcm.h"
#include "type3/analysis.h"
#include "type3/frame.h"
#include "unit/memory/memory_test.h"

#include <memory>
#include <optional>
#include <vector>

namespace av::type3 {
namespace {

test::Pcm block() {
  return test::makePcm(16, 2, 2100,
                       [](int frame, int channel) { return frame * 7919 * (channel + 1) % 65536 - 32768; });
}

struct Analyser {
  test::CountingLock lock;
  LineList columns{lock};
  AnalyserSettings settings;
  AnalyserAnalysis analysis{columns};

  /// The bands of the next block, 0 in the place of those without bins.
  std::vector<double> bandsOf(const test::Pcm& pcm) {
    EXPECT_TRUE(analysis.accept(pcm.block(), settings, 100, 0));
    std::vector<double> bands(analysis.bands().begin(), analysis.bands().end());
    for (double& band : bands)
      if (band != band) band = 0;
    return bands;
  }
};

class AnalyserMemory : public test::MemoryTest {};
INSTANTIATE_TEST_SUITE_P(AnAllocationFails, AnalyserMemory,
                         testing::Values(test::Failing::once, test::Failing::forEver));

TEST_P(AnalyserMemory, AnAnalysisThatCannotBeMadeLeavesNothing) {
  const auto allocations = forEachFailure(
      [] { return std::unique_ptr<Analyser>(); }, [](auto& analyser) { analyser = std::make_unique<Analyser>(); },
      [](const auto& analyser, bool threw) { EXPECT_NE(threw, analyser != nullptr); });
  EXPECT_LT(10u, allocations);
}

TEST_P(AnalyserMemory, ALengthThatDoesNotFitChangesNothing) {
  const test::Pcm pcm = block();
  Analyser reference;
  const auto old = reference.bandsOf(pcm);
  reference.analysis.setFftLength(2048);
  const auto longer = reference.bandsOf(pcm);
  ASSERT_NE(old, longer);
  const auto allocations = forEachFailure([] { return std::make_unique<Analyser>(); },
                                          [](auto& analyser) { analyser->analysis.setFftLength(2048); },
                                          [&](auto& analyser, bool threw) {
                                            EXPECT_EQ(threw ? 512 : 2048, analyser->analysis.transform().length());
                                            EXPECT_EQ(threw ? old : longer, analyser->bandsOf(pcm));
                                          });
  EXPECT_LT(5u, allocations);
}

TEST_P(AnalyserMemory, ColumnsThatDoNotFitChangeNothing) {
  const test::Pcm pcm = block();
  Analyser reference;
  const auto old = reference.bandsOf(pcm);
  const auto allocations = forEachFailure([] { return std::make_unique<Analyser>(); },
                                          [](auto& analyser) { analyser->analysis.setLineCount(200); },
                                          [&](auto& analyser, bool threw) {
                                            EXPECT_EQ(threw ? 60 : 200, analyser->columns.count());
                                            if (threw) {
                                              EXPECT_EQ(old, analyser->bandsOf(pcm));
                                            }
                                            analyser->settings.lineCount = analyser->columns.count();
                                            EXPECT_EQ(threw ? 60u : 200u, analyser->bandsOf(pcm).size());
                                          });
  EXPECT_EQ(2u, allocations);
}

TEST_P(AnalyserMemory, BlocksNeedNoneWhateverTheirAxis) {
  test::Pcm pcm = block();
  Analyser analyser;
  for (const std::int32_t count : {200, 4, 60}) {
    analyser.settings.lineCount = count;
    analyser.analysis.setLineCount(count);
    for (int axis = 0; axis < 8; ++axis) {
      analyser.settings.xScaleType = axis & 1;
      analyser.settings.alignmentX = axis >> 1 & 1;
      pcm.format.nSamplesPerSec = axis & 4 ? 48000 : 8000;
      const auto before = test::allocationCount();
      EXPECT_TRUE(analyser.analysis.accept(pcm.block(), analyser.settings, 100, 0));
      EXPECT_EQ(before, test::allocationCount()) << count << " columns, axis " << axis;
    }
  }
}

TEST_P(AnalyserMemory, AFrameThatDoesNotFitIsBuiltOnceThereIsSome) {
  struct Picture {
    AnalyserFrame frame;
    ColumnImages images;
  };
  const test::MadeUpFont font(11);
  const std::vector<LineInfo> columns(60, LineInfo{1000, 30, 40, 0});
  for (int view = 0; view < 8; ++view) {
    AnalyserSettings settings;
    settings.viewType = view & 3;
    settings.alignmentY = view >> 2;
    settings.xScaleType = view & 1;
    settings.borderType = 1;
    const AnalyserLayout layout = computeLayout(settings, {400, 250}, 11, font);
    const BandAxis axis = bandAxis(settings, 512, 44100);
    const auto build = [&](Picture& picture) {
      rebuildColumnImages(picture.images, settings, layout.areaHeightPx);
      buildFurniture(picture.frame, settings, layout, picture.images, axis, font);
      buildColumns(picture.frame, settings, layout, picture.images, columns);
    };
    Picture expected;
    build(expected);
    const auto allocations = forEachFailure([] { return Picture(); }, build,
                                            [&](Picture& picture, bool threw) {
                                              if (threw) build(picture);
                                              EXPECT_EQ(expected.images.lit, picture.images.lit);
                                              EXPECT_EQ(expected.images.unlit, picture.images.unlit);
                                              EXPECT_EQ(expected.frame.texts, picture.frame.texts);
                                              EXPECT_EQ(expected.frame.columns, picture.frame.columns);
                                              EXPECT_EQ(expected.frame.ticks, picture.frame.ticks);
                                              EXPECT_EQ(expected.frame.gaps, picture.frame.gaps);
                                            });
    EXPECT_LT(20u, allocations) << view;
  }
}

}  // namespace
}  // namespace av::type3
