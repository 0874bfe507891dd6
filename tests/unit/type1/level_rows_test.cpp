// The library's own logarithm and the maths library's lead to the same rows of every picture.

#include "dsp/levels.h"
#include "gfx/saturate.h"
#include "type1/plot_scale.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <random>
#include <vector>

namespace av {
namespace {

constexpr std::size_t length = 2048;
constexpr double fullScale = 32767;

/// Transforms whose bins have levels from −200 dB to a little above 0.
std::vector<double> randomTransform(std::mt19937_64& random) {
  std::uniform_real_distribution<double> levelDb(-200, 3);
  std::uniform_real_distribution<double> angle(0, 6.28);
  std::vector<double> hartley(length);
  for (std::size_t k = 1; k < length / 2; ++k) {
    const double amplitude = fullScale * std::pow(10.0, levelDb(random) / 20) * length / 2;
    const double phase = angle(random);
    hartley[k] = amplitude * (std::cos(phase) + std::sin(phase));
    hartley[length - k] = amplitude * (std::cos(phase) - std::sin(phase));
  }
  return hartley;
}

double libraryLevel(const std::vector<double>& hartley, std::size_t k) {
  const double re = (hartley[k] + hartley[length - k]) / length;
  const double im = (hartley[k] - hartley[length - k]) / length;
  return 20.0 * std::log10(std::sqrt(re * re + im * im) / fullScale);
}

type1::PlotScale scaleOf(int heightPx) {
  type1::ViewLayout layout;
  layout.plotHeight = heightPx;
  return {type1::ViewSettings(), layout};
}

/// The row of the level meter where a bar of this height ends.
int meterRow(double levelDb, int heightPx) {
  return truncToInt(heightPx - (std::max(levelDb, -91.0) + 91.0) * heightPx / 91.0);
}

/// How many of `count` levels would be drawn in another row.
int changedRows(int count) {
  std::mt19937_64 random(3);
  int changed = 0;
  for (int done = 0; done < count; done += static_cast<int>(length / 2 - 1)) {
    const auto hartley = randomTransform(random);
    auto levels = hartley;
    dsp::hartleyBinsToLevels(levels, fullScale);
    const int heightPx = std::uniform_int_distribution(50, 1500)(random);
    const auto scale = scaleOf(heightPx);
    for (std::size_t k = 1; k < length / 2; ++k) {
      const double level = libraryLevel(hartley, k);
      changed += scale.ofLinearLevel(level) != scale.ofLinearLevel(levels[k]);
      changed += scale.ofOctaveLevel(level) != scale.ofOctaveLevel(levels[k]);
      changed += scale.aboveBar(level) != scale.aboveBar(levels[k]);
      changed += meterRow(level, heightPx) != meterRow(levels[k], heightPx);
    }
  }
  return changed;
}

}  // namespace

TEST(LevelRows, AreThoseOfTheMathsLibrarysLogarithm) { EXPECT_EQ(changedRows(100'000), 0); }

TEST(FullLevelRows, AreThoseOfTheMathsLibrarysLogarithmForTenMillionLevels) { EXPECT_EQ(changedRows(10'000'000), 0); }

}  // namespace av
