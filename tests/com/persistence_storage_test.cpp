// The persisted extent in a storage: the stream "Contents", its access modes, and the states that a container walks the
// control through.

#include "com/persistence_fixture.h"

#include <objidl.h>

#include <array>
#include <cstring>
#include <string>

namespace av::test {
namespace {

ComPtr<IStorage> memoryStorage() {
  ComPtr<ILockBytes> bytes;
  EXPECT_EQ(S_OK, CreateILockBytesOnHGlobal(nullptr, TRUE, &bytes));
  ComPtr<IStorage> storage;
  EXPECT_EQ(S_OK, StgCreateDocfileOnILockBytes(bytes.Get(), STGM_CREATE | STGM_READWRITE | STGM_SHARE_EXCLUSIVE, 0,
                                               &storage));
  return storage;
}

ComPtr<IStorage> storageWith(const std::vector<std::uint8_t>& contents) {
  const auto storage = memoryStorage();
  ComPtr<IStream> stream;
  EXPECT_EQ(S_OK,
            storage->CreateStream(L"Contents", STGM_CREATE | STGM_READWRITE | STGM_SHARE_EXCLUSIVE, 0, 0, &stream));
  if (contents.empty()) return storage;
  EXPECT_EQ(S_OK, stream->Write(contents.data(), static_cast<ULONG>(contents.size()), nullptr));
  return storage;
}

std::vector<std::uint8_t> contentsOf(IStorage* storage) {
  ComPtr<IStream> stream;
  EXPECT_EQ(S_OK, storage->OpenStream(L"Contents", nullptr, STGM_READ | STGM_SHARE_EXCLUSIVE, 0, &stream));
  std::vector<std::uint8_t> bytes(64);
  ULONG read = 0;
  if (stream) stream->Read(bytes.data(), static_cast<ULONG>(bytes.size()), &read);
  bytes.resize(read);
  return bytes;
}

/// Notes how streams are asked for, and passes the calls on.
class StorageSpy final : public IStorage {
 public:
  explicit StorageSpy(IStorage* storage) : m_storage(storage) {}
  STDMETHODIMP QueryInterface(REFIID iid, void** object) override {
    *object = iid == IID_IUnknown || iid == IID_IStorage ? this : nullptr;
    if (*object) AddRef();
    return *object ? S_OK : E_NOINTERFACE;
  }
  STDMETHODIMP_(ULONG) AddRef() override { return ++references; }
  STDMETHODIMP_(ULONG) Release() override { return --references; }
  STDMETHODIMP CreateStream(const OLECHAR* name, DWORD mode, DWORD a, DWORD b, IStream** stream) override {
    calls.push_back({L"create " + std::wstring(name), mode});
    return failure ? failure : m_storage->CreateStream(name, mode, a, b, stream);
  }
  STDMETHODIMP OpenStream(const OLECHAR* name, void* reserved, DWORD mode, DWORD a, IStream** stream) override {
    calls.push_back({L"open " + std::wstring(name), mode});
    return failure ? failure : m_storage->OpenStream(name, reserved, mode, a, stream);
  }
  STDMETHODIMP CreateStorage(const OLECHAR*, DWORD, DWORD, DWORD, IStorage**) override { return unexpected(); }
  STDMETHODIMP OpenStorage(const OLECHAR*, IStorage*, DWORD, SNB, DWORD, IStorage**) override { return unexpected(); }
  STDMETHODIMP CopyTo(DWORD, const IID*, SNB, IStorage*) override { return unexpected(); }
  STDMETHODIMP MoveElementTo(const OLECHAR*, IStorage*, const OLECHAR*, DWORD) override { return unexpected(); }
  STDMETHODIMP Commit(DWORD) override { return unexpected(); }
  STDMETHODIMP Revert() override { return unexpected(); }
  STDMETHODIMP EnumElements(DWORD, void*, DWORD, IEnumSTATSTG**) override { return unexpected(); }
  STDMETHODIMP DestroyElement(const OLECHAR*) override { return unexpected(); }
  STDMETHODIMP RenameElement(const OLECHAR*, const OLECHAR*) override { return unexpected(); }
  STDMETHODIMP SetElementTimes(const OLECHAR*, const FILETIME*, const FILETIME*, const FILETIME*) override {
    return unexpected();
  }
  STDMETHODIMP SetClass(REFCLSID) override { return unexpected(); }
  STDMETHODIMP SetStateBits(DWORD, DWORD) override { return unexpected(); }
  STDMETHODIMP Stat(STATSTG*, DWORD) override { return unexpected(); }

  struct Call {
    std::wstring what;
    DWORD mode;
  };
  std::vector<Call> calls;
  HRESULT failure = S_OK;
  ULONG references = 1;

