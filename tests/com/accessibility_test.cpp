// What a screen reader finds in the window of each control, and reads to its user.

#include "host/accessibility_test.h"
#include "host/control_classes.h"
#include "host/talk_test.h"

#include <atomic>
#include <string>
#include <thread>
#include <vector>

namespace av::test {
namespace {

class Accessibility : public AccessibilityTest {};

TEST_F(Accessibility, NamesTheControlsAndSaysWhatTheyAre) {
  ASSERT_NO_FATAL_FAILURE(hostAll());
  const Objects all = objects();
  EXPECT_EQ((Texts{L"Waveform and spectrum view", L"Level meter", L"Spectrum analyser"}), texts(all, nameOf));
  EXPECT_EQ((Texts{L"Waveform of the sound, a line for each channel", L"Levels of the sound's frequency bands",
                   L"Frequency spectrum of the sound as columns, each a band"}),
            texts(all, descriptionOf));
  std::vector<LONG> roles;
  for (const auto& object : all) roles.push_back(roleOf(*object.Get()));
  EXPECT_EQ((std::vector<LONG>{ROLE_SYSTEM_CHART, ROLE_SYSTEM_INDICATOR, ROLE_SYSTEM_CHART}), roles);
}

TEST_F(Accessibility, PrefersTheHostsNameForAControl) {
  avhost::Ambients ambients;
  ambients.displayName = L"Left input";
  ASSERT_NO_FATAL_FAILURE(hostAll(ambients));
  const Objects all = objects();
  EXPECT_EQ(Texts(3, L"Left input"), texts(all, nameOf));
  for (const auto& control : m_controls) ASSERT_TRUE(SetWindowTextW(control->window(), L"Right output"));
  EXPECT_EQ(Texts(3, L"Right output"), texts(all, nameOf));
}

TEST_F(Accessibility, SaysTheLoudestSoundAndSilence) {
  ASSERT_NO_FATAL_FAILURE(hostAll());
  ASSERT_NO_FATAL_FAILURE(showPlainSpectra());
  const Objects all = objects();
  EXPECT_EQ(silentTexts, texts(all, valueOf));
  allHear(0.5);  // -6.02 dB
  // The meter's line 6 is the mean in dB of bin 32 and four bins at the floor of -91; the analyser's column 3 that of the
  // powers of bin 16 and of three that hold nothing.
  const Texts loud = {L"left: peak \u22126 dB at 1.0 kHz; right: peak \u22126 dB at 1.0 kHz",
                      L"loudest band \u221274 dB at 1.0 kHz", L"loudest band \u221212 dB at 906 Hz"};
  EXPECT_EQ(loud, texts(all, valueOf));
  allHear(0);
  EXPECT_EQ(silentTexts, texts(all, valueOf));
  allHear(0.5);
  for (const auto& control : m_controls) ASSERT_EQ(S_OK, control->get()->SendAudioData(nullptr));
  EXPECT_EQ((Texts{loud[0], L"silence", loud[2]}), texts(all, valueOf));  // the meter only stops at a null block
}

TEST_F(Accessibility, LiesWhereTheWindowDoesAndTakesTheFocus) {
  ASSERT_NO_FATAL_FAILURE(hostAll());
  constexpr LONG usual = STATE_SYSTEM_READONLY | STATE_SYSTEM_FOCUSABLE;
  for (const auto& control : m_controls) {
    const ComPtr<IAccessible> object = control->accessible();
    ASSERT_TRUE(object);
    RECT place{};
    GetWindowRect(control->window(), &place);
    LONG left = 0, top = 0, width = 0, height = 0;
    EXPECT_EQ(S_OK, object->accLocation(&left, &top, &width, &height, childId()));
    EXPECT_EQ((std::vector<LONG>{place.left, place.top, place.right, place.bottom}),
              (std::vector<LONG>{left, top, left + width, top + height}));

    for (int i = 0; i < 2; ++i) {  // the second time the user interface is active already
      SetFocus(nullptr);
      EXPECT_EQ(usual, stateOf(*object.Get()));
      EXPECT_EQ(S_OK, object->accSelect(SELFLAG_TAKEFOCUS, childId()));
      EXPECT_EQ(control->window(), GetFocus());
      EXPECT_EQ(usual | STATE_SYSTEM_FOCUSED, stateOf(*object.Get()));
    }
    ASSERT_EQ(S_OK, control->container().doVerb(OLEIVERB_HIDE));
    EXPECT_EQ(STATE_SYSTEM_READONLY | STATE_SYSTEM_INVISIBLE, stateOf(*object.Get()) & ~STATE_SYSTEM_FOCUSED);
  }
}

TEST_F(Accessibility, IsOneObjectForAllClientsOfAWindowAndNoneOfTheControlsInterfaces) {
  ASSERT_NO_FATAL_FAILURE(hostAll());
  for (const auto& control : m_controls) {
    const ComPtr<IAccessible> first = control->accessible(), second = control->accessible();
    ASSERT_TRUE(first);
    EXPECT_EQ(first.Get(), second.Get());
    // What is no client area is the system's.
    EXPECT_NE(first.Get(), accessibleOf(control->window(), OBJID_WINDOW).Get());
    for (const LONG part : {OBJID_NATIVEOM, OBJID_CARET, OBJID_WINDOW})
      EXPECT_EQ(0, SendMessageW(control->window(), WM_GETOBJECT, 0, part));
    void* object = this;
    EXPECT_EQ(E_NOINTERFACE, control->get()->QueryInterface(__uuidof(IAccessible), &object));
    EXPECT_EQ(nullptr, object);
  }
}

TEST_F(Accessibility, OutlivesTheControlsAndKeepsTheLibraryUntilItsEnd) {
  ASSERT_NO_FATAL_FAILURE(hostAll());
  Objects all = objects();
  for (const auto& control : m_controls) ASSERT_TRUE(control->end());
  EXPECT_EQ(failedTexts, texts(all, valueOf));
  for (ComPtr<IAccessible>& object : all) {
    BSTR text = nullptr;
    EXPECT_EQ(CO_E_OBJNOTCONNECTED, object->get_accName(childId(), &text));
    EXPECT_EQ(nullptr, text);
    EXPECT_EQ(S_FALSE, m_library.canUnloadNow());
    EXPECT_EQ(0u, object.Reset());
  }
  EXPECT_EQ(S_OK, m_library.canUnloadNow());
}

TEST_F(Accessibility, BeginsAnewWithEachWindowWhoeverEndsTheOldOne) {
  ASSERT_NO_FATAL_FAILURE(hostAll());
  const Objects before = objects();
  for (const auto& control : m_controls) {
    ASSERT_EQ(S_OK, control->as<IOleInPlaceObject>()->InPlaceDeactivate());
    ASSERT_EQ(S_OK, control->container().doVerb(OLEIVERB_INPLACEACTIVATE));
  }
  const Objects after = objects();
  EXPECT_EQ(failedTexts, texts(before, valueOf));
  EXPECT_EQ(silentTexts, texts(after, valueOf));
  for (const auto& control : m_controls) DestroyWindow(control->window());
  EXPECT_EQ(failedTexts, texts(after, valueOf));
}

TEST_F(Accessibility, ReachesClientsInOtherApartmentsThroughTheControlsThread) {
  ASSERT_NO_FATAL_FAILURE(hostAll());
  Texts names, values;
  std::atomic<bool> done{false};
  std::thread client([&] {
    const HRESULT joined = CoInitializeEx(nullptr, COINIT_MULTITHREADED);
    {
      const Objects all = objects();
      names = texts(all, nameOf);
      values = texts(all, valueOf);
    }
    if (SUCCEEDED(joined)) CoUninitialize();
    done = true;
  });
  avhost::pumpUntil(5000, [&] { return done.load(); });
  client.join();
  EXPECT_EQ((Texts{L"Waveform and spectrum view", L"Level meter", L"Spectrum analyser"}), names);
  EXPECT_EQ(silentTexts, values);
}

TEST_F(Accessibility, CutsClientsInOtherApartmentsOffWhenTheControlsEnd) {
  ASSERT_NO_FATAL_FAILURE(hostAll());
  Texts before, after;
  std::atomic<bool> asked{false}, ended{false}, done{false};
  std::thread client([&] {
    const HRESULT joined = CoInitializeEx(nullptr, COINIT_MULTITHREADED);
    {
      const Objects all = objects();
      before = texts(all, valueOf);
      asked = true;
      while (!ended) Sleep(1);
      after = texts(all, valueOf);
    }
    if (SUCCEEDED(joined)) CoUninitialize();
    done = true;
  });
  avhost::pumpUntil(5000, [&] { return asked.load(); });
  for (const auto& control : m_controls) EXPECT_TRUE(control->end());
  // The client's references went with the windows: it does not keep the library.
  EXPECT_EQ(S_OK, m_library.canUnloadNow());
  ended = true;
  avhost::pumpUntil(5000, [&] { return done.load(); });
  client.join();
  EXPECT_EQ(silentTexts, before);
  EXPECT_EQ(failedTexts, after);
}

class AccessibilityHost : public TalkTest {};

TEST_F(AccessibilityHost, MayEndTheControlWhileItIsAskedForItsName) {
  for (const ControlClassName& each : allControlClasses) {
    RecordingContainer container;
    ASSERT_NO_FATAL_FAILURE(giveAndSite(container, each.classId));
    ASSERT_EQ(S_OK, container.doVerb(OLEIVERB_SHOW));
    ComPtr<IAccessible> object = accessibleOf(container.controlWindow());
    ASSERT_TRUE(object);
    container.log.take();
    container.log.inside("IDispatch::Invoke", [&] { EXPECT_EQ(1u, container.releaseControl()); });
    EXPECT_NE(L"(failed)", nameOf(*object.Get())) << each.name;  // the name that the control still had
    EXPECT_EQ("IDispatch::Invoke(-702)", container.log.calls().front()) << "asks for the display name only";
    EXPECT_EQ(L"(failed)", nameOf(*object.Get()));
    EXPECT_EQ(0u, object.Reset());
    EXPECT_TRUE(container.log.complaints().empty());
    EXPECT_EQ(S_OK, m_library.canUnloadNow());
  }
}

TEST_F(AccessibilityHost, NamesNothingWithAnAmbientThatIsNoText) {
  RecordingContainer container;
  ASSERT_NO_FATAL_FAILURE(giveAndSite(container, CLSID_CAudioVisualization4Type2));
  ASSERT_EQ(S_OK, container.doVerb(OLEIVERB_SHOW));
  const ComPtr<IAccessible> object = accessibleOf(container.controlWindow());
  ASSERT_TRUE(object);
  for (const HRESULT answer : {S_OK, S_FALSE, E_FAIL, DISP_E_EXCEPTION}) {  // with an empty value
    container.log.answer("IDispatch::Invoke", answer);
    EXPECT_EQ(L"Level meter", nameOf(*object.Get()));
  }
  EXPECT_EQ(0u, container.releaseControl());
}

}  // namespace
}  // namespace av::test
