// What registering the companion writes and removes, for the machine and for one user.

#include "host/companion_test.h"
#include "support/win/registry_snapshot.h"
#include "support/win/run_program.h"

#include <gmock/gmock.h>

namespace av::test {
namespace {

using testing::IsEmpty;

struct Class {
  std::wstring clsid, name, friendlyName;
};
const Class classes[] = {{L"{7111B8DE-C1D0-4862-A359-9A9039BCE3EC}", L"AudioBlocks.AudioBlock", L"Block of PCM audio"},
                         {L"{3274E7DD-B063-4308-8390-39CF237AA62E}", L"AudioBlocks.WaveFile", L"WAV file"},
                         {L"{28BC0ABE-4595-43C3-8AEB-CCE1D6BF75A6}", L"AudioBlocks.Snapshot", L"Picture of a control"},
                         {L"{44E09654-3DBA-4FE6-A249-BB860418166C}", L"AudioBlocks.Controls", L"Maker of controls"}};
const std::wstring libraryId = L"{827411D4-898A-4D41-972E-6CA518BE389D}";

void key(RegistryEntries& entries, const std::wstring& path, const std::wstring* text = nullptr) {
  entries[path + L"\\"] = L"";
  if (text) entries[path + L"\\@"] = *text;
}
void key(RegistryEntries& entries, const std::wstring& path, const std::wstring& text) { key(entries, path, &text); }

RegistryEntries expectedEntries(const std::wstring& modulePath) {
  RegistryEntries entries;
  for (const Class& each : classes) {
    const std::wstring versioned = each.name + L".1";
    key(entries, versioned, each.friendlyName);
    key(entries, versioned + L"\\CLSID", each.clsid);
    key(entries, each.name, each.friendlyName);
    key(entries, each.name + L"\\CLSID", each.clsid);
    key(entries, each.name + L"\\CurVer", versioned);
    const std::wstring path = L"CLSID\\" + each.clsid;
    key(entries, path, each.friendlyName);
    key(entries, path + L"\\ProgID", versioned);
    key(entries, path + L"\\VersionIndependentProgID", each.name);
    key(entries, path + L"\\Programmable");
    key(entries, path + L"\\InprocServer32", modulePath);
    entries[path + L"\\InprocServer32\\ThreadingModel"] = L"Apartment";
    key(entries, path + L"\\TypeLib", libraryId);
    key(entries, path + L"\\Version", L"1.0");
  }
  return entries;
}

const wchar_t* const interfaceIds[] = {
    L"{FF640A75-1CF1-4618-A0D3-D30BF5D9B953}", L"{1D6A0BC1-C1C4-436E-89E2-55490C78EEB4}",
    L"{57FE3797-4702-4917-AE01-EB7E0468A4A3}", L"{04C5C83C-1334-4A02-A1EE-A406FBE895E5}"};

/// What stands under the keys of the classes.
RegistryEntries classEntries() {
  RegistryEntries entries;
  for (const Class& each : classes) {
    for (const std::wstring& path : {each.name, each.name + L".1", L"CLSID\\" + each.clsid})
      entries.merge(snapshotOfClasses(path));
  }
  return entries;
}

/// What the system writes for the type library.
RegistryEntries typeLibraryEntries() {
  RegistryEntries entries = snapshotOfClasses(L"TypeLib\\" + libraryId);
  // The system keeps interfaces for programs of both architectures.
  for (const wchar_t* root : {L"Interface\\", L"Wow6432Node\\Interface\\"})
    for (const wchar_t* id : interfaceIds) entries.merge(snapshotOfClasses(root + std::wstring(id)));
  return entries;
}

void expectSame(const RegistryEntries& expected, const RegistryEntries& found) {
  EXPECT_THAT(added(expected, found), IsEmpty()) << "found, but not expected";
  EXPECT_THAT(added(found, expected), IsEmpty()) << "expected, but not found";
}

class CompanionRegistration : public testing::Test {
 protected:
  void SetUp() override {
    ASSERT_EQ(S_OK, m_apartment.result());
    ASSERT_EQ(S_OK, m_dll.unregisterServer());
    ASSERT_EQ(S_OK, install(FALSE, L"user"));
    ASSERT_NO_FATAL_FAILURE(expectNothing());
  }
  void TearDown() override {
    EXPECT_EQ(S_OK, install(FALSE, L"user"));
    EXPECT_EQ(S_OK, m_dll.unregisterServer());
  }

