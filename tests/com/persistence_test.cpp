// The persisted stream: twelve bytes, and streams that are none.

#include "host/dll_test.h"

#include <ocidl.h>
#include <oleidl.h>

#include <array>
#include <cstdint>
#include <cstring>
#include <vector>

namespace av::test {
namespace {

class Persistence : public DllTest, public testing::WithParamInterface<int> {
 protected:
  void SetUp() override {
    DllTest::SetUp();
    static const CLSID classes[] = {CLSID_CAudioVisualization4Type1, CLSID_CAudioVisualization4Type2,
                                    CLSID_CAudioVisualization4Type3};
    m_classId = classes[GetParam() - 1];
    m_persist = create<IPersistStreamInit>(m_classId);
    ASSERT_TRUE(m_persist);
    ASSERT_EQ(S_OK, m_persist.As(&m_object));
  }

  void TearDown() override {
    m_object.Reset();
    EXPECT_EQ(0u, m_persist ? m_persist.Reset() : 0u);
    DllTest::TearDown();
  }

  static ComPtr<IStream> streamOf(const std::vector<std::uint8_t>& bytes) {
    ComPtr<IStream> stream;
    CreateStreamOnHGlobal(nullptr, TRUE, &stream);
    stream->Write(bytes.data(), static_cast<ULONG>(bytes.size()), nullptr);
    const LARGE_INTEGER start{};
    stream->Seek(start, STREAM_SEEK_SET, nullptr);
    return stream;
  }

  static std::vector<std::uint8_t> bytesOf(std::initializer_list<std::uint32_t> words) {
    std::vector<std::uint8_t> bytes;
    for (std::uint32_t word : words)
      for (int shift = 0; shift < 32; shift += 8) bytes.push_back(static_cast<std::uint8_t>(word >> shift));
    return bytes;
  }

  SIZEL extent() const {
    SIZEL size{};
    EXPECT_EQ(S_OK, m_object->GetExtent(DVASPECT_CONTENT, &size));
    return size;
  }

