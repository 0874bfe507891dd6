// The player's property model against the finished DLL: the type library is read as a whole, the rules name what there
// is, values come back as they were put, and a look that was captured comes back.

#include "host/dll_test.h"
#include "player/builtin_presets.h"
#include "player/value_text.h"
#include "player/win/look.h"
#include "player/win/text.h"

#include <gmock/gmock.h>

#include <map>
#include <set>

namespace avplayer {
namespace {

using av::test::ComPtr;

class PlayerProperties : public av::test::DllTest {
 protected:
  void SetUp() override {
    DllTest::SetUp();
    const CLSID* classes[] = {&CLSID_CAudioVisualization4Type1, &CLSID_CAudioVisualization4Type2,
                              &CLSID_CAudioVisualization4Type3};
    ASSERT_EQ(S_OK, m_window.open({.clientSizePx = {900, 600}, .positionPx = {0, 0}}));
    for (const ControlKind kind : allControls) {
      const auto control = create<IAudioVisualizationTemplate>(*classes[indexOf(kind)]);
      ASSERT_EQ(S_OK, m_controls[indexOf(kind)].open(kind, control, m_window.window()));
      SetWindowPos(m_controls[indexOf(kind)].container().window(), nullptr, 0, 0, 500, 300, SWP_NOZORDER);
    }
  }
  void TearDown() override {
    for (HostedControl& control : m_controls) control.close();
    m_window.close();
    DllTest::TearDown();
  }
  HostedControl& control(ControlKind kind) { return m_controls[indexOf(kind)]; }
  const Setting& setting(ControlKind kind, std::wstring_view name) {
    for (const Setting& s : control(kind).settings())
      if (s.name() == name) return s;
    ADD_FAILURE() << "no such setting";
    return control(kind).settings().front();
  }
  std::string value(ControlKind kind, std::wstring_view name) {
    std::string text;
    EXPECT_EQ(S_OK, control(kind).get(setting(kind, name), text).result);
    return text;
  }
  Answer put(ControlKind kind, std::wstring_view name, std::string_view text) {
    return control(kind).put(setting(kind, name), text);
  }