  HRESULT install(BOOL install, const wchar_t* commandLine) const {
    const auto entry = reinterpret_cast<HRESULT(WINAPI*)(BOOL, const wchar_t*)>(
        reinterpret_cast<void*>(GetProcAddress(m_dll.handle(), "DllInstall")));
    return entry ? entry(install, commandLine) : E_UNEXPECTED;
  }
  static void expectNothing() {
    EXPECT_THAT(classEntries(), IsEmpty());
    EXPECT_THAT(typeLibraryEntries(), IsEmpty());
  }
  void expectRegistered() const {
    expectSame(expectedEntries(m_path), classEntries());
    const RegistryEntries written = typeLibraryEntries();
    const std::wstring version = L"TypeLib\\" + libraryId + L"\\1.0";
    const auto file = written.find(version + (sizeof(void*) == 8 ? L"\\0\\win64\\@" : L"\\0\\win32\\@"));
    ASSERT_NE(written.end(), file);
    EXPECT_EQ(m_path, file->second);
    for (const wchar_t* id : interfaceIds)
      EXPECT_EQ(1u, written.count(L"Interface\\" + std::wstring(id) + L"\\ProxyStubClsid32\\@"));
  }
  static bool userHas(const std::wstring& path) {
    HKEY opened = nullptr;
    const LSTATUS status =
        RegOpenKeyExW(HKEY_CURRENT_USER, (L"Software\\Classes\\" + path).c_str(), 0, KEY_READ, &opened);
    if (status == ERROR_SUCCESS) RegCloseKey(opened);
    return status == ERROR_SUCCESS;
  }

  avhost::Apartment m_apartment;
  const std::wstring m_path = besideProgram(companionName);
  LoadedDll m_dll{m_path};
};

TEST_F(CompanionRegistration, WritesExactlyItsEntriesAndRemovesThemAgain) {
  ASSERT_EQ(S_OK, m_dll.registerServer());
  expectRegistered();
  ASSERT_EQ(S_OK, m_dll.registerServer());
  expectRegistered();
  ASSERT_EQ(S_OK, m_dll.unregisterServer());
  expectNothing();
  EXPECT_EQ(S_OK, m_dll.unregisterServer()) << "what is gone counts as removed";
}

TEST_F(CompanionRegistration, MakesEveryClassCreatableByItsNames) {
  ASSERT_EQ(S_OK, m_dll.registerServer());
  for (const Class& each : classes) {
    for (const std::wstring& name : {each.name, each.name + L".1"}) {
      CLSID classId;
      ASSERT_EQ(S_OK, CLSIDFromProgID(name.c_str(), &classId));
      ComPtr<IDispatch> object;
      EXPECT_EQ(S_OK, CoCreateInstance(classId, nullptr, CLSCTX_INPROC_SERVER, IID_PPV_ARGS(&object)));
    }
  }
}

TEST_F(CompanionRegistration, WorksThroughRegsvr32) {
  ASSERT_EQ(0u, runProgram(L"regsvr32.exe /s \"" + m_path + L"\"").exitCode);
  expectRegistered();
  ASSERT_EQ(0u, runProgram(L"regsvr32.exe /s /u \"" + m_path + L"\"").exitCode);
  expectNothing();
}

TEST_F(CompanionRegistration, ForOneUserWritesIntoTheUsersClasses) {
  ASSERT_EQ(0u, runProgram(L"regsvr32.exe /s /n /i:user \"" + m_path + L"\"").exitCode);
  for (const Class& each : classes) {
    EXPECT_TRUE(userHas(each.name + L"\\CurVer"));
    EXPECT_TRUE(userHas(each.name + L".1\\CLSID"));
    EXPECT_TRUE(userHas(L"CLSID\\" + each.clsid + L"\\InprocServer32"));
  }
  // The view of all classes shows the user's among them on Windows, and not under Wine, which registers a user's type
  // library for the machine besides.
  EXPECT_THAT(classEntries(), testing::AnyOf(IsEmpty(), testing::SizeIs(expectedEntries(m_path).size())));
  ASSERT_EQ(0u, runProgram(L"regsvr32.exe /s /u /n /i:user \"" + m_path + L"\"").exitCode);
  for (const Class& each : classes) {
    EXPECT_FALSE(userHas(each.name));
    EXPECT_FALSE(userHas(each.name + L".1"));
    EXPECT_FALSE(userHas(L"CLSID\\" + each.clsid));
  }
  EXPECT_TRUE(userHas(L"")) << "the users' classes themselves stay";
  expectNothing();
}

TEST_F(CompanionRegistration, InstallsForTheMachineUnlessToldForWhom) {
  for (const wchar_t* commandLine : {static_cast<const wchar_t*>(nullptr), L""}) {
    ASSERT_EQ(S_OK, install(TRUE, commandLine));
    expectRegistered();
    ASSERT_EQ(S_OK, install(FALSE, commandLine));
    expectNothing();
  }
  EXPECT_EQ(E_INVALIDARG, install(TRUE, L"nobody"));
  expectNothing();
}

}  // namespace
}  // namespace av::test
