#include "type2/names.h"

#include <gtest/gtest.h>

#include <cwctype>
#include <map>
#include <string>

namespace av::type2 {
namespace {

/// The properties by hand, so that the table under test is not its own judge.
const std::map<std::wstring, std::int32_t> properties = {
    {L"LineType", 7},          {L"LineInterval", 8},      {L"LineCount", 9},          {L"BackColor", 11},
    {L"BorderColor", 13},      {L"LineLowColor", 14},     {L"LineMidColor", 15},      {L"LineHighColor", 16},
    {L"BackLineLowColor", 17}, {L"BackLineMidColor", 18}, {L"BackLineHighColor", 19}, {L"TickDelayTime", 30},
    {L"TickReleaseTime", 31},  {L"TickVisible", 32},      {L"SpotHeight", 33},        {L"SpotInterval", 34},
    {L"MidPoint", 35},         {L"HighPoint", 36},        {L"AlignmentY", 40},        {L"AlignmentX", 41},
    {L"BorderType", 45},       {L"BorderWidth", 46},      {L"AutoRepaint", 50},       {L"AutoSize", 51},
    {L"FFTWindowSize", 60},    {L"FFTWindowType", 61},    {L"FFTViewType", 62},
};

std::wstring shouted(std::wstring text) {
  for (wchar_t& letter : text) letter = static_cast<wchar_t>(std::towupper(static_cast<std::wint_t>(letter)));
  return text;
}

std::wstring whispered(std::wstring text) {
  for (wchar_t& letter : text) letter = static_cast<wchar_t>(std::towlower(static_cast<std::wint_t>(letter)));
  return text;
}

TEST(MeterNames, AreTheEightyTwoOfThePropertiesTheirAccessorsAndTheirParameter) {
  std::map<std::wstring, std::int32_t> names{{L"pVal", 0}};
  for (const auto& [name, dispId] : properties) {
    names[name] = dispId;
    names[L"get_" + name] = dispId;
    names[L"put_" + name] = dispId;
  }
  ASSERT_EQ(names.size(), 82u);
  for (const auto& [name, dispId] : names) {
    EXPECT_EQ(dispIdOfName(name), dispId);
    EXPECT_EQ(dispIdOfName(shouted(name)), dispId);
    EXPECT_EQ(dispIdOfName(whispered(name)), dispId);
  }
}

TEST(MeterNames, AlsoFindTheMethodsThatScriptsCall) {
  EXPECT_EQ(dispIdOfName(L"_OnTimer"), 0xaae61);
  EXPECT_EQ(dispIdOfName(L"sendaudiodata"), 0xaae62);
  EXPECT_EQ(dispIdOfName(L"Repaint"), 0xaae63);
  EXPECT_EQ(dispIdOfName(L"SetAdditionalParam"), 0xaae64);
  EXPECT_EQ(dispIdOfName(L"GetAdditionalParam"), 0xaae65);
}

TEST(MeterNames, AreNoOthers) {
  for (const wchar_t* name :
       {L"", L"g", L"get_", L"put_", L"Line", L"LineTyp", L"LineTypes", L" LineType", L"get_get_LineType",
        L"get_SendAudioData", L"put_pVal", L"set_LineType", L"getLineType", L"VisualizationType", L"LineColor"}) {
    EXPECT_EQ(dispIdOfName(name), std::nullopt);
  }
  EXPECT_EQ(dispIdOfName(L"Bac\u212AColor"), std::nullopt);  // the sign of the kelvin is no k here
  EXPECT_EQ(dispIdOfName(std::wstring_view(L"LineType\0", 9)), std::nullopt);
}

}  // namespace
}  // namespace av::type2
