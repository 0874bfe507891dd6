// The finished DLL as a file: what it needs from the system, what it exports, and what it carries.

#include <windows.h>

#include <gmock/gmock.h>

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <optional>
#include <string>
#include <vector>

#include "support/win/dll.h"
#include "support/win/pe_file.h"

namespace av::test {
namespace {

using testing::AnyOf;
using testing::Each;
using testing::ElementsAre;
using testing::IsSupersetOf;

struct Architecture {
  const wchar_t* folder;
  std::uint16_t machine;
};

/// Runs for the DLL of each architecture that has been built.
class DllFile : public testing::TestWithParam<Architecture> {
 protected:
  void SetUp() override {
    const bool own = GetParam().machine == (sizeof(void*) == 8 ? PeFile::machineX64 : PeFile::machineX86);
    path = own ? dllPath()
               : besideProgram(std::wstring(L"..\\..\\") + GetParam().folder + L"\\bin\\QELAudioVisualization4.dll");
    if (!own && GetFileAttributesW(path.c_str()) == INVALID_FILE_ATTRIBUTES)
      GTEST_SKIP() << "the DLL of the other architecture has not been built";
  }

  PeFile parsed() const {
    HANDLE file = CreateFileW(path.c_str(), GENERIC_READ, FILE_SHARE_READ, nullptr, OPEN_EXISTING, 0, nullptr);
    if (file == INVALID_HANDLE_VALUE) return {};
    std::vector<std::uint8_t> bytes(GetFileSize(file, nullptr));
    DWORD count = 0;
    ReadFile(file, bytes.data(), static_cast<DWORD>(bytes.size()), &count, nullptr);
    CloseHandle(file);
    return parsePeFile(bytes);
  }

  /// The bytes of a resource; nothing when it is not there.
  std::optional<std::vector<std::uint8_t>> resource(const wchar_t* type, WORD id) const {
    const HMODULE module = LoadLibraryExW(path.c_str(), nullptr, LOAD_LIBRARY_AS_DATAFILE);
    if (module == nullptr) return std::nullopt;
    std::optional<std::vector<std::uint8_t>> bytes;
    if (const HRSRC found = FindResourceW(module, MAKEINTRESOURCEW(id), type); found != nullptr) {
      const auto* first = static_cast<const std::uint8_t*>(LockResource(LoadResource(module, found)));
      bytes.emplace(first, first + SizeofResource(module, found));
    }
    FreeLibrary(module);
    return bytes;
  }

  std::string textResource(const wchar_t* type, WORD id) const {
    const auto bytes = resource(type, id);
    return bytes ? std::string(bytes->begin(), bytes->end()) : std::string();
  }

