// AudioBlocks.dll as a file and as a type library: what it needs, exports and carries, and what its names are.

#include "host/companion_test.h"
#include "support/wav_file.h"
#include "support/win/pe_file.h"
#include "support/win/resource_probes.h"
#include "support/win/run_program.h"
#include "support/win/waste_probes.h"

#include <gmock/gmock.h>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <set>

namespace av::test {
namespace {

using testing::AnyOf;
using testing::Each;
using testing::ElementsAre;

std::vector<std::uint8_t> bytesOfFile(const std::wstring& path) {
  std::ifstream file(std::filesystem::path(path), std::ios::binary);
  return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
}

TEST(CompanionFile, ExportsTheEntryPointsOnlyAndNeedsSystemLibrariesOnly) {
  const PeFile file = parsePeFile(bytesOfFile(besideProgram(companionName)));
  ASSERT_TRUE(file.valid);
  EXPECT_TRUE(file.isDll);
  EXPECT_THAT(file.exports, ElementsAre("DllCanUnloadNow", "DllGetClassObject", "DllInstall", "DllRegisterServer",
                                        "DllUnregisterServer"));
  EXPECT_THAT(file.imports, Each(AnyOf("advapi32.dll", "gdi32.dll", "gdiplus.dll", "kernel32.dll", "msvcrt.dll",
                                       "ole32.dll", "oleaut32.dll", "user32.dll")));
  EXPECT_EQ(0u, file.symbolCount) << "stripped";
}

TEST(CompanionFile, CarriesVersionManifestAndTheTypeLibraryThatLiesBesideIt) {
  const std::wstring path = besideProgram(companionName);
  DWORD ignored = 0;
  std::vector<std::uint8_t> version(GetFileVersionInfoSizeW(path.c_str(), &ignored));
  ASSERT_FALSE(version.empty());
  ASSERT_TRUE(GetFileVersionInfoW(path.c_str(), 0, static_cast<DWORD>(version.size()), version.data()));
  void* found = nullptr;
  UINT size = 0;
  ASSERT_TRUE(VerQueryValueW(version.data(), L"\\StringFileInfo\\040904B0\\OriginalFilename", &found, &size));
  EXPECT_STREQ(L"AudioBlocks.dll", static_cast<const wchar_t*>(found));

  const HMODULE module = LoadLibraryExW(path.c_str(), nullptr, LOAD_LIBRARY_AS_DATAFILE);
  ASSERT_TRUE(module);
  const auto resource = [module](const wchar_t* type, WORD id) {
    const HRSRC place = FindResourceW(module, MAKEINTRESOURCEW(id), type);
    const auto* first = static_cast<const std::uint8_t*>(LockResource(LoadResource(module, place)));
    return std::vector<std::uint8_t>(first, first + SizeofResource(module, place));
  };
  EXPECT_EQ(bytesOfFile(besideProgram(L"AudioBlocks.tlb")), resource(L"TYPELIB", 1));
  EXPECT_EQ(bytesOfFile(besideProgram(L"AudioBlocks.manifest")), resource(MAKEINTRESOURCEW(24), 2));
  FreeLibrary(module);
}

std::wstring helpOf(ITypeInfo& info, MEMBERID member) {
  BSTR text = nullptr;
  EXPECT_EQ(S_OK, info.GetDocumentation(member, nullptr, &text, nullptr, nullptr));
  const std::wstring copy = text ? text : L"";
  SysFreeString(text);
  return copy;
}

TEST(CompanionTypeLibrary, HasItsIdentifiersAndAHelpTextForEverything) {
  ComPtr<ITypeLib> library;
  ASSERT_EQ(S_OK, LoadTypeLibEx(besideProgram(companionName).c_str(), REGKIND_NONE, &library));
  TLIBATTR* attributes = nullptr;
  ASSERT_EQ(S_OK, library->GetLibAttr(&attributes));
  EXPECT_EQ(LIBID_AudioBlocks, attributes->guid);
  EXPECT_EQ(1, attributes->wMajorVerNum);
  library->ReleaseTLibAttr(attributes);
  for (const GUID& each : {CLSID_AudioBlock, CLSID_WaveFile, CLSID_Snapshot, CLSID_Controls, IID_IAudioBlock,
                           IID_IWaveFile, IID_ISnapshot, IID_IControls}) {
    ComPtr<ITypeInfo> info;
    ASSERT_EQ(S_OK, library->GetTypeInfoOfGuid(each, &info));
    EXPECT_NE(L"", helpOf(*info.Get(), MEMBERID_NIL));
    TYPEATTR* type = nullptr;
    ASSERT_EQ(S_OK, info->GetTypeAttr(&type));
    std::set<std::pair<MEMBERID, int>> seen;
    for (UINT i = 0; i < type->cFuncs; ++i) {
      FUNCDESC* function = nullptr;
      ASSERT_EQ(S_OK, info->GetFuncDesc(i, &function));
      const bool own = function->memid > 0 && function->memid < 0x60000000;
      if (own) {
        EXPECT_NE(L"", helpOf(*info.Get(), function->memid)) << function->memid;
        EXPECT_TRUE(seen.emplace(function->memid, function->invkind).second) << "two members of one number";
      }
      info->ReleaseFuncDesc(function);
    }
    info->ReleaseTypeAttr(type);
  }
}

/// What hosts bind to: a change here breaks them.
TEST(CompanionTypeLibrary, KeepsItsIdentifiers) {
  const std::pair<GUID, const wchar_t*> expected[] = {{LIBID_AudioBlocks, L"{827411D4-898A-4D41-972E-6CA518BE389D}"},
                                                      {CLSID_AudioBlock, L"{7111B8DE-C1D0-4862-A359-9A9039BCE3EC}"},
                                                      {CLSID_WaveFile, L"{3274E7DD-B063-4308-8390-39CF237AA62E}"},
                                                      {CLSID_Snapshot, L"{28BC0ABE-4595-43C3-8AEB-CCE1D6BF75A6}"},
                                                      {CLSID_Controls, L"{44E09654-3DBA-4FE6-A249-BB860418166C}"},
                                                      {IID_IAudioBlock, L"{FF640A75-1CF1-4618-A0D3-D30BF5D9B953}"},
                                                      {IID_IWaveFile, L"{1D6A0BC1-C1C4-436E-89E2-55490C78EEB4}"},
                                                      {IID_ISnapshot, L"{57FE3797-4702-4917-AE01-EB7E0468A4A3}"},
                                                      {IID_IControls, L"{04C5C83C-1334-4A02-A1EE-A406FBE895E5}"}};
  for (const auto& [id, text] : expected) {
    GUID parsed;
    ASSERT_EQ(S_OK, IIDFromString(text, &parsed));
    EXPECT_EQ(parsed, id) << text;
  }
}

class CompanionClasses : public CompanionTest {};

TEST_F(CompanionClasses, HoldTheDllWhileTheyLive) {
  for (const CLSID& each : {CLSID_AudioBlock, CLSID_WaveFile, CLSID_Snapshot, CLSID_Controls}) {
    LateBound object = make(each);
    ASSERT_TRUE(object);
    EXPECT_EQ(S_FALSE, m_library.canUnloadNow());
    object.reset();
    EXPECT_EQ(S_OK, m_library.canUnloadNow());
  }
  ComPtr<IUnknown> none;
  EXPECT_EQ(CLASS_E_CLASSNOTAVAILABLE, m_library.create(CLSID_CAudioVisualization4Type1, none.GetAddressOf()));
}

/// A life of everything: blocks of two kinds of array, a file, a picture, refusals of each kind.
void liveOnce(const avhost::ControlLibrary& library, const std::wstring& wav, const std::wstring& png) {
  const auto make = [&](REFCLSID classId) {
    ComPtr<IDispatch> object;
    EXPECT_EQ(S_OK, library.create(classId, object.GetAddressOf()));
    return LateBound(object.Get());
  };
  LateBound block = make(CLSID_AudioBlock);
  std::vector<Value> elements(200);
  EXPECT_EQ(S_OK, block.call(L"SetSamples", {arrayOfVariants(std::move(elements))}));
  EXPECT_NE(S_OK, block.call(L"SetSamples", {Value(L"none")}));
  LateBound wave = make(CLSID_WaveFile);
  EXPECT_EQ(S_OK, wave.call(L"Open", {Value(wav.c_str())}));
  EXPECT_TRUE(wave.object(L"NextBlock", {Value(VT_I4, 10)}));
  EXPECT_NE(S_OK, wave.call(L"Open", {Value(L"C:\\missing.wav")}));
  LateBound snapshot = make(CLSID_Snapshot);
  EXPECT_EQ(S_OK, snapshot.put(L"Dpi", LONG{192}));
  for (const LONG number : {1, 2, 3}) {
    LateBound control = snapshot.object(L"CreateControl", {Value(VT_I4, number)});
    EXPECT_EQ(S_OK, control.call(L"SendAudioData", {Value(block.get())}));
    EXPECT_EQ(S_OK, snapshot.call(L"Save", {Value(png.c_str())}));
  }
  EXPECT_NE(S_OK, snapshot.call(L"Save", {Value(L"C:\\missing\\x.png")}));
}

class FullCompanionLeaks : public CompanionTest {
 protected:
  const TemporaryFile m_wav{L".wav", support::asText(support::wavFile({}, support::Bytes(4000)))};
  const TemporaryFile m_png{L".png"};
};

TEST_F(FullCompanionLeaks, AHundredLivesLeaveNothingBehind) {
  for (int i = 0; i < 5; ++i) liveOnce(m_library, m_wav.path(), m_png.path());
  awaitTheTimersFirstCall();
  const Holdings before = Holdings::now();
  for (int i = 0; i < 100; ++i) liveOnce(m_library, m_wav.path(), m_png.path());
  awaitTheTimersFirstCall();
  EXPECT_EQ(S_OK, m_library.canUnloadNow());
  EXPECT_EQ(before, Holdings::now());
}

TEST_F(FullCompanionLeaks, TwentyLoadingsLeaveNoSlotHandleOrBlockBehind) {
  const auto round = [this] {
    ASSERT_EQ(S_OK, m_library.loadBesideProgram(companionName));
    ComPtr<IDispatch> object;
    ASSERT_EQ(S_OK, m_library.create(CLSID_WaveFile, object.GetAddressOf()));
    LateBound wave(object.Get());
    object.Reset();
    ASSERT_NE(S_OK, wave.call(L"Open", {Value(L"C:\\missing.wav")})) << "an exception inside the DLL";
    wave.reset();
    SetErrorInfo(0, nullptr);
    ASSERT_TRUE(m_library.unload());
    ASSERT_EQ(nullptr, GetModuleHandleW(companionName));
  };
  for (int i = 0; i < 3; ++i) ASSERT_NO_FATAL_FAILURE(round());
  const std::size_t slots = spareThreadLocalSlots();
  const int handles = openKernelHandles();
  const HeapUse heap = HeapUse::now();
  for (int i = 0; i < 20; ++i) ASSERT_NO_FATAL_FAILURE(round());
  EXPECT_EQ(slots, spareThreadLocalSlots());
  EXPECT_EQ(handles, openKernelHandles());
  EXPECT_EQ(heap, HeapUse::now());
  ASSERT_EQ(S_OK, m_library.loadBesideProgram(companionName));
}

}  // namespace
}  // namespace av::test
