// The DLL's class factories, asked for what they have not.

#include "host/control_classes.h"
#include "host/create.h"
#include "support/win/dll.h"

#include <gtest/gtest.h>
#include <ocidl.h>
#include <wrl/client.h>

#include <string>

namespace av::test {
namespace {

using Microsoft::WRL::ComPtr;

class ClassObjects : public testing::TestWithParam<ControlClassName> {
 protected:
  void TearDown() override { EXPECT_EQ(S_OK, m_dll.canUnloadNow()); }

  const avhost::Apartment m_apartment;
  LoadedDll m_dll;
};

TEST_P(ClassObjects, AreThereForTheThreeClassesOnly) {
  ComPtr<IClassFactory> factory;
  EXPECT_EQ(S_OK, m_dll.getClassObject(GetParam().classId, IID_PPV_ARGS(&factory)));
  for (const CLSID& unknown : {GUID_NULL, LIBID_QELAudioVisualization4, IID_IAudioVisualization4Type1}) {
    void* object = this;
    EXPECT_EQ(CLASS_E_CLASSNOTAVAILABLE, m_dll.getClassObject(unknown, IID_IClassFactory, &object));
    EXPECT_EQ(nullptr, object);
  }
}

TEST_P(ClassObjects, AreFactoriesAndNothingElse) {
  for (const IID& iid : {IID_IOleObject, IID_IDispatch, IID_IClassFactory2}) {
    void* object = this;
    EXPECT_EQ(E_NOINTERFACE, m_dll.getClassObject(GetParam().classId, iid, &object));
    EXPECT_EQ(nullptr, object);
  }
  EXPECT_EQ(E_POINTER, m_dll.getClassObject(GetParam().classId, IID_IClassFactory, nullptr));
}

TEST_P(ClassObjects, MakeNoControlThatCannotBeHandedOut) {
  ComPtr<IClassFactory> factory;
  ASSERT_EQ(S_OK, m_dll.getClassObject(GetParam().classId, IID_PPV_ARGS(&factory)));
  void* object = this;
  EXPECT_EQ(E_NOINTERFACE, factory->CreateInstance(nullptr, IID_IMarshal, &object));
  EXPECT_EQ(nullptr, object);
  EXPECT_EQ(E_POINTER, factory->CreateInstance(nullptr, IID_IOleObject, nullptr));
  EXPECT_EQ(S_OK, factory->LockServer(TRUE));
  factory.Reset();
  EXPECT_EQ(S_FALSE, m_dll.canUnloadNow()) << "locked";
  ASSERT_EQ(S_OK, m_dll.getClassObject(GetParam().classId, IID_PPV_ARGS(&factory)));
  EXPECT_EQ(S_OK, factory->LockServer(FALSE));
}

INSTANTIATE_TEST_SUITE_P(, ClassObjects, testing::ValuesIn(allControlClasses),
                         [](const auto& parameter) { return std::string(parameter.param.name); });

}  // namespace
}  // namespace av::test
