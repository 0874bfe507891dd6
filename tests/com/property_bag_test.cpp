// The persisted extent in a property bag.

#include "com/persistence_fixture.h"

#include <oleauto.h>

#include <climits>
#include <map>
#include <string>

namespace av::test {
namespace {

/// A bag of variants that does not coerce, as a bag need not, and that notes the type it was asked for.
class Bag final : public IPropertyBag {
 public:
  STDMETHODIMP QueryInterface(REFIID iid, void** object) override {
    *object = iid == IID_IUnknown || iid == IID_IPropertyBag ? this : nullptr;
    if (*object) AddRef();
    return *object ? S_OK : E_NOINTERFACE;
  }
  STDMETHODIMP_(ULONG) AddRef() override { return ++references; }
  STDMETHODIMP_(ULONG) Release() override { return --references; }
  STDMETHODIMP Read(LPCOLESTR name, VARIANT* value, IErrorLog*) override {
    asked.push_back(V_VT(value));
    const auto found = values.find(name);
    return found == values.end() ? E_INVALIDARG : VariantCopy(value, &found->second);
  }
  STDMETHODIMP Write(LPCOLESTR name, VARIANT* value) override {
    if (writesLeft-- == 0) return STG_E_MEDIUMFULL;
    values[name] = *value;
    return S_OK;
  }

  void set(const wchar_t* name, VARTYPE type, LONG value) {
    VARIANT variant{};
    V_VT(&variant) = type;
    V_I4(&variant) = value;
    values[name] = variant;
  }

