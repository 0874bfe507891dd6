// The helper functions of the OLE library, as applications call them on any embedded object.

#include "host/manifest_test.h"
#include "support/win/memory_picture.h"

#include <ocidl.h>
#include <ole2.h>

#include <string>

namespace av::test {
namespace {

struct ControlClass {
  const char* name;
  const CLSID& classId;
};

void PrintTo(const ControlClass& controlClass, std::ostream* out) { *out << controlClass.name; }

class OleFunctions : public ManifestTest, public testing::WithParamInterface<ControlClass> {
 protected:
  void SetUp() override {
    ManifestTest::SetUp();
    m_control = create<IOleObject>(GetParam().classId);
    ASSERT_TRUE(m_control);
  }
  void TearDown() override {
    EXPECT_EQ(0u, m_control ? m_control.Reset() : 0u) << "references were lost";
    ManifestTest::TearDown();
  }

  static void setExtent(IOleObject& control, SIZEL himetric) {
    EXPECT_EQ(S_OK, control.SetExtent(DVASPECT_CONTENT, &himetric));
  }
  static SIZEL extentOf(IOleObject& control) {
    SIZEL himetric{};
    EXPECT_EQ(S_OK, control.GetExtent(DVASPECT_CONTENT, &himetric));
    return himetric;
  }

  static ComPtr<IStream> memoryStream() {
    ComPtr<IStream> stream;
    EXPECT_EQ(S_OK, CreateStreamOnHGlobal(nullptr, TRUE, &stream));
    return stream;
  }
  static void rewind(IStream& stream) { EXPECT_EQ(S_OK, stream.Seek(LARGE_INTEGER{}, STREAM_SEEK_SET, nullptr)); }
  static ULONGLONG sizeOf(IStream& stream) {
    STATSTG status{};
    EXPECT_EQ(S_OK, stream.Stat(&status, STATFLAG_NONAME));
    return status.cbSize.QuadPart;
  }

