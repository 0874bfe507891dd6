// Creation without registration, tried on a library of the system.

#include "host/create.h"

#include <gtest/gtest.h>

#include <olectl.h>
#include <wrl/client.h>

#include <string>

namespace {

using Microsoft::WRL::ComPtr;

TEST(ControlLibrary, CreatesAnObjectStraightFromTheLibrarysFactory) {
  const avhost::Apartment apartment;
  avhost::ControlLibrary library;
  ASSERT_EQ(S_OK, library.load(L"oleaut32.dll"));
  ComPtr<IFont> font;
  EXPECT_EQ(S_OK, library.create(CLSID_StdFont, font.GetAddressOf()));
  EXPECT_NE(nullptr, font.Get());
}

TEST(ControlLibrary, AnswersAnUnknownClassWithTheFactorysError) {
  avhost::ControlLibrary library;
  ASSERT_EQ(S_OK, library.load(L"oleaut32.dll"));
  IUnknown* object = reinterpret_cast<IUnknown*>(1);
  EXPECT_TRUE(FAILED(library.create(IID_IUnknown, &object)));
  EXPECT_EQ(nullptr, object);
}

TEST(ControlLibrary, RefusesAMissingFile) {
  avhost::ControlLibrary library;
  EXPECT_EQ(HRESULT_FROM_WIN32(ERROR_MOD_NOT_FOUND), library.load(L"no such library.dll"));
  EXPECT_EQ(HRESULT_FROM_WIN32(ERROR_MOD_NOT_FOUND), library.loadBesideProgram(L"no such library.dll"));
  IUnknown* object = nullptr;
  EXPECT_EQ(E_UNEXPECTED, library.create(CLSID_StdFont, &object));
}

TEST(ControlLibrary, RefusesALibraryWithoutClasses) {
  avhost::ControlLibrary library;
  EXPECT_EQ(CO_E_ERRORINDLL, library.load(L"kernel32.dll"));
  EXPECT_EQ(nullptr, library.module());
}

TEST(ControlLibrary, LeavesALibraryInUseLoaded) {
  avhost::ControlLibrary library;
  ASSERT_EQ(S_OK, library.load(L"oleaut32.dll"));  // its DllCanUnloadNow never agrees
  EXPECT_EQ(S_FALSE, library.canUnloadNow());
  EXPECT_FALSE(library.unload());
  EXPECT_EQ(nullptr, library.module());
}

TEST(ActivationContext, RefusesAMissingManifest) {
  avhost::ActivationContext context;
  EXPECT_TRUE(FAILED(context.openFile(L"C:\\no such file.manifest")));
  EXPECT_FALSE(context.isOpen());
  IUnknown* object = nullptr;
  EXPECT_EQ(E_UNEXPECTED, context.create(CLSID_StdFont, &object));
}

TEST(FilePath, JoinsFolderAndName) {
  wchar_t path[40];
  ASSERT_EQ(S_OK, avhost::filePath(L"C:\\some folder", L"a.dll", path));
  EXPECT_STREQ(L"C:\\some folder\\a.dll", path);
  ASSERT_EQ(S_OK, avhost::filePath(L"C:\\", L"a.dll", path));
  EXPECT_STREQ(L"C:\\a.dll", path);
  ASSERT_EQ(S_OK, avhost::filePath(L"C:\\x\\..\\y/", L"a.dll", path));
  EXPECT_STREQ(L"C:\\y\\a.dll", path);
}

TEST(FilePath, IsInTheProgramsFolderUnlessAnotherIsGiven) {
  wchar_t path[1024], program[1024];
  GetModuleFileNameW(nullptr, program, ARRAYSIZE(program));
  const std::wstring whole = program;
  const std::size_t name = whole.find_last_of(L'\\') + 1;
  ASSERT_EQ(S_OK, avhost::filePath(nullptr, whole.c_str() + name, path));
  EXPECT_EQ(whole, path);
}

TEST(FilePath, EndsWhereItsRoomEnds) {
  constexpr HRESULT tooLong = HRESULT_FROM_WIN32(ERROR_FILENAME_EXCED_RANGE);
  wchar_t path[8];
  EXPECT_EQ(S_OK, avhost::filePath(L"C:\\", L"1234", path));
  EXPECT_STREQ(L"C:\\1234", path);
  EXPECT_EQ(tooLong, avhost::filePath(L"C:\\", L"12345", path));
  EXPECT_EQ(S_OK, avhost::filePath(L"C:\\ab", L"1", path));
  EXPECT_EQ(tooLong, avhost::filePath(L"C:\\ab", L"12", path));
  EXPECT_EQ(tooLong, avhost::filePath(L"C:\\abcd", L"", path)) << "no room for the separator's zero";
  EXPECT_EQ(tooLong, avhost::filePath(L"C:\\abcdefgh", L"", path));
  EXPECT_EQ(tooLong, avhost::filePath(nullptr, L"a.dll", path));
  EXPECT_TRUE(FAILED(avhost::filePath(L"", L"a.dll", path)));
}

TEST(CreateRegistered, NullsTheResultOnFailure) {
  const avhost::Apartment apartment;
  IUnknown* object = reinterpret_cast<IUnknown*>(1);
  EXPECT_TRUE(FAILED(avhost::createRegistered(IID_IUnknown, &object)));
  EXPECT_EQ(nullptr, object);
}

}  // namespace
