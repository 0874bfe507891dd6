#include "type3/column_kernel.h"

#include "support/plain_columns.h"
#include "support/special_signals.h"
#include "type3/bands.h"
#include "type3/column_heights.h"

#include <gtest/gtest.h>

#include <bit>
#include <cmath>
#include <cstdint>
#include <limits>
#include <random>
#include <vector>

namespace av::type3 {
namespace {

constexpr double infinity = std::numeric_limits<double>::infinity();
constexpr double notANumber = std::numeric_limits<double>::quiet_NaN();
constexpr std::int32_t most = std::numeric_limits<std::int32_t>::max();

/// Numbers at which something ends: those of both precisions, and the halves between two single ones.
const std::vector<double> edges{0.0,
                                -0.0,
                                5e-324,
                                -5e-324,
                                2.2250738585072014e-308,
                                0x1p-150,
                                0x1p-149,
                                0x1.8p-149,
                                0x1p-126,
                                0x1p-127,
                                0x1.ffffffp-127,
                                1.0,
                                -1.0,
                                0x1p128,
                                0x1.fp1023,
                                infinity,
                                -infinity,
                                notANumber,
                                -0x1p200,
                                0x1.000001p0,
                                0x1.000003p0,
                                0x1.fffffep127,
                                0x1.ffffffp127,
                                2.0};

bool sameBits(double a, double b) {
  return std::bit_cast<std::uint64_t>(a) == std::bit_cast<std::uint64_t>(b) || (std::isnan(a) && std::isnan(b));
}

class EachColumnKernel : public testing::TestWithParam<const ColumnKernel*> {
 protected:
  /// Any bits at all, an edge, a power, or a number that lies halfway between two of single precision.
  double anything() {
    switch (m_random() % 4) {
      case 0: return std::bit_cast<double>(m_random());
      case 1: return edges[static_cast<std::size_t>(m_random() % edges.size())];
      case 2:
        return std::bit_cast<double>((m_random() & 0x3ff0000000000000) | (m_random() & 0x000fffffe0000000) |
                                     0x10000000);
      default: return std::ldexp(static_cast<double>(m_random() % 1000000), static_cast<int>(m_random() % 60) - 20);
    }
  }
  int below(int limit) { return static_cast<int>(m_random() % static_cast<unsigned>(limit)); }

  AnalyserSettings anySettings() {
    AnalyserSettings settings;
    const bool reasonable = m_random() % 4 != 0;
    settings.scaleYMin = below(reasonable ? 60 : most);
    settings.scaleYMax = below(reasonable ? 160 : most);
    settings.spotHeightPx = below(reasonable ? 6 : most);
    settings.spotIntervalPx = below(reasonable ? 4 : most);
    settings.alignmentY = below(2);
    return settings;
  }

