#pragma once

#include "host/dll_test.h"

#include <ocidl.h>
#include <oleidl.h>

#include <cstdint>
#include <initializer_list>
#include <vector>

namespace av::test {

/// One control of the class that the parameter names (1, 2 or 3), not sited.
class ControlOfEachClass : public DllTest, public testing::WithParamInterface<int> {
 protected:
  void SetUp() override {
    DllTest::SetUp();
    static const CLSID classes[] = {CLSID_CAudioVisualization4Type1, CLSID_CAudioVisualization4Type2,
                                    CLSID_CAudioVisualization4Type3};
    m_classId = classes[GetParam() - 1];
    m_object = create<IOleObject>(m_classId);
    ASSERT_TRUE(m_object);
  }

  void TearDown() override {
    EXPECT_EQ(0u, m_object ? m_object.Reset() : 0u) << "references were lost";
    DllTest::TearDown();
  }

  template <class Interface>
  ComPtr<Interface> face() {
    ComPtr<Interface> found;
    EXPECT_EQ(S_OK, m_object.As(&found));
    return found;
  }

  SIZEL extent() const {
    SIZEL size{};
    EXPECT_EQ(S_OK, m_object->GetExtent(DVASPECT_CONTENT, &size));
    return size;
  }

  void setExtent(LONG cx, LONG cy) {
    SIZEL size{cx, cy};
    ASSERT_EQ(S_OK, m_object->SetExtent(DVASPECT_CONTENT, &size));
  }

  void expectExtent(LONG cx, LONG cy) const {
    const SIZEL size = extent();
    EXPECT_EQ(cx, size.cx);
    EXPECT_EQ(cy, size.cy);
  }

  /// What the control persists, and what only other programs write: words as little-endian bytes.
  static std::vector<std::uint8_t> bytesOf(std::initializer_list<std::uint32_t> words) {
    std::vector<std::uint8_t> bytes;
    for (std::uint32_t word : words)
      for (int shift = 0; shift < 32; shift += 8) bytes.push_back(static_cast<std::uint8_t>(word >> shift));
    return bytes;
  }

  CLSID m_classId{};
  ComPtr<IOleObject> m_object;
};

/// Counts what the control tells its embedding's advise sink.
class AdviseCounter final : public IAdviseSink {
 public:
  STDMETHODIMP QueryInterface(REFIID iid, void** object) override {
    *object = iid == IID_IUnknown || iid == IID_IAdviseSink ? this : nullptr;
    if (*object) AddRef();
    return *object ? S_OK : E_NOINTERFACE;
  }
  STDMETHODIMP_(ULONG) AddRef() override { return ++references; }
  STDMETHODIMP_(ULONG) Release() override { return --references; }
  STDMETHODIMP_(void) OnDataChange(FORMATETC*, STGMEDIUM*) override {}
  STDMETHODIMP_(void) OnViewChange(DWORD, LONG) override { ++viewChanges; }
  STDMETHODIMP_(void) OnRename(IMoniker*) override {}
  STDMETHODIMP_(void) OnSave() override { ++saves; }
  STDMETHODIMP_(void) OnClose() override { ++closes; }

  ULONG references = 1;
  int viewChanges = 0;
  int saves = 0;
  int closes = 0;
};

}  // namespace av::test