  std::map<std::wstring, VARIANT> values;  // scalars and strings that the test owns
  std::vector<VARTYPE> asked;
  int writesLeft = 100;
  ULONG references = 1;
};

class ErrorLog final : public IErrorLog {
 public:
  STDMETHODIMP QueryInterface(REFIID iid, void** object) override {
    *object = iid == IID_IUnknown || iid == IID_IErrorLog ? this : nullptr;
    if (*object) AddRef();
    return *object ? S_OK : E_NOINTERFACE;
  }
  STDMETHODIMP_(ULONG) AddRef() override { return ++references; }
  STDMETHODIMP_(ULONG) Release() override { return --references; }
  STDMETHODIMP AddError(LPCOLESTR name, EXCEPINFO* exception) override {
    names.emplace_back(name);
    codes.push_back(exception->scode);
    return S_OK;
  }
  std::vector<std::wstring> names;
  std::vector<HRESULT> codes;
  ULONG references = 1;
};

class BagPersistence : public ControlOfEachClass {
 protected:
  void SetUp() override {
    ControlOfEachClass::SetUp();
    m_persist = face<IPersistPropertyBag>();
    ASSERT_TRUE(m_persist);
  }
  void TearDown() override {
    m_persist.Reset();
    EXPECT_EQ(1u, m_bag.references);
    EXPECT_EQ(1u, m_log.references);
    ControlOfEachClass::TearDown();
  }
  ComPtr<IPersistPropertyBag> m_persist;
  Bag m_bag;
  ErrorLog m_log;
};

TEST_P(BagPersistence, SavesTwoUnsignedValues) {
  setExtent(7000, 3000);
  ASSERT_EQ(S_OK, m_persist->Save(&m_bag, TRUE, FALSE));
  ASSERT_EQ(2u, m_bag.values.size());
  EXPECT_EQ(VT_UI4, V_VT(&m_bag.values[L"_cx"]));
  EXPECT_EQ(7000u, V_UI4(&m_bag.values[L"_cx"]));
  EXPECT_EQ(VT_UI4, V_VT(&m_bag.values[L"_cy"]));
  EXPECT_EQ(3000u, V_UI4(&m_bag.values[L"_cy"]));
}

TEST_P(BagPersistence, LoadsThemAndAsksForThatType) {
  m_bag.set(L"_cx", VT_UI4, 7000);
  m_bag.set(L"_cy", VT_UI4, 3000);
  ASSERT_EQ(S_OK, m_persist->Load(&m_bag, nullptr));
  expectExtent(7000, 3000);
  EXPECT_EQ((std::vector<VARTYPE>{VT_UI4, VT_UI4}), m_bag.asked);
  EXPECT_EQ(S_FALSE, face<IPersistStreamInit>()->IsDirty());
}

TEST_P(BagPersistence, CoercesOtherTypes) {
  BSTR text = SysAllocString(L"7000");
  VARIANT string{};
  V_VT(&string) = VT_BSTR;
  V_BSTR(&string) = text;
  m_bag.values[L"_cx"] = string;
  m_bag.set(L"_cy", VT_I4, 3000);
  EXPECT_EQ(S_OK, m_persist->Load(&m_bag, &m_log));
  expectExtent(7000, 3000);
  SysFreeString(text);
}

TEST_P(BagPersistence, AMissingValueRefusesTheBagAndChangesNothing) {
  setExtent(111, 222);
  EXPECT_EQ(E_INVALIDARG, m_persist->Load(&m_bag, &m_log));
  m_bag.set(L"_cx", VT_UI4, 7000);
  EXPECT_EQ(E_INVALIDARG, m_persist->Load(&m_bag, &m_log));
  expectExtent(111, 222);
  EXPECT_EQ(S_OK, face<IPersistStreamInit>()->IsDirty());
  EXPECT_TRUE(m_log.names.empty()) << "the bag itself logs what it cannot read";
}

TEST_P(BagPersistence, ABadValueRefusesTheBagChangesNothingAndIsLogged) {
  setExtent(111, 222);
  m_bag.set(L"_cx", VT_UI4, 7000);
  BSTR text = SysAllocString(L"wide");
  VARIANT string{};
  V_VT(&string) = VT_BSTR;
  V_BSTR(&string) = text;
  m_bag.values[L"_cy"] = string;
  EXPECT_EQ(DISP_E_TYPEMISMATCH, m_persist->Load(&m_bag, &m_log));
  m_bag.set(L"_cy", VT_I4, -1);
  EXPECT_EQ(DISP_E_OVERFLOW, m_persist->Load(&m_bag, &m_log));
  m_bag.set(L"_cy", VT_UI4, LONG_MIN);  // 0x80000000
  EXPECT_EQ(DISP_E_OVERFLOW, m_persist->Load(&m_bag, &m_log));
  EXPECT_EQ(DISP_E_OVERFLOW, m_persist->Load(&m_bag, nullptr));
  expectExtent(111, 222);
  EXPECT_EQ((std::vector<std::wstring>{L"_cy", L"_cy", L"_cy"}), m_log.names);
  EXPECT_EQ((std::vector<HRESULT>{DISP_E_TYPEMISMATCH, DISP_E_OVERFLOW, DISP_E_OVERFLOW}), m_log.codes);
  SysFreeString(text);
}

TEST_P(BagPersistence, ClearsTheDirtyFlagOnlyWhenAskedAndSaved) {
  const auto stream = face<IPersistStreamInit>();
  ASSERT_EQ(S_OK, m_persist->InitNew());
  EXPECT_EQ(S_OK, stream->IsDirty());
  ASSERT_EQ(S_OK, m_persist->Save(&m_bag, FALSE, TRUE));
  EXPECT_EQ(S_OK, stream->IsDirty());
  m_bag.writesLeft = 1;
  EXPECT_EQ(STG_E_MEDIUMFULL, m_persist->Save(&m_bag, TRUE, TRUE));
  EXPECT_EQ(S_OK, stream->IsDirty());
  m_bag.writesLeft = 2;
  ASSERT_EQ(S_OK, m_persist->Save(&m_bag, TRUE, TRUE));
  EXPECT_EQ(S_FALSE, stream->IsDirty());
}

TEST_P(BagPersistence, MayBeLoadedAndInitialisedAgain) {
  for (const LONG width : {7000L, 8000L}) {
    m_bag.set(L"_cx", VT_UI4, width);
    m_bag.set(L"_cy", VT_UI4, 3000);
    ASSERT_EQ(S_OK, m_persist->Load(&m_bag, nullptr));
    expectExtent(width, 3000);
  }
  for (int i = 0; i < 2; ++i) {
    EXPECT_EQ(S_OK, m_persist->InitNew());
    expectExtent(8000, 3000);
  }
}

TEST_P(BagPersistence, NullPointersAreRefused) {
  EXPECT_EQ(E_POINTER, m_persist->Load(nullptr, &m_log));
  EXPECT_EQ(E_POINTER, m_persist->Save(nullptr, TRUE, TRUE));
  EXPECT_EQ(E_POINTER, m_persist->GetClassID(nullptr));
  CLSID classId{};
  EXPECT_EQ(S_OK, m_persist->GetClassID(&classId));
  EXPECT_EQ(m_classId, classId);
}

INSTANTIATE_TEST_SUITE_P(Type, BagPersistence, testing::Values(1, 2, 3));

}  // namespace
}  // namespace av::test
