// What registering and unregistering write and remove, entry by entry, over the whole of HKEY_CLASSES_ROOT.

#include <windows.h>

#include <gmock/gmock.h>
#include <objbase.h>

#include <string>
#include <vector>

#include "support/win/dll.h"
#include "support/win/registry_snapshot.h"
#include "support/win/run_program.h"

namespace av::test {
namespace {

using testing::IsEmpty;

const std::wstring appId = L"{A864F7F5-89DD-4A12-9E3F-61C30ECC8180}";
const std::wstring libId = L"{A864F7F5-89DD-4A12-9E3F-61C30ECC8180}";
const std::wstring versionedProgId = L"QELAudioVisualization4.AudioVisualiza.1";
const std::wstring plainProgId = L"QELAudioVisualization4.AudioVisualizati";

struct Class {
  std::wstring clsid;
  std::wstring friendlyName;
};
const Class classes[] = {
    {L"{62D89C1C-1C5B-467C-944F-F822CB0D6278}", L"CAudioVisualization4Type1 Object"},
    {L"{E9992E04-5743-40C9-AF9D-826530A45F53}", L"CAudioVisualization4Type2 Object"},
    {L"{2F06E1AA-C0F0-488C-A6DD-799053CA7140}", L"CAudioVisualization4Type3 Object"},
};

struct Interface {
  std::wstring iid;
  std::wstring name;
};
const Interface dualInterfaces[] = {
    {L"{4AF266BD-950A-4620-B390-00288767A1F5}", L"IAudioVisualizationTemplate"},
    {L"{1A1420DC-77FE-4BAE-803B-6E290B0BDEDB}", L"IAudioVisualization4Type1"},
    {L"{B394D7CB-9236-414C-BC2E-0DA82FE7091C}", L"IAudioVisualization4Type2"},
    {L"{DC03496F-5F30-4F14-BD89-2F63284A671E}", L"IAudioVisualization4Type3"},
};
const Interface eventInterface = {L"{DEA14881-D3D1-4AE6-8561-9EC6D9EEBCF9}", L"_IAudioVisualization4Type1Events"};

void key(RegistryEntries& entries, const std::wstring& path, const wchar_t* defaultText = nullptr) {
  entries[path + L"\\"] = L"";
  if (defaultText != nullptr) entries[path + L"\\@"] = defaultText;
}
void key(RegistryEntries& entries, const std::wstring& path, const std::wstring& defaultText) {
  key(entries, path, defaultText.c_str());
}

/// What the application identifier and the three classes put into the registry.
RegistryEntries expectedClassEntries(const std::wstring& modulePath) {
  RegistryEntries entries;
  key(entries, L"AppID\\" + appId, L"QELAudioVisualization4");
  key(entries, L"AppID\\QELAudioVisualization4.DLL");
  entries[L"AppID\\QELAudioVisualization4.DLL\\AppID"] = appId;

  // All three classes write these keys; the last one stays.
  const Class& owner = classes[2];
  key(entries, versionedProgId, owner.friendlyName);
  key(entries, versionedProgId + L"\\CLSID", owner.clsid);
  key(entries, plainProgId, owner.friendlyName);
  key(entries, plainProgId + L"\\CLSID", owner.clsid);
  key(entries, plainProgId + L"\\CurVer", versionedProgId);

  for (const Class& each : classes) {
    const std::wstring path = L"CLSID\\" + each.clsid;
    key(entries, path, each.friendlyName);
    entries[path + L"\\AppID"] = appId;
    key(entries, path + L"\\ProgID", versionedProgId);
    key(entries, path + L"\\VersionIndependentProgID", plainProgId);
    key(entries, path + L"\\InprocServer32", modulePath);
    entries[path + L"\\InprocServer32\\ThreadingModel"] = L"apartment";
    key(entries, path + L"\\Control");
    key(entries, path + L"\\ToolboxBitmap32", modulePath + L", 1");
    key(entries, path + L"\\MiscStatus", L"0");
    key(entries, path + L"\\MiscStatus\\1", L"131473");
    key(entries, path + L"\\TypeLib", libId);
    key(entries, path + L"\\Version", L"1.0");
  }
  return entries;
}

/// What the system's own registration of a type library puts there, as far as COM needs it for marshalling.
RegistryEntries expectedTypeLibraryEntries(const std::wstring& modulePath) {
  RegistryEntries entries;
  const std::wstring version = L"TypeLib\\" + libId + L"\\1.0";
  entries[version + L"\\@"] = L"QELAudioVisualization4 1.0 Type Library";
  entries[version + (sizeof(void*) == 8 ? L"\\0\\win64\\@" : L"\\0\\win32\\@")] = modulePath;
  entries[version + L"\\HELPDIR\\@"] = modulePath.substr(0, modulePath.find_last_of(L'\\'));
  for (const Interface& each : dualInterfaces) {
    const std::wstring path = L"Interface\\" + each.iid;
    entries[path + L"\\@"] = each.name;
    entries[path + L"\\ProxyStubClsid32\\@"] = L"{00020424-0000-0000-C000-000000000046}";
    entries[path + L"\\TypeLib\\@"] = libId;
    entries[path + L"\\TypeLib\\Version"] = L"1.0";
  }
  return entries;
}

/// The keys under which the library's registration may write.
std::vector<std::wstring> ownKeys() {
  std::vector<std::wstring> keys = {L"AppID", versionedProgId, plainProgId, L"TypeLib\\" + libId};
  for (const Class& each : classes) keys.push_back(L"CLSID\\" + each.clsid);
  // The system keeps interfaces for programs of both architectures.
  for (const wchar_t* root : {L"Interface\\", L"Wow6432Node\\Interface\\"}) {
    for (const Interface& each : dualInterfaces) keys.push_back(root + each.iid);
    keys.push_back(root + eventInterface.iid);
  }
  return keys;
}

RegistryEntries snapshotOfOwnKeys() {
  RegistryEntries entries;
  for (const std::wstring& each : ownKeys()) entries.merge(snapshotOfClasses(each));
  return entries;
}

bool isBelow(const std::wstring& key, const std::wstring& path) {
  return lstrcmpiW(path.substr(0, key.size() + 1).c_str(), (key + L"\\").c_str()) == 0;
}

/// Whether an entry is one that the system writes when it registers a type library.
bool isTypeLibraryEntry(const std::wstring& path) {
  for (const std::wstring& each : ownKeys())
    if ((each.find(L"TypeLib") == 0 || each.find(L"Interface") != std::wstring::npos) && isBelow(each, path))
      return true;
  return false;
}

class Registration : public testing::Test {
 protected:
  void SetUp() override {
    ASSERT_EQ(S_OK, CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED));
    // Whatever an earlier run or a demonstration left.
    ASSERT_EQ(S_OK, dll.unregisterServer());
    // A key that this DLL never removes is there before, so that the difference is the DLL's alone.
    HKEY appIds = nullptr;
    ASSERT_EQ(ERROR_SUCCESS, RegCreateKeyW(HKEY_CLASSES_ROOT, L"AppID", &appIds));
    RegCloseKey(appIds);
    before = snapshotOfOwnKeys();
  }
  void TearDown() override {
    EXPECT_EQ(S_OK, dll.unregisterServer());
    CoUninitialize();
  }