  ComPtr<IOleObject> m_control;
};

TEST_P(OleFunctions, OleRunFindsAnObjectThatNeedsNoStart) {
  EXPECT_EQ(S_OK, OleRun(m_control.Get()));
  EXPECT_TRUE(OleIsRunning(m_control.Get()));
}

TEST_P(OleFunctions, OleDrawGivesThePictureOfTheViewObject) {
  setExtent(*m_control.Get(), {5080, 2540});
  const RECT bounds{20, 10, 180, 90};
  MemoryPicture byFunction(200, 100), byInterface(200, 100), untouched(200, 100);
  EXPECT_EQ(S_OK, OleDraw(m_control.Get(), DVASPECT_CONTENT, byFunction.context(), &bounds));
  ComPtr<IViewObject> view;
  ASSERT_EQ(S_OK, m_control.As(&view));
  const RECTL logical{bounds.left, bounds.top, bounds.right, bounds.bottom};
  EXPECT_EQ(S_OK, view->Draw(DVASPECT_CONTENT, -1, nullptr, nullptr, nullptr, byInterface.context(), &logical, nullptr,
                             nullptr, 0));
  EXPECT_EQ(byInterface.pixels(), byFunction.pixels());
  EXPECT_NE(untouched.pixels(), byFunction.pixels());
  EXPECT_EQ(DV_E_DVASPECT, OleDraw(m_control.Get(), DVASPECT_ICON, byFunction.context(), &bounds));
}

TEST_P(OleFunctions, AStreamKeepsClassAndSize) {
  setExtent(*m_control.Get(), {7777, 3333});
  ComPtr<IPersistStream> persist;
  ASSERT_EQ(S_OK, m_control.As(&persist));
  const ComPtr<IStream> stream = memoryStream();
  ASSERT_EQ(S_OK, OleSaveToStream(persist.Get(), stream.Get()));
  EXPECT_EQ(sizeof(CLSID) + 12, sizeOf(*stream.Get()));
  rewind(*stream.Get());
  ComPtr<IOleObject> loaded;
  ASSERT_EQ(S_OK, OleLoadFromStream(stream.Get(), IID_PPV_ARGS(&loaded)));
  CLSID classId{};
  EXPECT_EQ(S_OK, loaded->GetUserClassID(&classId));
  EXPECT_EQ(GetParam().classId, classId);
  EXPECT_EQ(7777, extentOf(*loaded.Get()).cx);
  EXPECT_EQ(3333, extentOf(*loaded.Get()).cy);
  EXPECT_EQ(0u, loaded.Reset());
}

TEST_P(OleFunctions, AStreamThatEndsEarlyLoadsNothingAndLeavesNothingBehind) {
  ComPtr<IPersistStream> persist;
  ASSERT_EQ(S_OK, m_control.As(&persist));
  for (const ULONG kept : {0u, 3u, 4u, 8u, 11u}) {
    const ComPtr<IStream> stream = memoryStream();
    ASSERT_EQ(S_OK, OleSaveToStream(persist.Get(), stream.Get()));
    ULARGE_INTEGER shorter{};
    shorter.QuadPart = sizeof(CLSID) + kept;
    ASSERT_EQ(S_OK, stream->SetSize(shorter));
    rewind(*stream.Get());
    IOleObject* loaded = nullptr;
    EXPECT_TRUE(FAILED(OleLoadFromStream(stream.Get(), IID_PPV_ARGS(&loaded)))) << kept << " bytes";
    // Wine hands out the object that could not be loaded; nobody else holds it.
    EXPECT_EQ(0u, loaded ? loaded->Release() : 0u);
  }
}

ComPtr<IStorage> memoryStorage() {
  ComPtr<ILockBytes> bytes;
  ComPtr<IStorage> storage;
  EXPECT_EQ(S_OK, CreateILockBytesOnHGlobal(nullptr, TRUE, &bytes));
  EXPECT_EQ(S_OK, StgCreateDocfileOnILockBytes(bytes.Get(), STGM_CREATE | STGM_READWRITE | STGM_SHARE_EXCLUSIVE, 0,
                                               &storage));
  return storage;
}

TEST_P(OleFunctions, AStorageKeepsClassAndSize) {
  setExtent(*m_control.Get(), {7777, 3333});
  const ComPtr<IStorage> storage = memoryStorage();
  {
    ComPtr<IPersistStorage> persist;
    ASSERT_EQ(S_OK, m_control.As(&persist));
    EXPECT_EQ(S_OK, persist->InitNew(storage.Get()));
    EXPECT_EQ(S_OK, OleSave(persist.Get(), storage.Get(), TRUE));
    EXPECT_EQ(S_OK, persist->SaveCompleted(nullptr));  // the caller's part
    EXPECT_EQ(S_FALSE, persist->IsDirty());
    EXPECT_EQ(S_OK, persist->HandsOffStorage());
  }
  STATSTG status{};
  ComPtr<IStream> contents;
  EXPECT_EQ(S_OK,
            storage->OpenStream(L"Contents", nullptr, STGM_READ | STGM_SHARE_EXCLUSIVE, 0, contents.GetAddressOf()));
  if (contents) {
    EXPECT_EQ(12u, sizeOf(*contents.Get()));
  }
  contents.Reset();
  EXPECT_EQ(S_OK, storage->Stat(&status, STATFLAG_NONAME));
  EXPECT_EQ(GetParam().classId, status.clsid);

  ComPtr<IOleObject> loaded;
  ASSERT_EQ(S_OK,
            OleLoad(storage.Get(), __uuidof(IOleObject), nullptr, reinterpret_cast<void**>(loaded.GetAddressOf())));
  CLSID classId{};
  EXPECT_EQ(S_OK, loaded->GetUserClassID(&classId));
  EXPECT_EQ(GetParam().classId, classId);
  EXPECT_EQ(7777, extentOf(*loaded.Get()).cx);
  EXPECT_EQ(3333, extentOf(*loaded.Get()).cy);
  EXPECT_EQ(0u, loaded.Reset());
}

TEST_P(OleFunctions, AStorageWithoutContentsIsRefused) {
  const ComPtr<IStorage> storage = memoryStorage();
  ASSERT_EQ(S_OK, WriteClassStg(storage.Get(), GetParam().classId));
  IOleObject* loaded = nullptr;
  EXPECT_TRUE(FAILED(OleLoad(storage.Get(), __uuidof(IOleObject), nullptr, reinterpret_cast<void**>(&loaded))));
  EXPECT_EQ(nullptr, loaded);
}

const ControlClass allClasses[] = {{"Type1", CLSID_CAudioVisualization4Type1},
                                   {"Type2", CLSID_CAudioVisualization4Type2},
                                   {"Type3", CLSID_CAudioVisualization4Type3}};

INSTANTIATE_TEST_SUITE_P(, OleFunctions, testing::ValuesIn(allClasses),
                         [](const auto& parameter) { return std::string(parameter.param.name); });

}  // namespace
}  // namespace av::test
