#include "common/win/tick_object.h"

#include "unit/common/win/timer_fixture.h"

#include <gmock/gmock.h>

namespace av::timer_test {
namespace {

using Microsoft::WRL::ComPtr;

/// Takes the control's side of a tick without a timer.
struct TickObjectTest : testing::Test {
  CountingModuleLock lock;
  TestPlatform platform;
  bool destroyed = false;
  FakeControl* control = new FakeControl(lock, platform, &destroyed);
  ComPtr<TickObject> object = TickObject::create(control, IID_IAudioVisualization4Type1, lock);

  ~TickObjectTest() override {
    if (control != nullptr) control->Release();
  }
};
using TickObjectFor = TickObjectTest;

ULONG referencesOf(IUnknown* object) {
  object->AddRef();
  return object->Release();
}

TEST_F(TickObjectFor, AnswersForTheInterfacesOnTheWayToTheControlsOwn) {
  for (const IID& id : {IID_IUnknown, IID_IDispatch, IID_IAudioVisualizationTemplate, IID_IAudioVisualization4Type1}) {
    ComPtr<IUnknown> found;
    EXPECT_EQ(S_OK, object->QueryInterface(id, reinterpret_cast<void**>(found.GetAddressOf())));
    EXPECT_EQ(static_cast<IUnknown*>(object.Get()), found.Get()) << "one identity";
  }
  void* other = &lock;
  EXPECT_EQ(E_NOINTERFACE, object->QueryInterface(IID_IAudioVisualization4Type2, &other));
  EXPECT_EQ(nullptr, other);
  EXPECT_EQ(E_POINTER, object->QueryInterface(IID_IUnknown, nullptr));
}

TEST_F(TickObjectFor, StartsWithTheOneReferenceOfItsMaker) { EXPECT_EQ(1u, referencesOf(object.Get())); }

TEST_F(TickObjectFor, DoesNotCountAReferenceToTheControl) { EXPECT_EQ(1u, referencesOf(control)); }

TEST_F(TickObjectFor, HoldsTheModuleWhileItLives) {
  EXPECT_EQ(1, lock.count);
  object.Reset();
  EXPECT_EQ(0, lock.count);
}

TEST_F(TickObjectFor, HoldsTheControlWhileItTicks) {
  ULONG during = 0;
  control->onTick = [&] { during = referencesOf(control); };
  EXPECT_EQ(S_OK, object->_OnTimer());
  EXPECT_EQ(2u, during);
  EXPECT_EQ(1u, referencesOf(control));
  EXPECT_EQ(1u, control->tickTimes.size());
}

TEST_F(TickObjectFor, KnowsWhetherATickIsOnTheStack) {
  bool during = false;
  control->onTick = [&] { during = object->insideTick(); };
  EXPECT_FALSE(object->insideTick());
  object->_OnTimer();
  EXPECT_TRUE(during);
  EXPECT_FALSE(object->insideTick());
}

TEST_F(TickObjectFor, CountsTicksThatNest) {
  bool afterInner = false;
  int depth = 0;
  control->onTick = [&] {
    if (++depth != 1) return;
    object->_OnTimer();
    afterInner = object->insideTick();
  };
  object->_OnTimer();
  EXPECT_EQ(2, depth);
  EXPECT_TRUE(afterInner);
  EXPECT_FALSE(object->insideTick());
}

TEST_F(TickObjectFor, FindsNoControlOnceCutLoose) {
  object->cutLoose();
  EXPECT_EQ(S_OK, object->_OnTimer());
  EXPECT_TRUE(control->tickTimes.empty());
}

TEST_F(TickObjectFor, GivesTheMarshalledReferenceBackWhenNobodyTakesIt) {
  ASSERT_HRESULT_SUCCEEDED(CoInitialize(nullptr));
  {
    const ManifestContext manifest;
    ULONG_PTR cookie = 0;
    ASSERT_TRUE(ActivateActCtx(manifest.get(), &cookie));
    IStream* stream = nullptr;
    EXPECT_EQ(S_OK, CoMarshalInterThreadInterfaceInStream(IID_IAudioVisualization4Type1, object.Get(), &stream));
    DeactivateActCtx(0, cookie);
    ASSERT_NE(nullptr, stream);
    EXPECT_LT(1u, referencesOf(object.Get()));
    EXPECT_EQ(S_OK, stream->Seek({}, STREAM_SEEK_SET, nullptr));
    EXPECT_EQ(S_OK, CoReleaseMarshalData(stream));
    stream->Release();
    EXPECT_EQ(1u, referencesOf(object.Get()));
  }
  CoUninitialize();
}

}  // namespace
}  // namespace av::timer_test
