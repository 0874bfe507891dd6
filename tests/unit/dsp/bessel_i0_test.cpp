#include "dsp/bessel_i0.h"

#include "support/analysis_window_oracle.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

namespace av::dsp {
namespace {

// e^x (one unit in the last place), the series' last steps, its scaling and the square root round in turn: at most four
// units.
constexpr double relativeBound = 8e-16;

TEST(BesselI0, HasThePublishedValues) {
  // Computed with 40 digits (mpmath).
  const struct {
    double x;
    double value;
  } rows[] = {{0, 1.0},
              {0.001, 1.000000250000015625},
              {0.5, 1.063483370741323519},
              {1, 1.266065877752008336},
              {2, 2.279585302336067267},
              {3.5, 7.37820343222547966},
              {4, 11.3019219521363305},
              {5.25, 34.08053564038684546},
              {7.9375, 403.295116371812787},
              {8, 427.5641157218047852},
              {8.0625, 453.3084729820890363},
              {10, 2815.716628466254471},
              {12.5, 30596.33515578515361},
              {20, 43558282.55955353327},
              {30, 781672297823.9774897}};
  for (const auto& row : rows) {
    EXPECT_NEAR(besselI0(row.x), row.value, row.value * relativeBound) << row.x;
    EXPECT_EQ(besselI0(-row.x), besselI0(row.x)) << row.x;
  }
}

TEST(BesselI0, IsThatOfThePowerSeriesOnBothSidesOfEight) {
  double worst = 0;
  for (int i = 0; i <= 30000; ++i) {
    const double x = i / 1000.0;
    const long double expected = test::besselSeries(x);
    worst = std::max(worst, static_cast<double>(std::fabs(besselI0(x) - expected) / expected));
  }
  EXPECT_LE(worst, relativeBound);
}

TEST(BesselI0, IsNoNumberForNoNumber) { EXPECT_TRUE(std::isnan(besselI0(std::numeric_limits<double>::quiet_NaN()))); }

}  // namespace
}  // namespace av::dsp
