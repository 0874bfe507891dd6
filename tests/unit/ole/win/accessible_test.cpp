// What an accessible object answers to whom, whatever it is asked.

#include "ole/accessible.h"

#include "host/message_pump.h"
#include "support/own_module.h"
#include "support/win/accessibility.h"

#include <gtest/gtest.h>

#include <functional>
#include <limits>
#include <new>
#include <string>
#include <thread>
#include <utility>
#include <vector>

namespace av::ole {
namespace {

using Microsoft::WRL::ComPtr;
using test::childId;

struct Subject final : AccessibleSubject {
  LONG accessibleRole() const noexcept override { return ROLE_SYSTEM_CHART; }
  std::wstring accessibleName() override {
    if (inName) inName();
    return name;
  }
  std::wstring accessibleDescription() override { throw std::bad_alloc(); }
  std::wstring accessibleValue() override {
    ++looks;
    if (noMemory) throw std::bad_alloc();
    return value;
  }
  HRESULT accessibleTakeFocus() override {
    ++focusRequests;
    return S_FALSE;
  }

  std::wstring name = L"a name", value = L"a value";
  std::function<void()> inName;
  bool noMemory = false;
  int looks = 0, focusRequests = 0;
};

class AccessibleObject : public testing::Test {
 protected:
  void SetUp() override {
    ASSERT_EQ(S_OK, CoInitialize(nullptr));
    m_window = CreateWindowW(L"STATIC", L"window", WS_POPUP | WS_VISIBLE, 20, 30, 200, 100, nullptr, nullptr, nullptr,
                             nullptr);
    ASSERT_TRUE(m_window);
    m_object = Accessible::create(m_window, m_subject);
    ASSERT_TRUE(m_object);
  }
  void TearDown() override {
    if (m_object) m_object->disconnect();
    m_object.Reset();
    if (m_window) DestroyWindow(m_window);
    EXPECT_EQ(0, test::ownModuleLockCount());
    CoUninitialize();
  }

  /// Every method that takes a child, by its name.
  using Ask = std::function<HRESULT(VARIANT child)>;
  std::vector<std::pair<const char*, Ask>> childMethods() {
    IAccessible& object = *m_object.Get();
    const auto text = [&object](HRESULT (STDMETHODCALLTYPE IAccessible::*method)(VARIANT, BSTR*)) {
      return [&object, method](VARIANT child) {
        BSTR answer = SysAllocString(L"stale");
        const BSTR stale = answer;
        const HRESULT result = (object.*method)(child, &answer);
        if (FAILED(result)) {
          EXPECT_EQ(nullptr, answer);
        }
        SysFreeString(stale);
        SysFreeString(answer);
        return result;
      };
    };
    const auto value = [&object](HRESULT (STDMETHODCALLTYPE IAccessible::*method)(VARIANT, VARIANT*)) {
      return [&object, method](VARIANT child) {
        VARIANT answer;
        V_VT(&answer) = VT_I8;
        const HRESULT result = (object.*method)(child, &answer);
        if (FAILED(result)) {
          EXPECT_EQ(VT_EMPTY, V_VT(&answer));
        }
        return result;
      };
    };
    return {{"accName", text(&IAccessible::get_accName)},
            {"accValue", text(&IAccessible::get_accValue)},
            {"accHelp", text(&IAccessible::get_accHelp)},
            {"accKeyboardShortcut", text(&IAccessible::get_accKeyboardShortcut)},
            {"accDefaultAction", text(&IAccessible::get_accDefaultAction)},
            {"accRole", value(&IAccessible::get_accRole)},
            {"accState", value(&IAccessible::get_accState)},
            {"accChild",
             [&object](VARIANT child) {
               ComPtr<IDispatch> answer;
               return object.get_accChild(child, &answer);
             }},
            {"accHelpTopic",
             [&object](VARIANT child) {
               BSTR file = nullptr;
               LONG topic = 7;
               return object.get_accHelpTopic(&file, child, &topic);
             }},
            {"accLocation",
             [&object](VARIANT child) {
               LONG place[4] = {7, 7, 7, 7};
               const HRESULT result = object.accLocation(&place[0], &place[1], &place[2], &place[3], child);
               if (FAILED(result)) {
                 EXPECT_EQ(0, place[0] | place[1] | place[2] | place[3]);
               }
               return result;
             }},
            {"accNavigate",
             [&object](VARIANT child) {
               VARIANT end;
               return object.accNavigate(NAVDIR_NEXT, child, &end);
             }},
            {"accSelect", [&object](VARIANT child) { return object.accSelect(SELFLAG_TAKEFOCUS, child); }}};
  }