  void expectRegistered(const std::wstring& modulePath) { expectRegistered(modulePath, before, snapshotOfOwnKeys()); }

  static void expectRegistered(const std::wstring& modulePath, const RegistryEntries& earlier,
                               const RegistryEntries& later) {
    const RegistryEntries fresh = added(earlier, later);
    RegistryEntries classPart;
    for (const auto& entry : fresh)
      if (!isTypeLibraryEntry(entry.first)) classPart.insert(entry);
    const RegistryEntries expected = expectedClassEntries(modulePath);
    EXPECT_THAT(added(expected, classPart), IsEmpty()) << "written, but not expected";
    EXPECT_THAT(added(classPart, expected), IsEmpty()) << "expected, but not written";
    EXPECT_THAT(added(fresh, expectedTypeLibraryEntries(modulePath)), IsEmpty()) << "expected of the type library";
    EXPECT_THAT(added(later, earlier), IsEmpty()) << "nothing that was there may change or go";
  }

  static void expectSame(const RegistryEntries& earlier, const RegistryEntries& later) {
    EXPECT_THAT(added(earlier, later), IsEmpty()) << "left behind";
    EXPECT_THAT(added(later, earlier), IsEmpty()) << "taken away";
  }
  void expectAsBefore() { expectSame(before, snapshotOfOwnKeys()); }