 private:
  static HRESULT unexpected() {
    ADD_FAILURE() << "this call belongs to the container";
    return E_NOTIMPL;
  }
  ComPtr<IStorage> m_storage;
};

class StoragePersistence : public ControlOfEachClass {
 protected:
  void SetUp() override {
    ControlOfEachClass::SetUp();
    m_persist = face<IPersistStorage>();
    ASSERT_TRUE(m_persist);
  }
  void TearDown() override {
    m_persist.Reset();
    ControlOfEachClass::TearDown();
  }
  ComPtr<IPersistStorage> m_persist;
};

TEST_P(StoragePersistence, SavesTheTwelveBytesAsContents) {
  setExtent(0x01020304, 0x0A0B0C0D);
  const auto storage = memoryStorage();
  ASSERT_EQ(S_OK, m_persist->InitNew(storage.Get()));
  ASSERT_EQ(S_OK, m_persist->Save(storage.Get(), TRUE));
  EXPECT_EQ(bytesOf({0x800, 0x01020304, 0x0A0B0C0D}), contentsOf(storage.Get()));
}

TEST_P(StoragePersistence, CreatesAndOpensTheStreamExclusively) {
  const auto storage = memoryStorage();
  StorageSpy spy(storage.Get());
  ASSERT_EQ(S_OK, m_persist->Save(&spy, TRUE));
  ASSERT_EQ(S_OK, m_persist->SaveCompleted(nullptr));
  ASSERT_EQ(1u, spy.calls.size());
  EXPECT_EQ(L"create Contents", spy.calls[0].what);
  EXPECT_EQ(DWORD{STGM_CREATE | STGM_READWRITE | STGM_SHARE_EXCLUSIVE}, spy.calls[0].mode);
  const auto other = create<IPersistStorage>(m_classId);
  ASSERT_EQ(S_OK, other->Load(&spy));
  ASSERT_EQ(2u, spy.calls.size());
  EXPECT_EQ(L"open Contents", spy.calls[1].what);
  EXPECT_EQ(DWORD{STGM_READ | STGM_SHARE_EXCLUSIVE}, spy.calls[1].mode);
  EXPECT_EQ(1u, spy.references) << "the control keeps no storage";
}

TEST_P(StoragePersistence, LoadsTheExtent) {
  ASSERT_EQ(S_OK, m_persist->Load(storageWith(bytesOf({0x800, 7000, 3000})).Get()));
  expectExtent(7000, 3000);
  EXPECT_EQ(S_FALSE, m_persist->IsDirty());
}

TEST_P(StoragePersistence, RefusesWhatItCannotHaveWrittenAndChangesNothing) {
  setExtent(111, 222);
  EXPECT_EQ(STG_E_FILENOTFOUND, m_persist->Load(memoryStorage().Get()));
  EXPECT_EQ(E_FAIL, m_persist->Load(storageWith(bytesOf({0x801, 7000, 3000})).Get()));
  EXPECT_EQ(E_FAIL, m_persist->Load(storageWith({}).Get()));
  EXPECT_EQ(E_FAIL, m_persist->Load(storageWith(bytesOf({0x800, 7000})).Get()));
  EXPECT_EQ(E_FAIL, m_persist->Load(storageWith(bytesOf({0x800, 7000, 0x80000000})).Get()));
  auto longer = bytesOf({0x800, 7000, 3000});
  longer.push_back(0);
  EXPECT_EQ(E_FAIL, m_persist->Load(storageWith(longer).Get())) << "the stream is the control's alone";
  expectExtent(111, 222);
  EXPECT_EQ(S_OK, m_persist->IsDirty());
  // A refused load leaves the control as new as it was.
  EXPECT_EQ(S_OK, m_persist->Load(storageWith(bytesOf({0x800, 7000, 3000})).Get()));
  expectExtent(7000, 3000);
}

TEST_P(StoragePersistence, PassesTheStoragesOwnFailuresOn) {
  StorageSpy spy(nullptr);
  spy.failure = STG_E_ACCESSDENIED;
  EXPECT_EQ(STG_E_ACCESSDENIED, m_persist->Save(&spy, TRUE));
  EXPECT_EQ(STG_E_ACCESSDENIED, m_persist->Load(&spy));
  EXPECT_EQ(E_UNEXPECTED, m_persist->SaveCompleted(nullptr)) << "nothing was saved";
}

TEST_P(StoragePersistence, IsInitialisedOnce) {
  const auto storage = memoryStorage();
  EXPECT_EQ(S_OK, m_persist->InitNew(storage.Get()));
  EXPECT_EQ(S_OK, m_persist->IsDirty()) << "nothing of it is saved yet";
  EXPECT_EQ(CO_E_ALREADYINITIALIZED, m_persist->InitNew(storage.Get()));
  EXPECT_EQ(CO_E_ALREADYINITIALIZED, m_persist->Load(storageWith(bytesOf({0x800, 1, 2})).Get()));
  expectExtent(5080, 5080);
}

TEST_P(StoragePersistence, IsCleanOnceItsOwnStorageWasSaved) {
  AdviseCounter sink;
  DWORD connection = 0;
  ASSERT_EQ(S_OK, m_object->Advise(&sink, &connection));
  const auto storage = memoryStorage();
  ASSERT_EQ(S_OK, m_persist->InitNew(storage.Get()));
  ASSERT_EQ(S_OK, m_persist->Save(storage.Get(), TRUE));
  EXPECT_EQ(S_OK, m_persist->IsDirty());
  EXPECT_EQ(0, sink.saves);
  ASSERT_EQ(S_OK, m_persist->SaveCompleted(nullptr));
  EXPECT_EQ(S_FALSE, m_persist->IsDirty());
  EXPECT_EQ(1, sink.saves);
  ASSERT_EQ(S_OK, m_object->Unadvise(connection));
}

TEST_P(StoragePersistence, ACopyElsewhereLeavesItDirtyUnlessItBecomesTheCopy) {
  AdviseCounter sink;
  DWORD connection = 0;
  ASSERT_EQ(S_OK, m_object->Advise(&sink, &connection));
  const auto storage = memoryStorage();
  const auto copy = memoryStorage();
  ASSERT_EQ(S_OK, m_persist->InitNew(storage.Get()));
  ASSERT_EQ(S_OK, m_persist->Save(copy.Get(), FALSE));
  ASSERT_EQ(S_OK, m_persist->SaveCompleted(nullptr));
  EXPECT_EQ(S_OK, m_persist->IsDirty());
  EXPECT_EQ(0, sink.saves);
  ASSERT_EQ(S_OK, m_persist->Save(copy.Get(), FALSE));
  ASSERT_EQ(S_OK, m_persist->SaveCompleted(copy.Get()));
  EXPECT_EQ(S_FALSE, m_persist->IsDirty());
  EXPECT_EQ(1, sink.saves);
  ASSERT_EQ(S_OK, m_object->Unadvise(connection));
}

TEST_P(StoragePersistence, WithHandsOffItNeedsAStorageBeforeItSavesAgain) {
  const auto storage = memoryStorage();
  EXPECT_EQ(E_UNEXPECTED, m_persist->HandsOffStorage()) << "it has none yet";
  EXPECT_EQ(E_UNEXPECTED, m_persist->SaveCompleted(nullptr));
  ASSERT_EQ(S_OK, m_persist->InitNew(storage.Get()));
  EXPECT_EQ(E_UNEXPECTED, m_persist->SaveCompleted(nullptr)) << "nothing was saved";
  ASSERT_EQ(S_OK, m_persist->HandsOffStorage());
  EXPECT_EQ(E_UNEXPECTED, m_persist->HandsOffStorage());
  EXPECT_EQ(E_UNEXPECTED, m_persist->Save(storage.Get(), TRUE));
  EXPECT_EQ(E_INVALIDARG, m_persist->SaveCompleted(nullptr));
  ASSERT_EQ(S_OK, m_persist->SaveCompleted(storage.Get()));
  EXPECT_EQ(S_OK, m_persist->IsDirty()) << "no save took place";
  ASSERT_EQ(S_OK, m_persist->Save(storage.Get(), TRUE));
  ASSERT_EQ(S_OK, m_persist->HandsOffStorage());
  ASSERT_EQ(S_OK, m_persist->SaveCompleted(storage.Get()));
  EXPECT_EQ(S_FALSE, m_persist->IsDirty());
}

TEST_P(StoragePersistence, NullPointersAreRefused) {
  EXPECT_EQ(E_POINTER, m_persist->InitNew(nullptr));
  EXPECT_EQ(E_POINTER, m_persist->Load(nullptr));
  EXPECT_EQ(E_POINTER, m_persist->Save(nullptr, TRUE));
  EXPECT_EQ(E_POINTER, m_persist->GetClassID(nullptr));
  CLSID classId{};
  EXPECT_EQ(S_OK, m_persist->GetClassID(&classId));
  EXPECT_EQ(m_classId, classId);
}

TEST_P(StoragePersistence, TravelsThroughOleSaveAndOleLoad) {
  setExtent(4321, 1234);
  const auto storage = memoryStorage();
  ASSERT_EQ(S_OK, m_persist->InitNew(storage.Get()));
  ASSERT_EQ(S_OK, OleSave(m_persist.Get(), storage.Get(), TRUE));
  ASSERT_EQ(S_OK, m_persist->SaveCompleted(nullptr));
  CLSID written{};
  EXPECT_EQ(S_OK, ReadClassStg(storage.Get(), &written));
  EXPECT_EQ(m_classId, written);
  const auto loaded = create<IPersistStorage>(written);
  ASSERT_EQ(S_OK, loaded->Load(storage.Get()));
  ComPtr<IOleObject> object;
  ASSERT_EQ(S_OK, loaded.As(&object));
  SIZEL size{};
  ASSERT_EQ(S_OK, object->GetExtent(DVASPECT_CONTENT, &size));
  EXPECT_EQ(4321, size.cx);
  EXPECT_EQ(1234, size.cy);
}

INSTANTIATE_TEST_SUITE_P(Type, StoragePersistence, testing::Values(1, 2, 3));

}  // namespace
}  // namespace av::test
