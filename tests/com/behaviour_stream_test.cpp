// What becomes of a control that is saved to, or loaded from, a stream that fails.

#include "host/each_control_test.h"

#include <ocidl.h>

#include <cstdint>
#include <cstring>

namespace av::test {
namespace {

/// A stream of which so many bytes can be read or written before the given answer comes.
class ShortStream final : public IStream {
 public:
  ShortStream(ULONG room, HRESULT afterwards) : m_room(room), m_afterwards(afterwards) {}

  STDMETHODIMP QueryInterface(REFIID, void** object) override {
    *object = nullptr;
    return E_NOINTERFACE;
  }
  STDMETHODIMP_(ULONG) AddRef() override { return 2; }
  STDMETHODIMP_(ULONG) Release() override { return 1; }
  STDMETHODIMP Read(void* target, ULONG count, ULONG* read) override {
    static constexpr std::uint32_t saved[] = {0x800, 7000, 3000};
    const ULONG possible = pass(count);
    std::memcpy(target, reinterpret_cast<const char*>(saved) + m_position, possible);
    m_position += possible;
    if (read) *read = possible;
    return possible == count ? S_OK : m_afterwards;
  }
  STDMETHODIMP Write(const void*, ULONG count, ULONG* written) override {
    const ULONG possible = pass(count);
    if (written) *written = possible;
    return possible == count ? S_OK : m_afterwards;
  }
  STDMETHODIMP Seek(LARGE_INTEGER, DWORD, ULARGE_INTEGER*) override { return E_NOTIMPL; }
  STDMETHODIMP SetSize(ULARGE_INTEGER) override { return E_NOTIMPL; }
  STDMETHODIMP CopyTo(IStream*, ULARGE_INTEGER, ULARGE_INTEGER*, ULARGE_INTEGER*) override { return E_NOTIMPL; }
  STDMETHODIMP Commit(DWORD) override { return E_NOTIMPL; }
  STDMETHODIMP Revert() override { return E_NOTIMPL; }
  STDMETHODIMP LockRegion(ULARGE_INTEGER, ULARGE_INTEGER, DWORD) override { return E_NOTIMPL; }
  STDMETHODIMP UnlockRegion(ULARGE_INTEGER, ULARGE_INTEGER, DWORD) override { return E_NOTIMPL; }
  STDMETHODIMP Stat(STATSTG*, DWORD) override { return E_NOTIMPL; }
  STDMETHODIMP Clone(IStream**) override { return E_NOTIMPL; }

 private:
  ULONG pass(ULONG count) {
    const ULONG possible = count < m_room ? count : m_room;
    m_room -= possible;
    return possible;
  }

  ULONG m_room;
  HRESULT m_afterwards;
  ULONG m_position = 0;
};

class StreamAnswers : public EachControlTest {};

TEST_P(StreamAnswers, NullPointersAreRefused) {
  const auto persist = as<IPersistStreamInit>();
  EXPECT_EQ(E_POINTER, persist->Load(nullptr));
  EXPECT_EQ(E_POINTER, persist->Save(nullptr, TRUE));
  EXPECT_EQ(E_POINTER, persist->GetSizeMax(nullptr));
  EXPECT_EQ(E_POINTER, persist->GetClassID(nullptr));
}

TEST_P(StreamAnswers, AReadThatFailsIsAnsweredWithItsFailureAndChangesNothing) {
  const auto persist = as<IPersistStreamInit>();
  const SIZEL before = extent();
  for (ULONG room = 0; room < 12; ++room) {
    ShortStream failing(room, STG_E_READFAULT), ending(room, S_FALSE);
    EXPECT_EQ(STG_E_READFAULT, persist->Load(&failing)) << room;
    EXPECT_EQ(E_FAIL, persist->Load(&ending)) << room;
    EXPECT_TRUE(before == extent());
  }
  ShortStream whole(12, STG_E_READFAULT);
  EXPECT_EQ(S_OK, persist->Load(&whole));
  EXPECT_TRUE((SIZEL{7000, 3000} == extent()));
}

TEST_P(StreamAnswers, AWriteThatFailsLeavesTheControlDirty) {
  const auto persist = as<IPersistStreamInit>();
  SIZEL size{1234, 2345};
  ASSERT_EQ(S_OK, m_control->SetExtent(DVASPECT_CONTENT, &size));
  for (ULONG room = 0; room < 12; ++room) {
    ShortStream failing(room, STG_E_WRITEFAULT), full(room, S_OK);
    EXPECT_EQ(STG_E_WRITEFAULT, persist->Save(&failing, TRUE)) << room;
    EXPECT_EQ(STG_E_MEDIUMFULL, persist->Save(&full, TRUE)) << room;
    EXPECT_EQ(S_OK, persist->IsDirty());
  }
  ShortStream whole(12, STG_E_WRITEFAULT);
  EXPECT_EQ(S_OK, persist->Save(&whole, TRUE));
  EXPECT_EQ(S_FALSE, persist->IsDirty());
}

INSTANTIATE_TEST_SUITE_P(, StreamAnswers, eachControl);

}  // namespace
}  // namespace av::test