  Subject m_subject;
  HWND m_window = nullptr;
  ComPtr<Accessible> m_object;
};

TEST_F(AccessibleObject, TellsWhatItsSubjectTells) {
  EXPECT_EQ(L"a name", test::nameOf(*m_object.Get()));
  EXPECT_EQ(L"a value", test::valueOf(*m_object.Get()));
  EXPECT_EQ(ROLE_SYSTEM_CHART, test::roleOf(*m_object.Get()));
  m_subject.name.clear();
  EXPECT_EQ(L"(none)", test::nameOf(*m_object.Get()));
}

TEST_F(AccessibleObject, RefusesEveryChildThatIsNotItself) {
  std::vector<VARIANT> strangers;
  for (const LONG id : {1L, -1L, LONG{std::numeric_limits<LONG>::max()}, LONG{std::numeric_limits<LONG>::min()}})
    strangers.push_back(childId(id));
  for (const VARTYPE type : {VT_EMPTY, VT_NULL, VT_I2, VT_BSTR, VT_DISPATCH, VT_BOOL, VT_I8, VT_UI4}) {
    VARIANT other{};
    V_VT(&other) = type;
    strangers.push_back(other);
  }
  VARIANT failure{};
  V_VT(&failure) = VT_ERROR;
  V_ERROR(&failure) = E_FAIL;
  strangers.push_back(failure);
  for (const auto& [name, ask] : childMethods()) {
    EXPECT_LE(0, ask(childId())) << name;
    for (const VARIANT& stranger : strangers)
      EXPECT_EQ(E_INVALIDARG, ask(stranger)) << name << ", type " << V_VT(&stranger) << ", " << V_I4(&stranger);
  }
  EXPECT_EQ(E_INVALIDARG, m_object->accDoDefaultAction(childId(1)));
  EXPECT_EQ(E_INVALIDARG, m_object->put_accName(childId(1), nullptr));
  EXPECT_EQ(E_INVALIDARG, m_object->put_accValue(childId(1), nullptr));
}

TEST_F(AccessibleObject, RefusesNullPointers) {
  const VARIANT self = childId();
  LONG number = 0;
  BSTR text = nullptr;
  EXPECT_EQ(E_POINTER, m_object->QueryInterface(IID_IUnknown, nullptr));
  EXPECT_EQ(E_POINTER, m_object->get_accParent(nullptr));
  EXPECT_EQ(E_POINTER, m_object->get_accChildCount(nullptr));
  EXPECT_EQ(E_POINTER, m_object->get_accChild(self, nullptr));
  EXPECT_EQ(E_POINTER, m_object->get_accName(self, nullptr));
  EXPECT_EQ(E_POINTER, m_object->get_accValue(self, nullptr));
  EXPECT_EQ(E_POINTER, m_object->get_accDescription(self, nullptr));
  EXPECT_EQ(E_POINTER, m_object->get_accRole(self, nullptr));
  EXPECT_EQ(E_POINTER, m_object->get_accState(self, nullptr));
  EXPECT_EQ(E_POINTER, m_object->get_accHelp(self, nullptr));
  EXPECT_EQ(E_POINTER, m_object->get_accHelpTopic(nullptr, self, &number));
  EXPECT_EQ(E_POINTER, m_object->get_accHelpTopic(&text, self, nullptr));
  EXPECT_EQ(E_POINTER, m_object->get_accKeyboardShortcut(self, nullptr));
  EXPECT_EQ(E_POINTER, m_object->get_accFocus(nullptr));
  EXPECT_EQ(E_POINTER, m_object->get_accSelection(nullptr));
  EXPECT_EQ(E_POINTER, m_object->get_accDefaultAction(self, nullptr));
  EXPECT_EQ(E_POINTER, m_object->accLocation(&number, nullptr, &number, &number, self));
  EXPECT_EQ(E_POINTER, m_object->accNavigate(NAVDIR_NEXT, self, nullptr));
  EXPECT_EQ(E_POINTER, m_object->accHitTest(0, 0, nullptr));
  EXPECT_EQ(E_POINTER, m_object->GetTypeInfoCount(nullptr));
  EXPECT_EQ(E_POINTER, m_object->GetTypeInfo(0, 0, nullptr));
  EXPECT_EQ(E_INVALIDARG, m_object->GetIDsOfNames(IID_NULL, nullptr, 1, 0, nullptr));
  EXPECT_EQ(E_INVALIDARG,
            m_object->Invoke(DISPID_ACC_NAME, IID_NULL, 0, DISPATCH_PROPERTYGET, nullptr, nullptr, nullptr, nullptr));
}

TEST_F(AccessibleObject, HasNoChildrenNoSelectionAndNothingToDo) {
  LONG count = 7;
  EXPECT_EQ(S_OK, m_object->get_accChildCount(&count));
  EXPECT_EQ(0, count);
  ComPtr<IDispatch> child;
  EXPECT_EQ(S_OK, m_object->get_accChild(childId(), &child));
  EXPECT_EQ(static_cast<IDispatch*>(m_object.Get()), child.Get());
  VARIANT answer;
  EXPECT_EQ(S_FALSE, m_object->get_accSelection(&answer));
  EXPECT_EQ(VT_EMPTY, V_VT(&answer));
  for (LONG direction = NAVDIR_UP; direction <= NAVDIR_LASTCHILD; ++direction) {
    EXPECT_EQ(S_FALSE, m_object->accNavigate(direction, childId(), &answer)) << direction;
    EXPECT_EQ(VT_EMPTY, V_VT(&answer));
  }
  for (const LONG direction : {-1, 0, 9}) EXPECT_EQ(E_INVALIDARG, m_object->accNavigate(direction, childId(), &answer));
  EXPECT_EQ(DISP_E_MEMBERNOTFOUND, m_object->accDoDefaultAction(childId()));
  EXPECT_EQ(DISP_E_MEMBERNOTFOUND, m_object->put_accName(childId(), nullptr));
  EXPECT_EQ(DISP_E_MEMBERNOTFOUND, m_object->put_accValue(childId(), nullptr));
}

TEST_F(AccessibleObject, SelectsNothingAndAsksForTheFocusOnly) {
  EXPECT_EQ(S_FALSE, m_object->accSelect(SELFLAG_NONE, childId()));
  for (const LONG flags : {SELFLAG_TAKESELECTION, SELFLAG_ADDSELECTION, SELFLAG_TAKEFOCUS | SELFLAG_TAKESELECTION})
    EXPECT_EQ(DISP_E_MEMBERNOTFOUND, m_object->accSelect(flags, childId()));
  for (const LONG flags : {0x20, -1, std::numeric_limits<int>::max()})
    EXPECT_EQ(E_INVALIDARG, m_object->accSelect(flags, childId()));
  EXPECT_EQ(0, m_subject.focusRequests);
  EXPECT_EQ(S_FALSE, m_object->accSelect(SELFLAG_TAKEFOCUS, childId()));
  EXPECT_EQ(1, m_subject.focusRequests);
}

TEST_F(AccessibleObject, LiesWhereItsWindowsClientAreaDoes) {
  LONG left = 0, top = 0, width = 0, height = 0;
  EXPECT_EQ(S_OK, m_object->accLocation(&left, &top, &width, &height, childId()));
  EXPECT_EQ((std::vector<LONG>{20, 30, 200, 100}), (std::vector<LONG>{left, top, width, height}));
  VARIANT hit;
  for (const auto& [x, y, inside] : {std::tuple(20, 30, true), {219, 129, true}, {220, 129, false}, {19, 30, false}}) {
    EXPECT_EQ(inside ? S_OK : S_FALSE, m_object->accHitTest(x, y, &hit)) << x << ' ' << y;
    EXPECT_EQ(inside ? VT_I4 : VT_EMPTY, V_VT(&hit));
  }
}

TEST_F(AccessibleObject, HasTheWindowForAParent) {
  ComPtr<IDispatch> parent;
  EXPECT_EQ(S_OK, m_object->get_accParent(&parent));
  ComPtr<IAccessible> object;
  ASSERT_TRUE(parent);
  ASSERT_EQ(S_OK, parent->QueryInterface(__uuidof(IAccessible), reinterpret_cast<void**>(object.GetAddressOf())));
  EXPECT_NE(static_cast<IAccessible*>(m_object.Get()), object.Get());  // Wine 8 does not know its role
}

TEST_F(AccessibleObject, SaysWhetherItsWindowIsSeenEnabledAndFocused) {
  constexpr LONG usual = STATE_SYSTEM_READONLY | STATE_SYSTEM_FOCUSABLE;
  SetFocus(nullptr);
  EXPECT_EQ(usual, test::stateOf(*m_object.Get()));
  VARIANT focus;
  EXPECT_EQ(S_FALSE, m_object->get_accFocus(&focus));
  SetFocus(m_window);
  EXPECT_EQ(usual | STATE_SYSTEM_FOCUSED, test::stateOf(*m_object.Get()));
  EXPECT_EQ(S_OK, m_object->get_accFocus(&focus));
  EXPECT_EQ(VT_I4, V_VT(&focus));
  SetFocus(nullptr);
  EnableWindow(m_window, FALSE);
  EXPECT_EQ(STATE_SYSTEM_READONLY | STATE_SYSTEM_UNAVAILABLE, test::stateOf(*m_object.Get()));
  EnableWindow(m_window, TRUE);
  ShowWindow(m_window, SW_HIDE);
  EXPECT_EQ(STATE_SYSTEM_READONLY | STATE_SYSTEM_INVISIBLE, test::stateOf(*m_object.Get()));
}

TEST_F(AccessibleObject, AnswersThatItIsNotConnectedWhenTheWindowHasGone) {
  m_object->disconnect();
  m_object->disconnect();  // once is enough
  DestroyWindow(std::exchange(m_window, nullptr));
  const int looks = m_subject.looks;
  for (const auto& [name, ask] : childMethods()) EXPECT_EQ(CO_E_OBJNOTCONNECTED, ask(childId())) << name;
  ComPtr<IDispatch> parent;
  EXPECT_EQ(CO_E_OBJNOTCONNECTED, m_object->get_accParent(&parent));
  LONG count = 7;
  EXPECT_EQ(CO_E_OBJNOTCONNECTED, m_object->get_accChildCount(&count));
  EXPECT_EQ(0, count);
  VARIANT answer;
  EXPECT_EQ(CO_E_OBJNOTCONNECTED, m_object->get_accFocus(&answer));
  EXPECT_EQ(CO_E_OBJNOTCONNECTED, m_object->get_accSelection(&answer));
  EXPECT_EQ(CO_E_OBJNOTCONNECTED, m_object->accHitTest(30, 40, &answer));
  EXPECT_EQ(CO_E_OBJNOTCONNECTED, m_object->accDoDefaultAction(childId()));
  UINT types = 7;
  EXPECT_EQ(CO_E_OBJNOTCONNECTED, m_object->GetTypeInfoCount(&types));
  DISPPARAMS none{};
  EXPECT_EQ(CO_E_OBJNOTCONNECTED,
            m_object->Invoke(DISPID_ACC_NAME, IID_NULL, 0, DISPATCH_PROPERTYGET, &none, nullptr, nullptr, nullptr));
  m_object->announceValue(GetTickCount() + 60000, true);
  EXPECT_EQ(looks, m_subject.looks);
  EXPECT_EQ(1, test::ownModuleLockCount());  // its code is still needed
}

TEST_F(AccessibleObject, OutlivesASubjectThatGoesWhileItIsAsked) {
  m_subject.inName = [this] { m_object->disconnect(); };
  EXPECT_EQ(L"a name", test::nameOf(*m_object.Get()));
  EXPECT_EQ(L"(failed)", test::nameOf(*m_object.Get()));
}

TEST_F(AccessibleObject, RefusesDirectCallsOnOtherThreads) {
  const auto methods = childMethods();
  std::thread([&] {
    for (const auto& [name, ask] : methods) EXPECT_EQ(RPC_E_WRONG_THREAD, ask(childId())) << name;
    ComPtr<IDispatch> parent;
    EXPECT_EQ(RPC_E_WRONG_THREAD, m_object->get_accParent(&parent));
  }).join();
  EXPECT_EQ(1, m_subject.looks);  // when it was made
}

TEST_F(AccessibleObject, SaysThatThereIsNoMemory) {
  EXPECT_EQ(L"(failed)", test::descriptionOf(*m_object.Get()));
  BSTR text = nullptr;
  EXPECT_EQ(E_OUTOFMEMORY, m_object->get_accDescription(childId(), &text));
  m_subject.noMemory = true;
  EXPECT_EQ(E_OUTOFMEMORY, m_object->get_accValue(childId(), &text));
  m_object->announceValue(GetTickCount() + 60000, true);
  EXPECT_FALSE(Accessible::create(m_window, m_subject));
  EXPECT_EQ(nullptr, text);
}

TEST_F(AccessibleObject, IsAnIAccessibleAndNothingElse) {
  for (const IID& id : {IID_IUnknown, IID_IDispatch, __uuidof(IAccessible)}) {
    ComPtr<IUnknown> face;
    EXPECT_EQ(S_OK, m_object->QueryInterface(id, reinterpret_cast<void**>(face.GetAddressOf())));
    EXPECT_EQ(static_cast<IUnknown*>(m_object.Get()), face.Get());
  }
  void* other = this;
  EXPECT_EQ(E_NOINTERFACE, m_object->QueryInterface(IID_IOleWindow, &other));
  EXPECT_EQ(nullptr, other);
}

}  // namespace
}  // namespace av::ole
