// The companion for hosts whose threads are in the multi-threaded apartment: COM makes its objects and the controls in
// one apartment of its own, where they meet as direct pointers. Wine's apartment keeps a reference to whatever it made,
// these objects and the controls alike, so this suite wants a process of its own, as ctest gives it.

#include "host/companion_test.h"

#include <thread>

namespace av::test {
namespace {

class CompanionApartments : public testing::Test {
 protected:
  void SetUp() override {
    ASSERT_EQ(S_OK, LoadedDll().unregisterServer());
    ASSERT_EQ(S_OK, m_companion.registerServer());
  }
  void TearDown() override {
    EXPECT_EQ(S_OK, m_companion.unregisterServer());
    EXPECT_EQ(S_OK, LoadedDll().unregisterServer());
  }
  static LateBound make(REFCLSID classId) {
    ComPtr<IDispatch> object;
    EXPECT_EQ(S_OK, CoCreateInstance(classId, nullptr, CLSCTX_INPROC_SERVER, IID_PPV_ARGS(&object)));
    return LateBound(object.Get());
  }

  LoadedDll m_companion{besideProgram(companionName)};
};

void feedAView(LateBound block, LateBound controls) {
  ASSERT_EQ(S_OK, block.call(L"SetFormat", {Value(VT_I4, 2), Value(VT_I4, 44100), Value(VT_I4, 32)}));
  ASSERT_EQ(S_OK, block.call(L"SetSamples", {arrayOf(VT_R8, std::vector<double>(8192, 0.25))}));
  EXPECT_EQ(DISP_E_EXCEPTION, block.call(L"SetSamples", {Value(VT_I4, 1)}));
  EXPECT_EQ(L"AudioBlock.SetSamples: an array of numbers is wanted.", block.refusal);
  LateBound view = controls.object(L"CreateControl", {Value(VT_I4, 1)});
  ASSERT_TRUE(view);
  ASSERT_EQ(S_OK, view.put(L"DynamicRange", LONG{50}));
  ASSERT_EQ(S_OK, view.call(L"SendAudioData", {Value(block.get())}));
  EXPECT_EQ(186, view.number(L"DynamicRange")) << "the block has arrived";
}

TEST_F(CompanionApartments, ServeAHostOfTheMultiThreadedApartment) {
  std::thread host([] {
    ASSERT_EQ(S_OK, CoInitializeEx(nullptr, COINIT_MULTITHREADED));
    feedAView(make(CLSID_AudioBlock), make(CLSID_Controls));
    CoUninitialize();
  });
  host.join();
}

}  // namespace
}  // namespace av::test