  std::wstring path;
};

TEST_P(DllFile, IsADllOfItsArchitecture) {
  const PeFile file = parsed();
  ASSERT_TRUE(file.valid);
  EXPECT_TRUE(file.isDll);
  EXPECT_EQ(GetParam().machine, file.machine);
}

TEST_P(DllFile, ExportsExactlyTheFourEntryPointsByTheirPlainNames) {
  EXPECT_THAT(parsed().exports,
              ElementsAre("DllCanUnloadNow", "DllGetClassObject", "DllRegisterServer", "DllUnregisterServer"));
}

TEST_P(DllFile, NeedsSystemLibrariesOnly) {
  const PeFile file = parsed();
  EXPECT_THAT(file.imports, IsSupersetOf({std::string("kernel32.dll"), std::string("oleaut32.dll")}));
  EXPECT_THAT(file.imports, Each(AnyOf("advapi32.dll", "gdi32.dll", "gdiplus.dll", "kernel32.dll", "msimg32.dll",
                                       "msvcrt.dll", "ole32.dll", "oleaut32.dll", "user32.dll")));
}

TEST_P(DllFile, IsStripped) {
  const PeFile file = parsed();
  ASSERT_TRUE(file.valid);
  EXPECT_EQ(0u, file.symbolTableOffset);
  EXPECT_EQ(0u, file.symbolCount);
  for (const std::string& section : file.sections) {
    EXPECT_NE(0u, section.rfind(".debug", 0)) << section;
    // A name that begins with a slash is kept in the symbol table: debug sections have such long names.
    EXPECT_NE('/', section.front()) << section;
  }
}

TEST_P(DllFile, CarriesItsVersion) {
  DWORD ignored = 0;
  std::vector<std::uint8_t> block(GetFileVersionInfoSizeW(path.c_str(), &ignored));
  ASSERT_FALSE(block.empty());
  ASSERT_TRUE(GetFileVersionInfoW(path.c_str(), 0, static_cast<DWORD>(block.size()), block.data()));
  void* found = nullptr;
  UINT size = 0;
  ASSERT_TRUE(VerQueryValueW(block.data(), L"\\", &found, &size));
  const auto* fixed = static_cast<const VS_FIXEDFILEINFO*>(found);
  EXPECT_EQ(0x00010000u, fixed->dwFileVersionMS);
  EXPECT_EQ(0u, fixed->dwFileVersionLS);
  EXPECT_EQ(0x00010000u, fixed->dwProductVersionMS);
  EXPECT_EQ(DWORD{VFT_DLL}, fixed->dwFileType);
  ASSERT_TRUE(VerQueryValueW(block.data(), L"\\StringFileInfo\\040904B0\\OriginalFilename", &found, &size));
  EXPECT_STREQ(L"QELAudioVisualization4.dll", static_cast<const wchar_t*>(found));
  EXPECT_TRUE(VerQueryValueW(block.data(), L"\\StringFileInfo\\040904B0\\OLESelfRegister", &found, &size))
      << "tools that look for self-registering libraries ask for it";
}

TEST_P(DllFile, CarriesTheApplicationIdentifiersScript) {
  const std::string script = textResource(L"REGISTRY", 101);
  EXPECT_NE(std::string::npos, script.find("NoRemove AppID"));
  EXPECT_NE(std::string::npos, script.find("%APPID%"));
}

TEST_P(DllFile, CarriesTheTypeLibraryThatLiesBesideIt) {
  const auto bytes = resource(L"TYPELIB", 1);
  ASSERT_TRUE(bytes);
  std::wstring beside = path;
  beside.replace(beside.size() - 3, 3, L"tlb");
  HANDLE file = CreateFileW(beside.c_str(), GENERIC_READ, FILE_SHARE_READ, nullptr, OPEN_EXISTING, 0, nullptr);
  ASSERT_NE(INVALID_HANDLE_VALUE, file);
  std::vector<std::uint8_t> expected(GetFileSize(file, nullptr));
  DWORD count = 0;
  ReadFile(file, expected.data(), static_cast<DWORD>(expected.size()), &count, nullptr);
  CloseHandle(file);
  ASSERT_FALSE(expected.empty());
  EXPECT_EQ(expected, *bytes);
}

TEST_P(DllFile, CarriesItsSideBySideManifest) {
  const std::string manifest = textResource(MAKEINTRESOURCEW(24), 2);
  EXPECT_NE(std::string::npos, manifest.find("{62D89C1C-1C5B-467C-944F-F822CB0D6278}"));
  EXPECT_NE(std::string::npos, manifest.find(GetParam().machine == PeFile::machineX64 ? "\"amd64\"" : "\"x86\""));
}

struct Pixel {
  int red, green, blue;
};

TEST_P(DllFile, CarriesThreeGradientsOnePixelWide) {
  const struct {
    WORD id;
    int rows;
  } images[] = {{102, 185}, {103, 185}, {104, 186}};
  std::vector<Pixel> tops;
  for (const auto& image : images) {
    SCOPED_TRACE(image.id);
    const auto bytes = resource(MAKEINTRESOURCEW(2), image.id);  // RT_BITMAP
    ASSERT_TRUE(bytes);
    BITMAPINFOHEADER header{};
    ASSERT_GE(bytes->size(), sizeof header);
    std::memcpy(&header, bytes->data(), sizeof header);
    EXPECT_EQ(1, header.biWidth);
    EXPECT_EQ(image.rows, header.biHeight);
    EXPECT_EQ(24, header.biBitCount);
    EXPECT_EQ(DWORD{BI_RGB}, header.biCompression);
    ASSERT_EQ(sizeof header + 4 * static_cast<std::size_t>(image.rows), bytes->size());
    const auto pixel = [&](int rowFromBottom) {
      const std::uint8_t* at = bytes->data() + sizeof header + 4 * rowFromBottom;
      return Pixel{at[2], at[1], at[0]};
    };
    const Pixel bottom = pixel(0);
    EXPECT_GE(std::min({bottom.red, bottom.green, bottom.blue}), 235) << "white or nearly so";
    tops.push_back(pixel(image.rows - 1));
    // Smooth all the way: no visible step from row to row.
    for (int row = 1; row < image.rows; ++row) {
      const Pixel a = pixel(row - 1);
      const Pixel b = pixel(row);
      EXPECT_LE(std::abs(a.red - b.red) + std::abs(a.green - b.green) + std::abs(a.blue - b.blue), 20) << row;
    }
  }
  EXPECT_TRUE(tops[0].red > 180 && tops[0].green < 80 && tops[0].blue < 80) << "red";
  EXPECT_TRUE(tops[1].blue > tops[1].red && tops[1].red > tops[1].green && tops[1].red > 80) << "greyish violet";
  EXPECT_TRUE(tops[2].green > 120 && tops[2].red < 80 && tops[2].blue < 120) << "green";
}

INSTANTIATE_TEST_SUITE_P(
    Of, DllFile, testing::Values(Architecture{L"x64", PeFile::machineX64}, Architecture{L"x86", PeFile::machineX86}),
    [](const auto& instance) { return instance.param.machine == PeFile::machineX64 ? "x64" : "x86"; });

}  // namespace
}  // namespace av::test
