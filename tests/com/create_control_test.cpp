// The three ways in which a host that knows names and numbers only creates each control: by number, by "new:" and a
// class identifier, and by a ProgID of each control's own through a manifest.

#include "host/companion_test.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <memory>
#include <string>

namespace av::test {
namespace {

/// A property that only that control has.
const wchar_t* propertyOf(LONG number) {
  constexpr const wchar_t* properties[] = {L"VisualizationSmooth", L"TickDelayTime", L"FFTLength"};
  return properties[number - 1];
}

void expectIs(LONG number, LateBound control) {
  ASSERT_TRUE(control);
  for (LONG other = 1; other <= 3; ++other)
    EXPECT_EQ(other != number, std::isnan(control.number(propertyOf(other)))) << number << ' ' << other;
  EXPECT_EQ(S_OK, control.call(L"Repaint"));
}

class CreateControl : public CompanionTest {
 protected:
  static const wchar_t* classText(LONG number) {
    constexpr const wchar_t* texts[] = {L"{62D89C1C-1C5B-467C-944F-F822CB0D6278}",
                                        L"{E9992E04-5743-40C9-AF9D-826530A45F53}",
                                        L"{2F06E1AA-C0F0-488C-A6DD-799053CA7140}"};
    return texts[number - 1];
  }
  /// VBScript's GetObject.
  static LateBound getObject(const std::wstring& name) {
    ComPtr<IDispatch> object;
    CoGetObject(name.c_str(), nullptr, IID_PPV_ARGS(&object));
    return LateBound(object.Get());
  }
  /// VBScript's CreateObject.
  static LateBound createObject(const wchar_t* progId) {
    CLSID classId;
    ComPtr<IDispatch> object;
    if (SUCCEEDED(CLSIDFromProgID(progId, &classId)))
      CoCreateInstance(classId, nullptr, CLSCTX_INPROC_SERVER, IID_PPV_ARGS(&object));
    return LateBound(object.Get());
  }
};

TEST_F(CreateControl, ByNumberFindsTheLibraryBesideTheCompanion) {
  LateBound controls = make(CLSID_Controls);
  for (const LONG number : {1, 2, 3}) expectIs(number, controls.object(L"CreateControl", {Value(VT_I4, number)}));
  LateBound snapshot = make(CLSID_Snapshot);
  for (const LONG number : {1, 2, 3}) {
    LateBound control = snapshot.object(L"CreateControl", {Value(VT_I4, number)});
    expectIs(number, control);
    Value held;
    EXPECT_EQ(S_OK, snapshot.call(L"Control", {}, &held));
    EXPECT_EQ(control.get(), V_DISPATCH(&held));
  }
}

TEST_F(CreateControl, ByNumberGivesControlsThatOutliveTheirMaker) {
  LateBound controls = make(CLSID_Controls);
  LateBound meter = controls.object(L"CreateControl", {Value(VT_I4, 2)});
  controls.reset();
  ASSERT_EQ(S_OK, m_library.canUnloadNow());
  LateBound block = makeBlock(2, 44100, 16);
  ASSERT_EQ(S_OK, block.call(L"SetSamples", {arrayOf(VT_R8, std::vector<double>(4096, 0.5))}));
  EXPECT_EQ(S_OK, meter.call(L"SendAudioData", {Value(block.get())}));
  avhost::pumpMessages(200);  // its timer starts and marshals
  expectIs(2, meter);
}

TEST_F(CreateControl, ByNumberRefusesOtherNumbers) {
  for (const CLSID& each : {CLSID_Controls, CLSID_Snapshot}) {
    LateBound maker = make(each);
    for (const LONG number : {0, 4, -1}) {
      EXPECT_FALSE(maker.object(L"CreateControl", {Value(VT_I4, number)}));
      EXPECT_EQ(E_INVALIDARG, maker.reason);
      EXPECT_NE(std::wstring::npos, maker.refusal.find(L"CreateControl: the number must be 1 (waveform and spectrum "
                                                       L"view), 2 (level meter) or 3 (spectrum analyser)."));
    }
  }
}

TEST_F(CreateControl, ByNumberTakesRegisteredControlsWhereTheCompanionLiesAlone) {
  const std::wstring folder = besideProgram(L"companion alone");
  const std::wstring copy = folder + L"\\AudioBlocks.dll";
  CreateDirectoryW(folder.c_str(), nullptr);
  ASSERT_TRUE(CopyFileW(besideProgram(companionName).c_str(), copy.c_str(), FALSE));
  {
    avhost::ControlLibrary alone;
    ASSERT_EQ(S_OK, alone.load(copy.c_str()));
    ComPtr<IDispatch> object;
    ASSERT_EQ(S_OK, alone.create(CLSID_Controls, object.GetAddressOf()));
    LateBound controls(object.Get());
    EXPECT_FALSE(controls.object(L"CreateControl", {Value(VT_I4, 1)}));
    EXPECT_EQ(REGDB_E_CLASSNOTREG, controls.reason);
    EXPECT_EQ(
        L"Controls.CreateControl: QELAudioVisualization4.dll is neither registered nor, with its manifest, in the "
        L"folder " +
            folder + L"\\",
        controls.refusal);
    const LoadedDll controlsDll;
    ASSERT_EQ(S_OK, controlsDll.registerServer());
    for (const LONG number : {1, 2, 3}) expectIs(number, controls.object(L"CreateControl", {Value(VT_I4, number)}));
    EXPECT_EQ(S_OK, controlsDll.unregisterServer());
  }
  EXPECT_TRUE(DeleteFileW(copy.c_str()));
  EXPECT_TRUE(RemoveDirectoryW(folder.c_str()));
}

TEST_F(CreateControl, ByClassIdentifierWorksWhereTheControlsAreRegisteredOrInAManifest) {
  {
    const LoadedDll dll;
    ASSERT_EQ(S_OK, dll.registerServer());
    for (const LONG number : {1, 2, 3}) expectIs(number, getObject(std::wstring(L"new:") + classText(number)));
    ASSERT_EQ(S_OK, dll.unregisterServer());
  }
  for (const LONG number : {1, 2, 3}) EXPECT_FALSE(getObject(std::wstring(L"new:") + classText(number)));
  avhost::ActivationContext manifest;
  ASSERT_EQ(S_OK, manifest.openFile(besideProgram(L"QELAudioVisualization4.manifest").c_str()));
  const avhost::ActivationContext::Active active(manifest);
  for (const LONG number : {1, 2, 3}) expectIs(number, getObject(std::wstring(L"new:") + classText(number)));
}

TEST_F(CreateControl, ByProgIdWorksForEachThroughTheManifestOfNames) {
  constexpr const wchar_t* names[] = {L"QELAudioVisualization4.View", L"QELAudioVisualization4.Meter",
                                      L"QELAudioVisualization4.Analyser"};
  for (const wchar_t* name : names) EXPECT_FALSE(createObject(name));
  avhost::ActivationContext manifest;
  ASSERT_EQ(S_OK, manifest.openFile(besideProgram(L"QELAudioVisualization4.ProgIds.manifest").c_str()));
  const avhost::ActivationContext::Active active(manifest);
  for (const LONG number : {1, 2, 3}) expectIs(number, createObject(names[number - 1]));
}

TEST_F(CreateControl, TheCompanionsOwnManifestServesItsNames) {
  constexpr const wchar_t* names[] = {L"AudioBlocks.AudioBlock", L"AudioBlocks.WaveFile", L"AudioBlocks.Snapshot",
                                      L"AudioBlocks.Controls"};
  for (const wchar_t* name : names) EXPECT_FALSE(createObject(name));
  avhost::ActivationContext manifest;
  ASSERT_EQ(S_OK, manifest.openFile(besideProgram(L"AudioBlocks.manifest").c_str()));
  const avhost::ActivationContext::Active active(manifest);
  for (const wchar_t* name : names) {
    EXPECT_TRUE(createObject(name));
    EXPECT_TRUE(createObject((std::wstring(name) + L".1").c_str()));
  }
  expectIs(3, createObject(L"AudioBlocks.Controls").object(L"CreateControl", {Value(VT_I4, 3)}));
}

}  // namespace
}  // namespace av::test
