// Accessible objects for late-bound clients, and what clients are told of changed values.

#include "host/message_pump.h"
#include "ole/accessible.h"
#include "support/own_module.h"
#include "support/win/accessibility.h"

#include <gtest/gtest.h>

#include <string>

namespace av::ole {
namespace {

using Microsoft::WRL::ComPtr;
using test::childId;

struct Subject final : AccessibleSubject {
  LONG accessibleRole() const noexcept override { return ROLE_SYSTEM_INDICATOR; }
  std::wstring accessibleName() override { return L"a name"; }
  std::wstring accessibleDescription() override { return {}; }
  std::wstring accessibleValue() override {
    ++looks;
    return value;
  }
  HRESULT accessibleTakeFocus() override { return S_OK; }

  std::wstring value = L"first";
  int looks = 0;
};

class AccessibleCalls : public testing::Test {
 protected:
  void SetUp() override {
    ASSERT_EQ(S_OK, CoInitialize(nullptr));
    m_window = CreateWindowW(L"STATIC", L"", WS_POPUP, 0, 0, 10, 10, nullptr, nullptr, nullptr, nullptr);
    m_startMs = GetTickCount();
    m_object = Accessible::create(m_window, m_subject);
    ASSERT_TRUE(m_object);
  }
  void TearDown() override {
    m_object->disconnect();
    m_object.Reset();
    DestroyWindow(m_window);
    EXPECT_EQ(0, test::ownModuleLockCount());
    CoUninitialize();
  }

  HRESULT get(DISPID member, VARIANT* child, VARIANT* result) {
    DISPPARAMS arguments{child, nullptr, child ? 1u : 0u, 0};
    VariantInit(result);
    return m_object->Invoke(member, IID_NULL, 0, DISPATCH_PROPERTYGET, &arguments, result, nullptr, nullptr);
  }

  Subject m_subject;
  HWND m_window = nullptr;
  DWORD m_startMs = 0;
  ComPtr<Accessible> m_object;
};

TEST_F(AccessibleCalls, AreBoundLateThroughTheSystemsTypeLibrary) {
  UINT count = 0;
  ASSERT_EQ(S_OK, m_object->GetTypeInfoCount(&count));
  ASSERT_EQ(1u, count);
  ComPtr<ITypeInfo> info;
  ASSERT_EQ(S_OK, m_object->GetTypeInfo(0, 0, &info));
  EXPECT_EQ(DISP_E_BADINDEX, m_object->GetTypeInfo(1, 0, &info));

  wchar_t name[] = L"ACCNAME", unknown[] = L"noSuchName";
  LPOLESTR names[] = {name};
  DISPID id = 0;
  EXPECT_EQ(S_OK, m_object->GetIDsOfNames(IID_NULL, names, 1, 0, &id));
  EXPECT_EQ(DISPID_ACC_NAME, id);
  names[0] = unknown;
  EXPECT_EQ(DISP_E_UNKNOWNNAME, m_object->GetIDsOfNames(IID_NULL, names, 1, 0, &id));
  EXPECT_EQ(DISPID_UNKNOWN, id);
  EXPECT_EQ(DISP_E_UNKNOWNINTERFACE, m_object->GetIDsOfNames(IID_IUnknown, names, 1, 0, &id));
}

TEST_F(AccessibleCalls, TakeTheElementItselfWhereALateBoundCallerNamesNoChild) {
  VARIANT self = childId(), child = childId(3), answer{};
  EXPECT_EQ(S_OK, get(DISPID_ACC_NAME, &self, &answer));
  EXPECT_EQ(L"a name", std::wstring(V_BSTR(&answer)));
  VariantClear(&answer);
  EXPECT_EQ(S_OK, get(DISPID_ACC_ROLE, nullptr, &answer));
  EXPECT_EQ(VT_I4, V_VT(&answer));
  EXPECT_EQ(ROLE_SYSTEM_INDICATOR, V_I4(&answer));
  DISPPARAMS stranger{&child, nullptr, 1, 0};
  EXCEPINFO exception{};
  EXPECT_EQ(DISP_E_EXCEPTION, m_object->Invoke(DISPID_ACC_NAME, IID_NULL, 0, DISPATCH_PROPERTYGET, &stranger, &answer,
                                               &exception, nullptr));
  EXPECT_EQ(E_INVALIDARG, exception.scode);
  EXPECT_EQ(DISP_E_MEMBERNOTFOUND, get(123456, &self, &answer));
  DISPPARAMS none{};
  EXPECT_EQ(DISP_E_UNKNOWNINTERFACE,
            m_object->Invoke(DISPID_ACC_NAME, IID_IUnknown, 0, DISPATCH_PROPERTYGET, &none, &answer, nullptr, nullptr));
}

TEST_F(AccessibleCalls, TellOfOtherWordsAtMostOnceASecond) {
  const test::ValueChanges changes;
  ASSERT_TRUE(changes.listens());
  const auto toldAfter = [&](DWORD ms, const wchar_t* value, bool atOnce = false) {
    m_subject.value = value;
    const long before = changes.of(m_window);
    m_object->announceValue(m_startMs + ms, atOnce);
    avhost::pumpMessages(0);
    return changes.of(m_window) - before;
  };
  EXPECT_EQ(0, toldAfter(500, L"second"));
  EXPECT_EQ(1, m_subject.looks);  // when it was made: nothing is computed in between
  EXPECT_EQ(1, toldAfter(1500, L"second"));
  EXPECT_EQ(0, toldAfter(1600, L"third"));
  EXPECT_EQ(0, toldAfter(2499, L"third"));
  EXPECT_EQ(2, m_subject.looks);
  EXPECT_EQ(1, toldAfter(2500, L"third"));
  EXPECT_EQ(0, toldAfter(3600, L"third"));  // the same words
  EXPECT_EQ(0, toldAfter(4000, L"fourth"));
  EXPECT_EQ(1, toldAfter(4100, L"fifth", true));
  EXPECT_EQ(0, toldAfter(4200, L"fifth", true));
  EXPECT_EQ(0, toldAfter(5100, L"sixth"));  // a second after the last look
  EXPECT_EQ(1, toldAfter(5200, L"sixth"));
}

TEST_F(AccessibleCalls, TellOfValuesAcrossTheWrapOfTheTickCount) {
  const test::ValueChanges changes;
  m_object->announceValue(0xFFFFFE00, true);  // 512 ms before it
  m_subject.value = L"second";
  m_object->announceValue(400, false);
  avhost::pumpMessages(0);
  EXPECT_EQ(0, changes.of(m_window));
  m_object->announceValue(488, false);
  avhost::pumpMessages(0);
  EXPECT_EQ(1, changes.of(m_window));
}

}  // namespace
}  // namespace av::ole