 private:
  std::mt19937_64 m_random{8};
};

TEST_P(EachColumnKernel, HasTheAmplitudesOfThePlainOperations) {
  for (int run = 0; run < 3000; ++run) {
    const std::size_t count = 1 + static_cast<std::size_t>(below(static_cast<int>(columnsAtATime)));
    const double fullScale = std::vector<double>{32768, 128, 8388608, 2147483648.0, 0, 7}[run % 6];
    ColumnValues sums{};
    ColumnValues bins{};
    for (std::size_t i = 0; i < count; ++i) {
      sums[i] = std::fabs(anything());
      bins[i] = below(600);
    }
    const ColumnValues before = sums;
    GetParam()->amplitudes(sums.data(), bins.data(), count, fullScale);
    for (std::size_t i = 0; i < count; ++i)
      ASSERT_TRUE(sameBits(sums[i], test::plainAmplitude(before[i], bins[i], fullScale)))
          << before[i] << " of " << bins[i] << " bins over " << fullScale << " is " << sums[i];
  }
}

TEST_P(EachColumnKernel, HasTheHeightsOfThePlainOperations) {
  for (int run = 0; run < 60000; ++run) {
    const AnalyserSettings settings = anySettings();
    const int length = run % 20 == 0 ? 0 : 4 << below(14);
    const int area = below(4) != 0 ? below(1200) : std::vector<int>{0, -1, -500, most, -most - 1}[run % 5];
    const double amplitude = below(2) != 0 ? anything() : std::pow(10.0, -below(9000) / 1000.0) * length;
    ASSERT_EQ(columnHeightPx(amplitude, settings, length, area, *GetParam()),
              test::plainColumnHeight(amplitude, settings, length, area))
        << amplitude << ", " << length << " samples, " << area << " pixels, scale " << settings.scaleYMin << " to "
        << settings.scaleYMax << ", segments " << settings.spotHeightPx << " and " << settings.spotIntervalPx;
  }
}

TEST_P(EachColumnKernel, HasTheHeightsOfThePlainOperationsAroundEveryWholeDecibel) {
  AnalyserSettings settings;
  for (int attenuation = 0; attenuation <= 100; ++attenuation) {
    double amplitude = 256 * std::pow(10.0, -attenuation / 20.0);
    for (int i = 0; i < 300; ++i) amplitude = std::nextafter(static_cast<float>(amplitude), 0.0F);
    for (int i = 0; i < 600; ++i) {
      for (const double value : {amplitude, std::nextafter(amplitude, 0.0), amplitude * (1 + 0x1p-25)}) {
        ASSERT_EQ(columnHeightPx(value, settings, 512, 400, *GetParam()),
                  test::plainColumnHeight(value, settings, 512, 400))
            << value;
      }
      amplitude = std::nextafter(static_cast<float>(amplitude), 1e9F);
    }
  }
}

TEST_P(EachColumnKernel, DoesEveryCountOfColumns) {
  const AnalyserSettings settings;
  for (std::size_t count = 1; count <= columnsAtATime; ++count) {
    ColumnValues amplitudes{};
    for (std::size_t i = 0; i < count; ++i) amplitudes[i] = std::fabs(anything());
    ColumnValues heights = amplitudes;
    const HeightScale scale{1.0 / 512, -100, 0, 1, 400, 3, 1};
    GetParam()->heights(heights.data(), count, scale);
    for (std::size_t i = 0; i < count; ++i)
      ASSERT_TRUE(sameBits(heights[i], test::plainColumnHeight(amplitudes[i], settings, 512, 400)))
          << amplitudes[i] << ", column " << i << " of " << count;
  }
}

TEST_P(EachColumnKernel, FoldsBandsOfAnyPlanIntoTheAmplitudesOfTheirSums) {
  for (const std::int32_t lines : {4, 60, 63, 64, 65, 127, 128, 129, 200}) {
    for (const bool logarithmic : {false, true}) {
      const BandAxis axis{.logarithmic = logarithmic, .lineCount = lines, .fftLength = 256};
      std::vector<BinRange> plan;
      planBands(plan, axis);
      std::vector<double> power(128);
      for (double& bin : power) bin = std::fabs(anything());
      std::vector<double> bands(static_cast<std::size_t>(lines));
      foldBands(bands, axis, plan, power, 32768, *GetParam());
      for (std::size_t i = 0; i < bands.size(); ++i) {
        double sum = 0;
        for (std::int32_t n = 0; n < plan[i].count; ++n) {
          const std::int32_t bin = logarithmic ? plan[i].first + plan[i].count - 1 - n : plan[i].first + n;
          if (bin < 128) sum += power[static_cast<std::size_t>(bin)];
        }
        ASSERT_TRUE(sameBits(bands[i], test::plainAmplitude(sum, plan[i].count, 32768))) << i << " of " << lines;
      }
    }
  }
}

INSTANTIATE_TEST_SUITE_P(OnThisProcessor, EachColumnKernel, testing::ValuesIn(columnKernels()),
                         test::kernelName<ColumnKernel>);

}  // namespace
}  // namespace av::type3
