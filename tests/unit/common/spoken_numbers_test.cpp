#include "common/spoken_numbers.h"

#include <gtest/gtest.h>

#include <limits>
#include <string>
#include <utility>
#include <vector>

namespace av {
namespace {

constexpr double infinite = std::numeric_limits<double>::infinity();
constexpr double noNumber = std::numeric_limits<double>::quiet_NaN();

TEST(SpokenNumbers, LevelsAreWholeDecibelsWithATrueMinusSign) {
  const std::vector<std::pair<double, std::u16string>> levels = {{0, u"0 dB"},
                                                                 {-0.4, u"0 dB"},
                                                                 {-0.5, u"\u22121 dB"},
                                                                 {-3.01, u"\u22123 dB"},
                                                                 {-12.5, u"\u221213 dB"},
                                                                 {6.02, u"6 dB"},
                                                                 {-90.3, u"\u221290 dB"},
                                                                 {-2000, u"\u2212999 dB"},
                                                                 {infinite, u"999 dB"},
                                                                 {noNumber, u"0 dB"}};
  for (const auto& [levelDb, words] : levels) EXPECT_EQ(words, spokenLevel(levelDb)) << levelDb;
}

TEST(SpokenNumbers, FrequenciesAreWholeHertzAndFromOneThousandOnKilohertzWithOneDecimal) {
  const std::vector<std::pair<double, std::u16string>> frequencies = {
      {0, u"0 Hz"},         {43.07, u"43 Hz"},    {999.4, u"999 Hz"},        {999.5, u"1.0 kHz"},
      {1000, u"1.0 kHz"},   {1049.9, u"1.0 kHz"}, {1050, u"1.1 kHz"},        {12345, u"12.3 kHz"},
      {22050, u"22.1 kHz"}, {19999, u"20.0 kHz"}, {1e10, u"10000000.0 kHz"}, {infinite, u"10000000.0 kHz"},
      {-5, u"0 Hz"},        {noNumber, u"0 Hz"}};
  for (const auto& [hz, words] : frequencies) EXPECT_EQ(words, spokenFrequency(hz)) << hz;
}

TEST(SpokenNumbers, CorrelationsHaveTwoDecimalsAndNoNegativeZero) {
  const std::vector<std::pair<double, std::u16string>> values = {
      {1, u"1.00"},      {-1, u"\u22121.00"}, {0.854, u"0.85"}, {-0.3, u"\u22120.30"}, {0.05, u"0.05"},
      {-0.004, u"0.00"}, {0.999, u"1.00"},    {1.5, u"1.00"},   {-7, u"\u22121.00"},   {noNumber, u"0.00"}};
  for (const auto& [value, words] : values) EXPECT_EQ(words, spokenCorrelation(value)) << value;
}

TEST(SpokenNumbers, WhatRoundsToLessThanTheLeastStepOf16BitsIsSilence) {
  EXPECT_TRUE(isAudible(0));
  EXPECT_TRUE(isAudible(-90.31));
  EXPECT_TRUE(isAudible(-90.5));
  EXPECT_FALSE(isAudible(-90.51));
  EXPECT_FALSE(isAudible(-200));
  EXPECT_FALSE(isAudible(-infinite));
  EXPECT_FALSE(isAudible(noNumber));
}

}  // namespace
}  // namespace av
