#include "common/win/host_buffers.h"

#include "host/audio_buffers.h"

#include <gtest/gtest.h>

#include <array>
#include <cstddef>
#include <utility>

namespace {

// An object made of a bare table of methods: entry n notes that slot n was called. Each takes the object and one
// argument, as the slots under test do.

std::size_t slotCalled = 0;

template <std::size_t slot>
HRESULT STDMETHODCALLTYPE noteSlot(void*, void*) {
  slotCalled = slot;
  return S_OK;
}

using SlotMethod = HRESULT(STDMETHODCALLTYPE*)(void*, void*);

template <std::size_t... slots>
std::array<SlotMethod, sizeof...(slots)> makeTable(std::index_sequence<slots...>) {
  return {&noteSlot<slots>...};
}

struct BareObject {
  const SlotMethod* table;
};

template <class Interface>
class HostInterfaceSlots : public testing::Test {
 protected:
  std::array<SlotMethod, 35> table = makeTable(std::make_index_sequence<35>());
  BareObject object{table.data()};
  Interface* subject = reinterpret_cast<Interface*>(&object);
};

template <class Interface>
using BufferSlots = HostInterfaceSlots<Interface>;
using BufferInterfaces = testing::Types<av::IMediaDataBuffer, av::IAudioFrameData, av::IPackedAudioData,
                                        avhost::IMediaDataBuffer, avhost::IAudioFrameData, avhost::IPackedAudioData>;
TYPED_TEST_SUITE(BufferSlots, BufferInterfaces);

TYPED_TEST(BufferSlots, AreTenElevenAndTwelve) {
  BYTE* buffer = nullptr;
  LONG bytes = 0;
  this->subject->GetBuffer(&buffer);
  EXPECT_EQ(10u, slotCalled);
  this->subject->GetBufferSize(&bytes);
  EXPECT_EQ(11u, slotCalled);
  this->subject->GetDataSize(&bytes);
  EXPECT_EQ(12u, slotCalled);
}

template <class Interface>
using FormatSlots = HostInterfaceSlots<Interface>;
using FormatInterfaces = testing::Types<av::IAudioFrameData, avhost::IAudioFrameData>;
TYPED_TEST_SUITE(FormatSlots, FormatInterfaces);

TYPED_TEST(FormatSlots, AreThirtyThreeAndThirtyFour) {
  BYTE* format = nullptr;
  ULONG bytes = 0;
  this->subject->GetFormat(&format);
  EXPECT_EQ(33u, slotCalled);
  this->subject->GetFormatSize(&bytes);
  EXPECT_EQ(34u, slotCalled);
}

IID parsed(const wchar_t* text) {
  IID result{};
  EXPECT_EQ(S_OK, IIDFromString(text, &result));
  return result;
}

TEST(HostInterfaces, HaveTheirFixedIdentifiersOnBothSides) {
  const IID media = parsed(L"{00A21418-9587-433C-8B72-F8A0A9EFC99F}");
  const IID frame = parsed(L"{9B7FEC49-99A8-4FEF-A9E2-38E1ABC874DB}");
  const IID packed = parsed(L"{FDBE7010-E17F-4457-B384-94DB9C482430}");
  EXPECT_TRUE(IsEqualIID(media, __uuidof(av::IMediaDataBuffer)));
  EXPECT_TRUE(IsEqualIID(frame, __uuidof(av::IAudioFrameData)));
  EXPECT_TRUE(IsEqualIID(packed, __uuidof(av::IPackedAudioData)));
  EXPECT_TRUE(IsEqualIID(media, __uuidof(avhost::IMediaDataBuffer)));
  EXPECT_TRUE(IsEqualIID(frame, __uuidof(avhost::IAudioFrameData)));
  EXPECT_TRUE(IsEqualIID(packed, __uuidof(avhost::IPackedAudioData)));
}

}  // namespace
