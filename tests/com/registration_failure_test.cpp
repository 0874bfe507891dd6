// A registry that cannot be written to the end: registering says so and leaves nothing of what it began.

#include "support/win/dll.h"
#include "support/win/registry_snapshot.h"

#include <windows.h>

#include <gmock/gmock.h>
#include <objbase.h>

#include <string>

namespace av::test {
namespace {

/// HKEY_CLASSES_ROOT stands for a key of this test. Below a volatile key no lasting one can be made: to the library that
/// part of the registry is read-only.
class RegistrationFailure : public testing::Test {
 protected:
  void SetUp() override { ASSERT_EQ(S_OK, CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED)); }
  void TearDown() override {
    end();
    CoUninitialize();
  }

  void begin(const wchar_t* readOnlyKey) {
    end();
    ASSERT_EQ(ERROR_SUCCESS, RegCreateKeyW(HKEY_CURRENT_USER, path, &m_root));
    HKEY key = nullptr;
    for (const wchar_t* each : {L"AppID", L"CLSID", L"Interface", L"TypeLib"}) {  // are there on every system
      ASSERT_EQ(ERROR_SUCCESS, RegCreateKeyW(m_root, each, &key));
      RegCloseKey(key);
    }
    if (readOnlyKey) {
      RegDeleteKeyW(m_root, readOnlyKey);
      ASSERT_EQ(ERROR_SUCCESS, RegCreateKeyExW(m_root, readOnlyKey, 0, nullptr, REG_OPTION_VOLATILE, KEY_ALL_ACCESS,
                                               nullptr, &key, nullptr));
      RegCloseKey(key);
    }
    ASSERT_EQ(ERROR_SUCCESS, RegOverridePredefKey(HKEY_CLASSES_ROOT, m_root));
  }
  void end() {
    RegOverridePredefKey(HKEY_CLASSES_ROOT, nullptr);
    if (m_root) RegCloseKey(m_root);
    m_root = nullptr;
    RegDeleteTreeW(HKEY_CURRENT_USER, path);
  }

  static constexpr wchar_t path[] = L"Software\\QELAudioVisualization4Classes";
  LoadedDll m_dll;
  HKEY m_root = nullptr;
};

TEST_F(RegistrationFailure, InAnyPartOfTheRegistryIsAnsweredAndLeavesNothing) {
  for (const wchar_t* readOnlyKey : {L"AppID", L"CLSID", L"TypeLib"}) {
    SCOPED_TRACE(std::string(readOnlyKey, readOnlyKey + lstrlenW(readOnlyKey)));
    ASSERT_NO_FATAL_FAILURE(begin(readOnlyKey));
    const RegistryEntries before = snapshotOfClasses();
    const HRESULT result = m_dll.registerServer();
    const RegistryEntries after = snapshotOfClasses();
    EXPECT_TRUE(FAILED(result)) << std::hex << result;
    RegistryEntries leftBehind = added(before, after);
    // The system's function for type libraries leaves the interfaces that it wrote before it failed.
    if (lstrcmpW(readOnlyKey, L"TypeLib") == 0)
      std::erase_if(leftBehind, [](const auto& entry) { return entry.first.find(L"Interface\\") == 0; });
    EXPECT_THAT(leftBehind, testing::IsEmpty());
    EXPECT_THAT(added(after, before), testing::IsEmpty()) << "taken away";
  }
  // The same where all can be written.
  ASSERT_NO_FATAL_FAILURE(begin(nullptr));
  EXPECT_EQ(S_OK, m_dll.registerServer());
  EXPECT_LT(40u, snapshotOfClasses().size());
  EXPECT_EQ(S_OK, m_dll.unregisterServer());
}

}  // namespace
}  // namespace av::test
