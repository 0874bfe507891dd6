// The view's portable half when memory runs out at any place.

#include "support/counting_lock.h"
#include "support/made_up_font.h"
#include "support/pcm.h"
#include "type1/analysis.h"
#include "type1/frame.h"
#include "unit/memory/memory_test.h"

#include <algorithm>
#include <memory>
#include <optional>
#include <vector>

namespace av::type1 {
namespace {

struct View {
  explicit View(int type = 2) { settings.visualizationType = type; }
  test::CountingLock lock;
  ViewSettings settings;
  ViewAnalysis analysis{lock};
};

test::Pcm block(int frames) {
  return test::makePcm(16, 6, frames,
                       [](int frame, int channel) { return frame * 7919 * (channel + 1) % 65536 - 32768; });
}

/// All arrays one behind the other.
std::vector<double> arrays(const View& view) {
  std::vector<double> all;
  const ViewSignal signal = view.analysis.signal();
  for (std::size_t channel = 0; channel < signal.channelsInUse(); ++channel)
    all.insert(all.end(), signal.analysis[channel].begin(), signal.analysis[channel].end());
  return all;
}

/// What a view shows of a block that had memory from the beginning.
std::vector<double> arraysOf(int windowSize, const test::Pcm& pcm) {
  View view;
  view.settings.fftWindowSize = windowSize;
  view.analysis.resizeWindow(view.settings);
  EXPECT_EQ(ViewAnalysis::Outcome::analysed, view.analysis.accept(pcm.block(), view.settings));
  return arrays(view);
}

class ViewMemory : public test::MemoryTest {};
INSTANTIATE_TEST_SUITE_P(AnAllocationFails, ViewMemory, testing::Values(test::Failing::once, test::Failing::forEver));

TEST_P(ViewMemory, AnAnalysisThatCannotBeMadeLeavesNothing) {
  test::CountingLock lock;
  const auto allocations =
      forEachFailure([] { return std::optional<ViewAnalysis>(); }, [&](auto& analysis) { analysis.emplace(lock); },
                     [](const auto& analysis, bool threw) { EXPECT_NE(threw, analysis.has_value()); });
  EXPECT_LT(5u, allocations);
}

TEST_P(ViewMemory, ABlockThatBringsChannelsIsShownOnceThereIsSome) {
  const test::Pcm pcm = block(1100);
  const std::vector<double> expected = arraysOf(1024, pcm);
  const auto allocations = forEachFailure(
      [] { return std::make_unique<View>(); }, [&](auto& view) { view->analysis.accept(pcm.block(), view->settings); },
      [&](auto& view, bool threw) {
        EXPECT_FALSE(threw);
        EXPECT_EQ(ViewAnalysis::Outcome::analysed, view->analysis.accept(pcm.block(), view->settings));
        EXPECT_EQ(expected, arrays(*view));
      });
  EXPECT_LE(12u, allocations);
}

TEST_P(ViewMemory, AWindowThatDoesNotFitKeepsTheOldOne) {
  const test::Pcm pcm = block(4096);
  const std::vector<double> old = arraysOf(1024, pcm);
  const std::vector<double> wide = arraysOf(4096, pcm);
  const auto allocations = forEachFailure(
      [&] {
        auto view = std::make_unique<View>();
        view->analysis.accept(pcm.block(), view->settings);
        return view;
      },
      [](auto& view) {
        view->settings.fftWindowSize = 4096;
        view->analysis.resizeWindow(view->settings);
      },
      [&](auto& view, bool threw) {
        EXPECT_EQ(threw ? 1024 : 4096, int{view->settings.fftWindowSize});
        EXPECT_EQ(threw ? 1024 : 4096, view->analysis.windowSize());
        if (threw) {
          EXPECT_EQ(old, arrays(*view));
        }
        EXPECT_EQ(ViewAnalysis::Outcome::analysed, view->analysis.accept(pcm.block(), view->settings));
        EXPECT_EQ(threw ? old : wide, arrays(*view));
      });
  EXPECT_LT(12u, allocations);
}

TEST_P(ViewMemory, AFrameThatDoesNotFitIsBuiltOnceThereIsSome) {
  const test::MadeUpFont font(13);
  for (int type = 1; type <= 7; ++type) {
    View view(type);
    view.settings.borderType = 1;
    const test::Pcm pcm = block(1024);
    ASSERT_EQ(ViewAnalysis::Outcome::analysed, view.analysis.accept(pcm.block(), view.settings));
    const ViewSignal signal = view.analysis.signal();
    const ViewLayout layout = computeLayout(view.settings, 44100, {0, 0, 400, 300}, 13);
    ViewFrame expected;
    buildFrame(expected, view.settings, signal, layout, font);
    const auto build = [&](ViewFrame& frame) { buildFrame(frame, view.settings, signal, layout, font); };
    const auto allocations =
        forEachFailure([] { return ViewFrame(); }, build,
                       [&](ViewFrame& frame, bool threw) {
                         if (threw) build(frame);
                         EXPECT_EQ(static_cast<const ViewFurniture&>(expected), frame);
                         EXPECT_TRUE(expected.curves == frame.curves && expected.bars == frame.bars &&
                                     expected.balance == frame.balance && expected.correlation == frame.correlation);
                       });
    EXPECT_LT(8u, allocations) << type;
  }
}

}  // namespace
}  // namespace av::type1