  LoadedDll dll;
  RegistryEntries before;
};

TEST_F(Registration, WritesExactlyItsEntriesAndRemovesThemAgain) {
  const RegistryEntries wholeBefore = snapshotOfClasses();
  ASSERT_GT(wholeBefore.size(), before.size());
  ASSERT_EQ(S_OK, dll.registerServer());
  expectRegistered(dllPath(), wholeBefore, snapshotOfClasses());
  ASSERT_EQ(S_OK, dll.unregisterServer());
  expectSame(wholeBefore, snapshotOfClasses());
}

TEST_F(Registration, RunTwiceLeavesTheSameEntries) {
  ASSERT_EQ(S_OK, dll.registerServer());
  ASSERT_EQ(S_OK, dll.registerServer());
  expectRegistered(dllPath());
}

TEST_F(Registration, UnregisteringTwiceSucceeds) {
  ASSERT_EQ(S_OK, dll.registerServer());
  EXPECT_EQ(S_OK, dll.unregisterServer());
  EXPECT_EQ(S_OK, dll.unregisterServer());
  expectAsBefore();
}

TEST_F(Registration, UnregisteringKeepsTheAppIdKeyItself) {
  ASSERT_EQ(S_OK, dll.registerServer());
  ASSERT_EQ(S_OK, dll.unregisterServer());
  HKEY appIds = nullptr;
  EXPECT_EQ(ERROR_SUCCESS, RegOpenKeyExW(HKEY_CLASSES_ROOT, L"AppID", 0, KEY_READ, &appIds));
  RegCloseKey(appIds);
  EXPECT_THAT(snapshotOfClasses(L"AppID\\" + appId), IsEmpty());
}

TEST_F(Registration, GivesTheClassThatIsRegisteredLastTheSharedProgIds) {
  ASSERT_EQ(S_OK, dll.registerServer());
  CLSID found{};
  EXPECT_EQ(S_OK, CLSIDFromProgID(versionedProgId.c_str(), &found));
  CLSID last{};
  ASSERT_EQ(S_OK, CLSIDFromString(classes[2].clsid.c_str(), &last));
  EXPECT_EQ(last, found);
  EXPECT_EQ(39u, versionedProgId.size());
  EXPECT_EQ(39u, plainProgId.size());
}

TEST_F(Registration, WorksThroughRegsvr32) {
  ASSERT_EQ(0u, runProgram(L"regsvr32.exe /s \"" + dllPath() + L"\"").exitCode);
  expectRegistered(dllPath());
  ASSERT_EQ(0u, runProgram(L"regsvr32.exe /s /u \"" + dllPath() + L"\"").exitCode);
  expectAsBefore();
}

TEST_F(Registration, WorksOnAThreadThatHasNotStartedCom) {
  CoUninitialize();
  EXPECT_EQ(S_OK, dll.registerServer());
  expectRegistered(dllPath());
  EXPECT_EQ(S_OK, dll.unregisterServer());
  expectAsBefore();
  ASSERT_EQ(S_OK, CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED)) << "COM must not be left running";
}