  avhost::Container m_window;
  Controls m_controls;
};

constexpr auto view = ControlKind::view;
constexpr auto meter = ControlKind::meter;
constexpr auto analyser = ControlKind::analyser;

TEST_F(PlayerProperties, AreReadFromTheTypeLibraryWithTypesAndHelp) {
  const std::map<ControlKind, std::size_t> counts = {{view, 19}, {meter, 27}, {analyser, 36}};
  for (const auto& [kind, count] : counts) {
    std::set<const Property*> properties;
    for (const Setting& s : control(kind).settings()) properties.insert(s.property);
    EXPECT_EQ(count, properties.size());
    for (const Property* property : properties) {
      EXPECT_NE(ValueKind::other, property->kind) << narrow(property->name);
      EXPECT_FALSE(property->help.empty()) << narrow(property->name);
      EXPECT_TRUE(property->readable) << narrow(property->name);
    }
  }
  EXPECT_EQ(ValueKind::boolean, setting(view, L"GridVisible").property->kind);
  EXPECT_EQ(ValueKind::colour, setting(view, L"LineColor(18)").property->kind);
  EXPECT_EQ(ValueKind::font, setting(analyser, L"ScaleFont").property->kind);
  EXPECT_TRUE(setting(analyser, L"ScaleFont").property->byReference);
  EXPECT_EQ(ValueKind::real, setting(analyser, L"FFTWindowParam").property->kind);
  EXPECT_EQ(ValueKind::text, setting(analyser, L"FFTWindowName").property->kind);
  EXPECT_FALSE(setting(analyser, L"FFTWindowCount").property->writable);
}

TEST_F(PlayerProperties, HaveRulesThatNameThemAll) {
  std::set<std::pair<ControlKind, std::string>> there;
  for (const HostedControl& c : m_controls)
    for (const Setting& s : c.settings()) there.emplace(c.kind(), narrow(s.property->name));
  for (const PropertyRule& rule : propertyRules())
    EXPECT_EQ(1u, there.count({rule.control, std::string(rule.name)})) << rule.name;
  for (const auto& [kind, name] : there) EXPECT_NE(nullptr, findRule(kind, name)) << name;
}

TEST_F(PlayerProperties, HaveChoicesThatTheControlsTake) {
  for (HostedControl& c : m_controls) {
    for (const Setting& s : c.settings()) {
      if (!s.rule) continue;
      for (const Choice& choice : s.rule->choices) {
        const std::string text = std::to_string(choice.value);
        std::string back;
        EXPECT_EQ(S_OK, c.put(s, text).result) << narrow(s.name()) << " " << choice.name;
        EXPECT_EQ(S_OK, c.get(s, back).result);
        EXPECT_EQ(text, back) << narrow(s.name());
      }
    }
  }
}

TEST_F(PlayerProperties, NameTheAnalysersWindowsAsItDoes) {
  for (const Choice& choice : findRule(analyser, "FFTWindowType")->choices) {
    ASSERT_EQ(S_OK, put(analyser, L"FFTWindowType", std::to_string(choice.value)).result);
    EXPECT_EQ(std::to_string(choice.value) + " " + value(analyser, L"FFTWindowName"), choice.name);
  }
  EXPECT_EQ(std::to_string(findRule(analyser, "FFTWindowType")->choices.size()), value(analyser, L"FFTWindowCount"));
}

TEST_F(PlayerProperties, TellWhyAValueIsRefused) {
  const std::string before = value(analyser, L"LineCount");
  const Answer answer = put(analyser, L"LineCount", "500");
  EXPECT_EQ(E_INVALIDARG, answer.result);
  EXPECT_TRUE(answer.sent);
  EXPECT_THAT(narrow(answer.text), testing::HasSubstr("4 to 200"));
  EXPECT_EQ(before, value(analyser, L"LineCount"));
  const Answer nonsense = put(analyser, L"LineCount", "many");
  EXPECT_FALSE(nonsense.sent);
  EXPECT_THAT(narrow(nonsense.text), testing::HasSubstr("whole number"));
}

TEST_F(PlayerProperties, PutColoursFontsAndIndexedValues) {
  EXPECT_EQ(S_OK, put(view, L"LineColor(7)", "#123456").result);
  EXPECT_EQ("#123456", value(view, L"LineColor(7)"));
  EXPECT_NE("#123456", value(view, L"LineColor(6)"));
  EXPECT_EQ(S_OK, put(view, L"ScaleFont", "Arial, 12 pt, bold").result);
  const auto font = parseFont(value(view, L"ScaleFont"));
  ASSERT_TRUE(font.has_value());
  EXPECT_EQ("Arial", font->face);
  EXPECT_TRUE(font->bold && !font->italic);
  EXPECT_NEAR(12, font->points, 0.75) << "a whole pixel of 96 DPI, which the system may round to";
  EXPECT_EQ(S_OK, put(analyser, L"FFTWindowType", "10").result);
  EXPECT_EQ(S_OK, put(analyser, L"FFTWindowParam", "2.5").result);
  EXPECT_EQ("2.5", value(analyser, L"FFTWindowParam"));
  EXPECT_EQ(S_OK, put(meter, L"TickVisible", "false").result);
  EXPECT_EQ("false", value(meter, L"TickVisible"));
}

TEST_F(PlayerProperties, TakeEveryBuiltinPreset) {
  const Preset defaults = captureLook(m_controls, "defaults", 96);
  for (const Preset& preset : builtinPresets()) {
    EXPECT_TRUE(applyLook(m_controls, defaults, preset, 96).empty()) << preset.name;
    for (const PresetValue& wanted : preset.values) {
      const std::size_t dot = wanted.property.find('.');
      for (HostedControl& c : m_controls) {
        if (shortName(c.kind()) != wanted.property.substr(0, dot) ||
            wanted.property.find("ScaleFont") != std::string::npos)
          continue;
        EXPECT_EQ(wanted.value, value(c.kind(), wide(wanted.property.substr(dot + 1))))
            << preset.name << " " << wanted.property;
      }
    }
  }
  // The last one is the controls' own look.
  EXPECT_EQ(defaults.values, captureLook(m_controls, "defaults", 96).values);
}

TEST_F(PlayerProperties, ComeBackFromAPresetAndScaleWithTheDisplay) {
  const Preset defaults = captureLook(m_controls, "defaults", 96);
  put(meter, L"SpotHeight", "5");
  put(view, L"BackColor", "#102030");
  const Preset mine = captureLook(m_controls, "mine", 96);
  applyLook(m_controls, defaults, {"nothing", 96, {}}, 96);
  EXPECT_NE("5", value(meter, L"SpotHeight"));
  EXPECT_TRUE(applyLook(m_controls, defaults, mine, 96).empty());
  EXPECT_EQ("5", value(meter, L"SpotHeight"));
  EXPECT_EQ("#102030", value(view, L"BackColor"));
  applyLook(m_controls, defaults, mine, 192);
  EXPECT_EQ("10", value(meter, L"SpotHeight"));
}

TEST_F(PlayerProperties, OfAPresetThatDoNotExistAreTold) {
  const Preset defaults = captureLook(m_controls, "defaults", 96);
  const LookProblems problems = applyLook(
      m_controls, defaults,
      {"odd", 96, {{"Meter.Colour", "1"}, {"Analyser.LineCount", "999"}, {"View.GridVisible", "perhaps"}}}, 96);
  ASSERT_EQ(3u, problems.size());
  EXPECT_THAT(narrow(problems[0] + problems[1] + problems[2]),
              testing::AllOf(testing::HasSubstr("Meter.Colour"), testing::HasSubstr("0x80070057"),
                             testing::HasSubstr("perhaps")));
}

}  // namespace
}  // namespace avplayer