  CLSID m_classId{};
  ComPtr<IPersistStreamInit> m_persist;
  ComPtr<IOleObject> m_object;
};

TEST_P(Persistence, SavesVersionWordAndExtentAsTwelveBytes) {
  SIZEL size{0x01020304, 0x0A0B0C0D};
  ASSERT_EQ(S_OK, m_object->SetExtent(DVASPECT_CONTENT, &size));
  ComPtr<IStream> stream;
  ASSERT_EQ(S_OK, CreateStreamOnHGlobal(nullptr, TRUE, &stream));
  ASSERT_EQ(S_OK, m_persist->Save(stream.Get(), TRUE));
  std::array<std::uint8_t, 64> bytes{};
  const LARGE_INTEGER start{};
  stream->Seek(start, STREAM_SEEK_SET, nullptr);
  ULONG read = 0;
  stream->Read(bytes.data(), bytes.size(), &read);
  EXPECT_EQ(12u, read);
  const std::uint8_t expected[] = {0x00, 0x08, 0, 0, 4, 3, 2, 1, 0x0D, 0x0C, 0x0B, 0x0A};
  EXPECT_EQ(0, std::memcmp(bytes.data(), expected, sizeof expected));
  ULARGE_INTEGER size2{};
  EXPECT_EQ(S_OK, m_persist->GetSizeMax(&size2));
  EXPECT_EQ(12u, size2.QuadPart);
}

TEST_P(Persistence, LoadsTheExtent) {
  const auto stream = streamOf(bytesOf({0x800, 7000, 3000}));
  ASSERT_EQ(S_OK, m_persist->Load(stream.Get()));
  EXPECT_EQ(7000, extent().cx);
  EXPECT_EQ(3000, extent().cy);
  EXPECT_EQ(S_FALSE, m_persist->IsDirty());
}

TEST_P(Persistence, RefusesLaterVersionsTruncatedStreamsAndImpossibleExtentsAndChangesNothing) {
  const SIZEL before = extent();
  EXPECT_EQ(E_FAIL, m_persist->Load(streamOf(bytesOf({0x801, 7000, 3000})).Get()));
  EXPECT_EQ(E_FAIL, m_persist->Load(streamOf(bytesOf({0xFFFFFFFF, 7000, 3000})).Get()));
  EXPECT_EQ(E_FAIL, m_persist->Load(streamOf({}).Get()));
  EXPECT_EQ(E_FAIL, m_persist->Load(streamOf({0, 8}).Get()));
  EXPECT_EQ(E_FAIL, m_persist->Load(streamOf(bytesOf({0x800})).Get()));
  EXPECT_EQ(E_FAIL, m_persist->Load(streamOf(bytesOf({0x800, 7000})).Get()));
  auto bytes = bytesOf({0x800, 7000, 3000});
  bytes.pop_back();
  EXPECT_EQ(E_FAIL, m_persist->Load(streamOf(bytes).Get()));
  EXPECT_EQ(E_FAIL, m_persist->Load(streamOf(bytesOf({0x800, 0x80000000, 3000})).Get()));
  EXPECT_EQ(E_POINTER, m_persist->Load(nullptr));
  EXPECT_EQ(before.cx, extent().cx);
  EXPECT_EQ(before.cy, extent().cy);
}

TEST_P(Persistence, ReadsItsTwelveBytesAndNotOneMore) {
  const auto stream = streamOf(bytesOf({0x800, 7000, 3000, 0x12345678}));
  ASSERT_EQ(S_OK, m_persist->Load(stream.Get()));
  EXPECT_EQ(7000, extent().cx);
  std::uint32_t next = 0;
  ULONG read = 0;
  EXPECT_EQ(S_OK, stream->Read(&next, sizeof next, &read));
  EXPECT_EQ(0x12345678u, next) << "what follows belongs to the container";
}

TEST_P(Persistence, TakesOnlyTheVersionWordFromALaterFormat) {
  const auto stream = streamOf(bytesOf({0x801, 0x12345678}));
  EXPECT_EQ(E_FAIL, m_persist->Load(stream.Get()));
  std::uint32_t next = 0;
  ULONG read = 0;
  EXPECT_EQ(S_OK, stream->Read(&next, sizeof next, &read));
  EXPECT_EQ(0x12345678u, next);
}

TEST_P(Persistence, EarlierVersionsAreRead) {
  ASSERT_EQ(S_OK, m_persist->Load(streamOf(bytesOf({0x710, 7000, 3000})).Get()));
  EXPECT_EQ(7000, extent().cx);
}

TEST_P(Persistence, ANewControlIsDirtyALoadedOneIsNotAndEitherMayComeAgain) {
  EXPECT_EQ(S_OK, m_persist->InitNew());
  EXPECT_EQ(S_OK, m_persist->IsDirty());
  EXPECT_EQ(S_OK, m_persist->Load(streamOf(bytesOf({0x800, 1, 2})).Get()));
  EXPECT_EQ(S_FALSE, m_persist->IsDirty());
  EXPECT_EQ(S_OK, m_persist->Load(streamOf(bytesOf({0x800, 3, 4})).Get()));
  EXPECT_EQ(3, extent().cx);
  EXPECT_EQ(S_OK, m_persist->InitNew());
  EXPECT_EQ(S_OK, m_persist->IsDirty());
  EXPECT_EQ(3, extent().cx);
}

TEST_P(Persistence, KnowsWhetherItIsDirty) {
  EXPECT_EQ(S_FALSE, m_persist->IsDirty());
  SIZEL size{100, 100};
  ASSERT_EQ(S_OK, m_object->SetExtent(DVASPECT_CONTENT, &size));
  EXPECT_EQ(S_OK, m_persist->IsDirty());
  ComPtr<IStream> stream;
  ASSERT_EQ(S_OK, CreateStreamOnHGlobal(nullptr, TRUE, &stream));
  ASSERT_EQ(S_OK, m_persist->Save(stream.Get(), FALSE));
  EXPECT_EQ(S_OK, m_persist->IsDirty());
  ASSERT_EQ(S_OK, m_persist->Save(stream.Get(), TRUE));
  EXPECT_EQ(S_FALSE, m_persist->IsDirty());
}

TEST_P(Persistence, NamesItsClass) {
  CLSID classId{};
  EXPECT_EQ(S_OK, m_persist->GetClassID(&classId));
  EXPECT_EQ(m_classId, classId);
  EXPECT_EQ(E_POINTER, m_persist->GetClassID(nullptr));
}

INSTANTIATE_TEST_SUITE_P(Type, Persistence, testing::Values(1, 2, 3));

}  // namespace
}  // namespace av::test