/// Registers a copy of the DLL in a folder of that name, and unregisters it.
class RegistrationFrom : public Registration {
 protected:
  void expectToWorkFrom(const std::wstring& folderName) {
    const std::wstring folder = besideProgram(folderName);
    const std::wstring copy = folder + L"\\QELAudioVisualization4.dll";
    CreateDirectoryW(folder.c_str(), nullptr);
    ASSERT_TRUE(CopyFileW(dllPath().c_str(), copy.c_str(), FALSE));
    {
      const LoadedDll other(copy);
      EXPECT_EQ(S_OK, other.registerServer());
      expectRegistered(copy);
      EXPECT_EQ(S_OK, other.unregisterServer());
      expectAsBefore();
    }
    EXPECT_TRUE(DeleteFileW(copy.c_str()));
    EXPECT_TRUE(RemoveDirectoryW(folder.c_str()));
  }
};

TEST_F(RegistrationFrom, AFolderWithAnApostropheWorks) { expectToWorkFrom(L"it's here"); }

TEST_F(RegistrationFrom, AFolderWithUmlautsAndIdeographsWorks) {
  expectToWorkFrom(L"Pr\u00FCfst\u00E4nde \u97F3\u58F0 \u03A9");
}

TEST_F(RegistrationFrom, AFolderThatHasGoneIsUnregisteredByACopyElsewhere) {
  const std::wstring folder = besideProgram(L"soon gone");
  const std::wstring copy = folder + L"\\QELAudioVisualization4.dll";
  CreateDirectoryW(folder.c_str(), nullptr);
  ASSERT_TRUE(CopyFileW(dllPath().c_str(), copy.c_str(), FALSE));
  EXPECT_EQ(S_OK, LoadedDll(copy).registerServer());
  ASSERT_TRUE(DeleteFileW(copy.c_str()));
  ASSERT_TRUE(RemoveDirectoryW(folder.c_str()));
  EXPECT_EQ(S_OK, dll.unregisterServer());
  expectAsBefore();
}

/// The thread's locale for one test; German (Austria) is nobody's default here.
class RegistrationLocale : public Registration {
 protected:
  static constexpr LCID other = MAKELCID(MAKELANGID(LANG_GERMAN, SUBLANG_GERMAN_AUSTRIAN), SORT_DEFAULT);
  void SetUp() override {
    Registration::SetUp();
    m_saved = GetThreadLocale();
    ASSERT_TRUE(SetThreadLocale(other));
  }
  void TearDown() override {
    SetThreadLocale(m_saved);
    Registration::TearDown();
  }

 private:
  LCID m_saved = 0;
};

TEST_F(RegistrationLocale, IsTheSameAfterwards) {
  EXPECT_EQ(S_OK, dll.registerServer());
  EXPECT_EQ(other, GetThreadLocale());
  EXPECT_EQ(S_OK, dll.unregisterServer());
  EXPECT_EQ(other, GetThreadLocale());
}

TEST_F(RegistrationLocale, IsTheSameAfterAFailure) {
  // Classes root stands for a key that is gone, so the first script cannot write.
  HKEY gone = nullptr;
  constexpr wchar_t path[] = L"Software\\QELAudioVisualization4Gone";
  ASSERT_EQ(ERROR_SUCCESS, RegCreateKeyW(HKEY_CURRENT_USER, path, &gone));
  ASSERT_EQ(ERROR_SUCCESS, RegDeleteKeyW(HKEY_CURRENT_USER, path));
  ASSERT_EQ(ERROR_SUCCESS, RegOverridePredefKey(HKEY_CLASSES_ROOT, gone));
  const HRESULT result = dll.registerServer();
  ASSERT_EQ(ERROR_SUCCESS, RegOverridePredefKey(HKEY_CLASSES_ROOT, nullptr));
  RegCloseKey(gone);
  EXPECT_TRUE(FAILED(result)) << std::hex << result;
  EXPECT_EQ(other, GetThreadLocale());
  expectAsBefore();
}

}  // namespace
}  // namespace av::test
