// When clients are told of another value, and that all this costs nothing where nobody asks.

#include "host/accessibility_test.h"
#include "support/win/import_probe.h"
#include "support/win/waste_probes.h"

#include <vector>

namespace av::test {
namespace {

class AccessibilityEvents : public AccessibilityTest {
 protected:
  void SetUp() override {
    AccessibilityTest::SetUp();
    ASSERT_NO_FATAL_FAILURE(hostAll());
    ASSERT_NO_FATAL_FAILURE(showPlainSpectra());
  }

  using Counts = std::vector<long>;
  Counts told(const ValueChanges& changes) const {
    Counts counts;
    for (const auto& control : m_controls) counts.push_back(changes.of(control->window()));
    return counts;
  }
};

TEST_F(AccessibilityEvents, ComeToClientsThatHaveAskedOnceTheWordsHaveChanged) {
  const ValueChanges changes;
  ASSERT_TRUE(changes.listens());
  const DWORD startMs = GetTickCount();
  objects();
  EXPECT_EQ((Counts{0, 0, 0}), told(changes));
  // While nothing is to be told, a tick allocates nothing: no words are made between two looks.
  allHear(0.5);
  for (const auto& control : m_controls) {
    for (int i = 0; i < 4; ++i) ASSERT_EQ(S_OK, control->get()->_OnTimer());
    const ImportProbe probe(m_library.module(), allocators);
    for (int i = 0; i < 20; ++i) ASSERT_EQ(S_OK, control->get()->_OnTimer());
    if (GetTickCount() - startMs < 900) {
      EXPECT_EQ(0, probe.calls());
    }
  }
  const Counts each = {1, 1, 1};
  avhost::pumpUntil(5000, [&] {
    allHear(0.5);
    return told(changes) == each;
  });
  EXPECT_EQ(each, told(changes));
  EXPECT_LE(950u, GetTickCount() - startMs);

  // A null block ends the meter's ticks: it is told at once.
  ASSERT_EQ(S_OK, m_controls[1]->get()->SendAudioData(nullptr));
  avhost::pumpUntil(5000, [&] { return told(changes)[1] == 2; });
  EXPECT_EQ((Counts{1, 2, 1}), told(changes));
  const ComPtr<IAccessible> meter = m_controls[1]->accessible();
  EXPECT_EQ(L"silence", valueOf(*meter.Get()));
}

TEST_F(AccessibilityEvents, CostNothingWhereNobodyHasAsked) {
  const ValueChanges changes;
  const ImportProbe probe(m_library.module(),
                          {"NotifyWinEvent", "RegisterWindowMessageW", "PostMessageW", "LoadLibraryW"});
  allHear(0.5);
  avhost::pumpMessages(60);
  ASSERT_EQ(S_OK, m_controls[1]->get()->SendAudioData(nullptr));
  for (const auto& control : m_controls) {
    SendMessageW(control->window(), WM_GETOBJECT, 0, OBJID_WINDOW);
    ASSERT_EQ(S_OK, control->get()->_OnTimer());
  }
  avhost::pumpMessages(0);
  EXPECT_EQ((Counts{0, 0, 0}), told(changes));
  EXPECT_EQ(0, probe.calls());
  objects();
  objects();
  EXPECT_EQ(1, probe.calls("LoadLibraryW"));  // the system's library, once for all
}

class FullAccessibility : public AccessibilityTest {};

TEST_F(FullAccessibility, LeavesNothingBehindInTheProcess) {
  const auto live = [this] {
    ASSERT_NO_FATAL_FAILURE(hostAll());
    for (int i = 0; i < 3; ++i) {
      const Objects all = objects();
      allHear(0.5);
      for (const Texts& said : {texts(all, nameOf), texts(all, valueOf), texts(all, descriptionOf)})
        for (const std::wstring& text : said) ASSERT_NE(L"(failed)", text);
      for (const auto& object : all) {
        ComPtr<IDispatch> parent;
        ASSERT_EQ(S_OK, object->get_accParent(&parent));
        UINT count = 0;
        ASSERT_EQ(S_OK, object->GetTypeInfoCount(&count));
      }
    }
    for (const auto& control : m_controls) ASSERT_TRUE(control->end());
    m_controls.clear();
    ASSERT_EQ(S_OK, m_library.canUnloadNow());
    for (const int type : {1, 2, 3}) m_controls.push_back(std::make_unique<HeardControl>(m_library, type));
  };
  for (int i = 0; i < 5; ++i) ASSERT_NO_FATAL_FAILURE(live());  // what the system keeps for itself is there by now
  const Holdings before = Holdings::now();
  for (int i = 0; i < 30; ++i) ASSERT_NO_FATAL_FAILURE(live());
  EXPECT_EQ(before, Holdings::now());
}

}  // namespace
}  // namespace av::test
