#pragma once

#include "host/create.h"
#include "host/message_pump.h"
#include "support/win/dll.h"

#include <windows.h>

#include <QELAudioVisualization4.h>
#include <gtest/gtest.h>
#include <wrl/client.h>

namespace av::test {

using Microsoft::WRL::ComPtr;

inline constexpr wchar_t dllName[] = L"QELAudioVisualization4.dll";

/// A test that loads the DLL from the test program's own folder, without registration, and leaves it unloadable: a test
/// that leaks a reference or a worker fails.
class DllTest : public testing::Test {
 protected:
  void SetUp() override {
    ASSERT_EQ(S_OK, m_apartment.result());
    // Wine registers a type library that it finds through a manifest, as it does when a control's timer starts.
    ASSERT_EQ(S_OK, LoadedDll().unregisterServer());
    ASSERT_EQ(S_OK, m_library.loadBesideProgram(dllName));
    ASSERT_EQ(S_OK, m_library.canUnloadNow());
  }

  void TearDown() override {
    if (!m_library.module()) return;
    EXPECT_EQ(S_OK, m_library.canUnloadNow()) << "something of the DLL is still in use";
    EXPECT_TRUE(m_library.unload());
  }

  template <class Interface>
  ComPtr<Interface> create(REFCLSID classId) {
    ComPtr<Interface> object;
    EXPECT_EQ(S_OK, m_library.create(classId, object.GetAddressOf()));
    return object;
  }

  ComPtr<IAudioVisualization4Type1> createView() {
    return create<IAudioVisualization4Type1>(CLSID_CAudioVisualization4Type1);
  }

  avhost::Apartment m_apartment;
  avhost::ControlLibrary m_library;
};

/// References to `object` besides the caller's own one.
inline ULONG otherReferences(IUnknown* object) {
  object->AddRef();
  return object->Release() - 1;
}

}  // namespace av::test
