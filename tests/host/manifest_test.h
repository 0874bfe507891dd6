#pragma once

#include "host/create.h"
#include "support/win/dll.h"

#include <windows.h>

#include <QELAudioVisualization4.h>
#include <gtest/gtest.h>
#include <ole2.h>
#include <wrl/client.h>

#include <memory>

namespace av::test {

using Microsoft::WRL::ComPtr;

/// A test whose thread is a single-threaded apartment with OLE, in which CoCreateInstance (and so the system's own
/// container) finds the controls: through the manifest, the registry stays as it is.
class ManifestTest : public testing::Test {
 protected:
  void SetUp() override {
    ASSERT_EQ(S_OK, OleInitialize(nullptr));
    ASSERT_EQ(S_OK, m_dll.unregisterServer());
    ASSERT_EQ(S_OK, m_manifest.openFile(besideProgram(L"QELAudioVisualization4.manifest").c_str()));
    m_active = std::make_unique<avhost::ActivationContext::Active>(m_manifest);
    ASSERT_EQ(S_OK, m_active->result());
  }

  void TearDown() override {
    EXPECT_EQ(S_OK, m_dll.canUnloadNow()) << "something of the DLL is still in use";
    m_active.reset();
    // Wine registers a type library that it finds through a manifest; nobody asked for that.
    EXPECT_EQ(S_OK, m_dll.unregisterServer());
    OleUninitialize();
  }

  template <class Interface>
  static ComPtr<Interface> create(REFCLSID classId) {
    ComPtr<Interface> object;
    EXPECT_EQ(S_OK, avhost::createRegistered(classId, object.GetAddressOf()));
    return object;
  }

  LoadedDll m_dll;
  avhost::ActivationContext m_manifest;

 private:
  std::unique_ptr<avhost::ActivationContext::Active> m_active;
};

}  // namespace av::test
