#include "dsp/analysis_windows.h"

#include "support/analysis_window_oracle.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <string_view>
#include <vector>

namespace av::dsp {
namespace {

std::vector<double> window(std::uint32_t type, std::size_t length, double beta = 4.0) {
  std::vector<double> w(length, -7.0);
  fillAnalysisWindow(type, beta, w);
  return w;
}

/// A unit in the last place of the terms that are added up, which reach 1 (1.19 in Bartlett-Hann's, 2 in Bohman's).
constexpr double lastPlace = 0x1p-52;
/// A unit in the last place of single precision between 1 and 2.
constexpr double singleLastPlace = 0x1p-23;

TEST(WindowTable, NamesElevenWindowsOfWhichKaiserHasAParameter) {
  const std::string_view names[] = {"Boxcar",          "Hamming", "Hann",    "Bartlett",   "Bartlett-Hann", "Blackman",
                                    "Blackman-Harris", "Bohman",  "Nuttall", "Triangular", "Kaiser"};
  ASSERT_EQ(WindowTable.size(), std::size(names));
  for (std::size_t i = 0; i < std::size(names); ++i) {
    EXPECT_EQ(WindowTable[i].id, static_cast<std::int32_t>(i));
    EXPECT_EQ(WindowTable[i].name, names[i]);
    EXPECT_EQ(WindowTable[i].hasParameter, names[i] == "Kaiser");
  }
  EXPECT_EQ(kaiserDefaults.value, 4.0);
  EXPECT_EQ(kaiserDefaults.minimum, 1.0);
  EXPECT_EQ(kaiserDefaults.maximum, 10.0);
}

TEST(AnalysisWindows, WithoutLibraryFunctionsAreExact) {
  using Values = std::vector<double>;
  EXPECT_EQ(window(0, 5), Values(5, 1.0));
  EXPECT_EQ(window(3, 5), (Values{0, 1.0 / 3, 2.0 / 3, 1.0 / 3, 0}));
  EXPECT_EQ(window(3, 4), (Values{0, 0.5, 0.5, 0}));
  EXPECT_EQ(window(9, 4), (Values{0.25, 0.75, 0.25, -0.25}));
  EXPECT_EQ(window(9, 5), (Values{2.0 / 6, 4.0 / 6, 1, 4.0 / 6, 2.0 / 6}));
  for (const int type : {0, 3, 9}) {
    for (int length = 2; length < 70; ++length) {
      const auto w = window(static_cast<std::uint32_t>(type), static_cast<std::size_t>(length));
      for (int n = 1; n <= length; ++n) {
        const auto expected = static_cast<double>(test::analysisWindow(type, n, length, 4));
        ASSERT_EQ(w[static_cast<std::size_t>(n - 1)], expected) << type << ", " << n << " of " << length;
      }
    }
  }
}

TEST(AnalysisWindows, OfFiveAndEightSamplesHaveTheseCoefficients) {
  // Computed with 40 digits (mpmath) from the formulas, their constants rounded to single precision.
  const struct {
    std::uint32_t type;
    std::vector<double> coefficients;
  } rows[] = {
      {1,
       {0.0800000131130218506, 0.540000021457672119, 1.00000002980232239, 0.540000021457672119, 0.0800000131130218506}},
      {1,
       {0.0800000131130218506, 0.253194707399850353, 0.642359652934436116, 0.954445708211055023, 0.954445708211055023,
        0.642359652934436116, 0.253194707399850353, 0.0800000131130218506}},
      {2, {0.0, 0.5, 1.0, 0.5, 0.0}},
      {2,
       {0.0, 0.188255099070633235, 0.611260466978157202, 0.950484433951209563, 0.950484433951209563,
        0.611260466978157202, 0.188255099070633235, 0.0}},
      {4,
       {-0.813805183251050687, -0.813805183251050687, -0.813805183251050687, -0.813805183251050687,
        1.57380520351662991}},
      {4,
       {-0.813805183251050687, -0.813805183251050687, -0.813805183251050687, -0.813805183251050687,
        -0.813805183251050687, -0.813805183251050687, -0.813805183251050687, 1.57380520351662991}},
      {5,
       {-1.49011611938476563e-8, 0.339999988675117493, 0.999999985098838806, 0.339999988675117493,
        -1.49011611938476563e-8}},
      {5,
       {-1.49011611938476563e-8, 0.0904534116390046685, 0.459182946043999701, 0.92036360387199975, 0.92036360387199975,
        0.459182946043999701, 0.0904534116390046685, -1.49011611938476563e-8}},
      {6,
       {0.0000599687919020652771, 0.217469990253448486, 0.999999993480741978, 0.217469990253448486,
        0.0000599687919020652771}},
      {6,
       {0.0000599687919020652771, 0.0333917031945402215, 0.332833496456914963, 0.889369765884692171,
        0.889369765884692171, 0.332833496456914963, 0.0333917031945402215, 0.0000599687919020652771}},
      {7, {-2.0, -0.318309886183790672, 1.0, 0.318309886183790672, 0.0}},
      {7,
       {-2.0, -0.932185860225824042, -0.318309886183790672, 0.482027702147271007, 1.0, 0.932185860225824042,
        0.318309886183790672, -0.482027702147271007}},
      {8,
       {0.000362796708941459656, 0.226982399821281433, 0.999999986961483955, 0.226982399821281433,
        0.000362796708941459656}},
      {8,
       {0.000362796708941459656, 0.0377757685338701989, 0.342727618407361049, 0.891851850103162769,
        0.891851850103162769, 0.342727618407361049, 0.0377757685338701989, 0.000362796708941459656}},
  };
  for (const auto& row : rows) {
    const auto w = window(row.type, row.coefficients.size());
    // The exact angle against one of double precision: four more units.
    for (std::size_t i = 0; i < w.size(); ++i)
      EXPECT_NEAR(w[i], row.coefficients[i], 5 * lastPlace) << WindowTable[row.type].name << ", " << i;
  }
}

TEST(AnalysisWindows, AreThoseOfWiderPrecisionAtAllLengths) {
  std::vector<int> lengths = {128, 511, 512, 1000, 1024, 4096, 65536};
  for (int length = 2; length <= 70; ++length) lengths.push_back(length);
  for (const int type : {1, 2, 4, 5, 6, 7, 8}) {
    // Sums of three and four cosines round that often; Bartlett-Hann's and Bohman's terms reach 2.
    const double bound = type == 1 || type == 2 ? lastPlace : 2 * lastPlace;
    for (const int length : lengths) {
      const auto w = window(static_cast<std::uint32_t>(type), static_cast<std::size_t>(length));
      for (int n = 1; n <= length; ++n) {
        const long double expected = test::analysisWindow(type, n, length, 4);
        ASSERT_LE(std::fabs(w[static_cast<std::size_t>(n - 1)] - expected), bound)
            << WindowTable[static_cast<std::size_t>(type)].name << ", " << n << " of " << length;
      }
    }
  }
}

TEST(KaiserWindow, IsNearlyFlatAndOfSinglePrecision) {
  const auto w = window(kaiserWindow, 5);
  EXPECT_EQ(w.front(), 1.0);
  EXPECT_EQ(w.back(), 1.0);
  EXPECT_NEAR(w[2], 1.0315612, 1e-7);
  const struct {
    double beta;
    std::vector<double> coefficients;
  } rows[] = {
      // Computed with 40 digits (mpmath), then rounded to single precision.
      {4, {1.0, 1.02362465858459473, 1.03156125545501709, 1.02362465858459473, 1.0}},
      {4,
       {1.0, 1.01539695262908936, 1.02572727203369141, 1.03091216087341309, 1.03091216087341309, 1.02572727203369141,
        1.01539695262908936, 1.0}},
      {1, {1.0, 1.10233640670776367, 1.15542507171630859, 1.15542507171630859, 1.10233640670776367, 1.0}},
      {2.5, {1.0, 1.094551682472229, 1.14346981048583984, 1.14346981048583984, 1.094551682472229, 1.0}},
      {10, {1.0, 1.00000202655792236, 1.00000298023223877, 1.00000298023223877, 1.00000202655792236, 1.0}},
  };
  for (const auto& row : rows) {
    const auto actual = window(kaiserWindow, row.coefficients.size(), row.beta);
    EXPECT_EQ(actual, row.coefficients) << row.beta;
  }
}

TEST(KaiserWindow, IsThatOfThePowerSeriesForAnyBeta) {
  for (const double beta : {1.0, 1.5, 4.0, 7.75, 8.5, 10.0}) {
    for (const int length : {2, 3, 64, 511, 512, 4096}) {
      const auto w = window(kaiserWindow, static_cast<std::size_t>(length), beta);
      for (int n = 1; n <= length; ++n) {
        const double actual = w[static_cast<std::size_t>(n - 1)];
        ASSERT_EQ(actual, static_cast<float>(actual));
        // Half a unit of single precision, and what is left of the double's error.
        ASSERT_LE(std::fabs(actual - test::analysisWindow(10, n, length, beta)), 0.5001 * singleLastPlace)
            << n << " of " << length << ", beta " << beta;
      }
    }
  }
}

TEST(KaiserWindow, IsNoNumberWhereBetaIsNone) {
  for (const double w : window(kaiserWindow, 8, std::numeric_limits<double>::quiet_NaN())) EXPECT_TRUE(std::isnan(w));
}

TEST(AnalysisWindows, AboveTheTableLeaveTheCoefficientsAlone) {
  EXPECT_EQ(window(11, 3), std::vector<double>(3, -7.0));
  EXPECT_EQ(window(0xFFFFFFFF, 3), std::vector<double>(3, -7.0));
}

TEST(AnalysisWindows, OfFewerThanTwoSamplesAreOne) {
  for (std::uint32_t type = 0; type <= 10; ++type) {
    EXPECT_TRUE(window(type, 0).empty());
    EXPECT_EQ(window(type, 1), std::vector<double>(1, 1.0));
  }
}

TEST(WindowPower, IsTheMeanSquare) {
  EXPECT_EQ(windowPower(window(0, 512)), 1.0);
  EXPECT_EQ(windowPower(window(9, 4)), 0.1875);  // (1 + 9 + 1 + 1) / 16 / 4
  EXPECT_EQ(windowPower(std::vector<double>{3, 4, 0, 0}), 6.25);
  EXPECT_EQ(windowPower({}), 0.0);
  for (const int type : {1, 2, 5, 6, 7, 8, 10}) {
    long double sum = 0;
    for (int n = 1; n <= 512; ++n) {
      const long double w = test::analysisWindow(type, n, 512, 4);
      sum += w * w;
    }
    // 512 roundings of a sum up to 700; Kaiser's coefficients are rounded to single precision.
    const double bound = type == 10 ? singleLastPlace : 512 * 1024 * 0x1p-53 / 512;
    EXPECT_NEAR(windowPower(window(static_cast<std::uint32_t>(type), 512)), static_cast<double>(sum / 512), bound);
  }
}

}  // namespace
}  // namespace av::dsp
