// The controls without registration, and what keeps the DLL loaded.

#include <windows.h>

#include <QELAudioVisualization4.h>
#include <gtest/gtest.h>
#include <objbase.h>
#include <wrl/client.h>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <thread>

#include "support/win/dll.h"

namespace av::test {
namespace {

using Microsoft::WRL::ComPtr;

struct Class {
  const CLSID& clsid;
  const IID& iid;
};
const Class classes[] = {
    {CLSID_CAudioVisualization4Type1, IID_IAudioVisualization4Type1},
    {CLSID_CAudioVisualization4Type2, IID_IAudioVisualization4Type2},
    {CLSID_CAudioVisualization4Type3, IID_IAudioVisualization4Type3},
};

/// A manifest that is active on the thread for as long as the object lives.
class ActiveManifest {
 public:
  explicit ActiveManifest(const ACTCTXW& request) : m_context(CreateActCtxW(&request)) {
    if (m_context != INVALID_HANDLE_VALUE && !ActivateActCtx(m_context, &m_cookie)) m_cookie = 0;
  }
  ~ActiveManifest() {
    if (m_cookie != 0) DeactivateActCtx(0, m_cookie);
    if (m_context != INVALID_HANDLE_VALUE) ReleaseActCtx(m_context);
  }
  ActiveManifest(const ActiveManifest&) = delete;
  ActiveManifest& operator=(const ActiveManifest&) = delete;
  bool active() const { return m_cookie != 0; }

 private:
  HANDLE m_context;
  ULONG_PTR m_cookie = 0;
};

/// `path` has to outlive the request.
ACTCTXW manifestFile(const std::wstring& path) {
  ACTCTXW request{};
  request.cbSize = sizeof request;
  request.lpSource = path.c_str();
  return request;
}

ACTCTXW manifestOfModule(HMODULE module) {
  ACTCTXW request{};
  request.cbSize = sizeof request;
  request.dwFlags = ACTCTX_FLAG_RESOURCE_NAME_VALID | ACTCTX_FLAG_HMODULE_VALID;
  request.lpResourceName = MAKEINTRESOURCEW(2);
  request.hModule = module;
  return request;
}

class SideBySide : public testing::Test {
 protected:
  void SetUp() override {
    ASSERT_EQ(S_OK, CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED));
    const LoadedDll dll;
    ASSERT_EQ(S_OK, dll.unregisterServer());
    for (const Class& each : classes) {
      ComPtr<IUnknown> none;
      ASSERT_EQ(REGDB_E_CLASSNOTREG, CoCreateInstance(each.clsid, nullptr, CLSCTX_INPROC_SERVER, IID_PPV_ARGS(&none)));
    }
  }
  void TearDown() override {
    // Wine registers a type library that it finds through a manifest; nobody asked for that.
    const LoadedDll dll;
    EXPECT_EQ(S_OK, dll.unregisterServer());
    CoUninitialize();
  }

  const std::wstring manifestPath = besideProgram(L"QELAudioVisualization4.manifest");
};

TEST_F(SideBySide, CreatesAllThreeClassesFromTheManifest) {
  const ActiveManifest manifest(manifestFile(manifestPath));
  ASSERT_TRUE(manifest.active());
  for (const Class& each : classes) {
    ComPtr<IUnknown> control;
    EXPECT_EQ(S_OK, CoCreateInstance(each.clsid, nullptr, CLSCTX_INPROC_SERVER, IID_PPV_ARGS(&control)));
    ASSERT_TRUE(control);
    ComPtr<IUnknown> own;
    EXPECT_EQ(S_OK, control->QueryInterface(each.iid, reinterpret_cast<void**>(own.GetAddressOf())));
  }
}

TEST_F(SideBySide, IsFoundByAHostWhoseOwnManifestNamesTheAssembly) {
  const std::wstring path = besideProgram(L"some-host.manifest");
  const std::string text =
      R"(<?xml version="1.0" encoding="UTF-8" standalone="yes"?>
<assembly xmlns="urn:schemas-microsoft-com:asm.v1" manifestVersion="1.0">
  <assemblyIdentity type="win32" name="SomeHost" version="1.0.0.0"/>
  <dependency>
    <dependentAssembly>
      <assemblyIdentity type="win32" name="QELAudioVisualization4" version="1.0.0.0" processorArchitecture=")" +
      std::string(sizeof(void*) == 8 ? "amd64" : "x86") + R"("/>
    </dependentAssembly>
  </dependency>
</assembly>)";
  std::ofstream(std::filesystem::path(path), std::ios::binary) << text;
  {
    const ActiveManifest manifest(manifestFile(path));
    EXPECT_TRUE(manifest.active());
    for (const Class& each : classes) {
      ComPtr<IUnknown> control;
      EXPECT_EQ(S_OK, CoCreateInstance(each.clsid, nullptr, CLSCTX_INPROC_SERVER, IID_PPV_ARGS(&control)));
    }
  }
  EXPECT_TRUE(DeleteFileW(path.c_str()));
}

TEST_F(SideBySide, KeepsTheStatusBitsOfTheRegistration) {
  const ActiveManifest manifest(manifestFile(manifestPath));
  ASSERT_TRUE(manifest.active());
  for (const Class& each : classes) {
    DWORD status = 0;
    EXPECT_EQ(S_OK, OleRegGetMiscStatus(each.clsid, DVASPECT_CONTENT, &status));
    EXPECT_EQ(131473u, status);
  }
}

TEST_F(SideBySide, FindsTheTypeLibrary) {
  const ActiveManifest manifest(manifestFile(manifestPath));
  ASSERT_TRUE(manifest.active());
  ComPtr<ITypeLib> library;
  EXPECT_EQ(S_OK, LoadRegTypeLib(LIBID_QELAudioVisualization4, 1, 0, 0, &library));
}

/// Sends `_OnTimer` to an object of this thread's apartment from another thread's apartment, both with the manifest that
/// `request` names active while they marshal, and dispatches messages until the call has returned.
HRESULT tickFromAnotherApartment(REFIID iid, IUnknown* object, const ACTCTXW& request) {
  ComPtr<IStream> stream;
  {
    const ActiveManifest manifest(request);
    const HRESULT result = CoMarshalInterThreadInterfaceInStream(iid, object, &stream);
    if (FAILED(result)) return result;
  }
  HRESULT result = E_UNEXPECTED;
  const DWORD controlThread = GetCurrentThreadId();
  IStream* raw = stream.Detach();
  std::thread worker([&result, raw, controlThread, request, &iid] {
    CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED);
    {
      ComPtr<IAudioVisualizationTemplate> control;
      {
        const ActiveManifest manifest(request);
        result = CoGetInterfaceAndReleaseStream(raw, iid, reinterpret_cast<void**>(control.GetAddressOf()));
      }
      if (SUCCEEDED(result)) result = control->_OnTimer();
    }
    CoUninitialize();
    PostThreadMessageW(controlThread, WM_NULL, 0, 0);
  });
  MSG message;
  // The worker says when it is done; its calls arrive as messages before that.
  while (GetMessageW(&message, nullptr, 0, 0) > 0 && !(message.hwnd == nullptr && message.message == WM_NULL))
    DispatchMessageW(&message);
  worker.join();
  return result;
}

TEST_F(SideBySide, MarshalsATickWithTheManifestOnTheHostsSide) {
  const ACTCTXW request = manifestFile(manifestPath);
  for (const Class& each : classes) {
    ComPtr<IUnknown> control;
    {
      const ActiveManifest manifest(request);
      ASSERT_EQ(S_OK, CoCreateInstance(each.clsid, nullptr, CLSCTX_INPROC_SERVER, IID_PPV_ARGS(&control)));
    }
    EXPECT_EQ(S_OK, tickFromAnotherApartment(each.iid, control.Get(), request));
  }
}

TEST_F(SideBySide, MarshalsATickWithTheManifestInTheDllAlone) {
  const LoadedDll dll;
  ComPtr<IUnknown> controls[std::size(classes)];
  for (std::size_t i = 0; i < std::size(classes); ++i) {
    ComPtr<IClassFactory> factory;
    ASSERT_EQ(S_OK, dll.getClassObject(classes[i].clsid, IID_PPV_ARGS(&factory)));
    ASSERT_EQ(S_OK, factory->CreateInstance(nullptr, IID_PPV_ARGS(&controls[i])));
    // Wine registers a type library that it finds through a manifest, as it does when a level meter is made.
    ASSERT_EQ(S_OK, dll.unregisterServer());
    ComPtr<IStream> stream;
    ASSERT_TRUE(FAILED(CoMarshalInterThreadInterfaceInStream(classes[i].iid, controls[i].Get(), &stream)))
        << "nothing is registered here, so the manifest must be what makes the difference";
  }
  for (std::size_t i = 0; i < std::size(classes); ++i)
    EXPECT_EQ(S_OK, tickFromAnotherApartment(classes[i].iid, controls[i].Get(), manifestOfModule(dll.handle())));
}

class ModuleLifetime : public testing::Test {
 protected:
  void SetUp() override {
    ASSERT_EQ(S_OK, CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED));
    ASSERT_EQ(S_OK, dll.canUnloadNow());
  }
  void TearDown() override {
    EXPECT_EQ(S_OK, dll.canUnloadNow());
    CoUninitialize();
  }
  ComPtr<IClassFactory> factoryOf(REFCLSID clsid) {
    ComPtr<IClassFactory> factory;
    EXPECT_EQ(S_OK, dll.getClassObject(clsid, IID_PPV_ARGS(&factory)));
    return factory;
  }
  LoadedDll dll;
};

TEST_F(ModuleLifetime, IsHeldByAFactory) {
  for (const Class& each : classes) {
    ComPtr<IClassFactory> factory = factoryOf(each.clsid);
    EXPECT_EQ(S_FALSE, dll.canUnloadNow());
    factory.Reset();
    EXPECT_EQ(S_OK, dll.canUnloadNow());
  }
}

TEST_F(ModuleLifetime, IsHeldByAControlWhoseFactoryIsGone) {
  for (const Class& each : classes) {
    ComPtr<IUnknown> control;
    ASSERT_EQ(S_OK, factoryOf(each.clsid)->CreateInstance(nullptr, IID_PPV_ARGS(&control)));
    EXPECT_EQ(S_FALSE, dll.canUnloadNow());
    control.Reset();
    EXPECT_EQ(S_OK, dll.canUnloadNow());
  }
}

TEST_F(ModuleLifetime, IsHeldByLockServerUntilItIsUndone) {
  EXPECT_EQ(S_OK, factoryOf(CLSID_CAudioVisualization4Type1)->LockServer(TRUE));
  EXPECT_EQ(S_FALSE, dll.canUnloadNow());
  EXPECT_EQ(S_OK, factoryOf(CLSID_CAudioVisualization4Type2)->LockServer(FALSE));
  EXPECT_EQ(S_OK, dll.canUnloadNow());
}

TEST_F(ModuleLifetime, ServesNoOtherClassAndNoOtherFactoryInterface) {
  void* object = this;
  EXPECT_EQ(CLASS_E_CLASSNOTAVAILABLE, dll.getClassObject(LIBID_QELAudioVisualization4, IID_IClassFactory, &object));
  EXPECT_EQ(nullptr, object);
  object = this;
  EXPECT_EQ(E_NOINTERFACE, dll.getClassObject(CLSID_CAudioVisualization4Type1, IID_IDispatch, &object));
  EXPECT_EQ(nullptr, object);
  EXPECT_EQ(E_POINTER, dll.getClassObject(CLSID_CAudioVisualization4Type1, IID_IClassFactory, nullptr));
}

TEST_F(ModuleLifetime, RefusesAggregationThroughOtherInterfacesThanIUnknown) {
  for (const Class& each : classes) {
    const ComPtr<IClassFactory> factory = factoryOf(each.clsid);
    void* object = this;
    EXPECT_EQ(CLASS_E_NOAGGREGATION, factory->CreateInstance(factory.Get(), IID_IDispatch, &object));
    EXPECT_EQ(nullptr, object);
    EXPECT_EQ(E_POINTER, factory->CreateInstance(nullptr, IID_IUnknown, nullptr));
  }
}

TEST(ModuleUnloading, LeavesNothingLoadedAfterTheLastObject) {
  ASSERT_EQ(S_OK, CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED));
  ASSERT_EQ(nullptr, GetModuleHandleW(L"QELAudioVisualization4.dll"));
  {
    const std::wstring path = besideProgram(L"QELAudioVisualization4.manifest");
    const ActiveManifest manifest(manifestFile(path));
    ComPtr<IUnknown> control;
    ASSERT_EQ(S_OK,
              CoCreateInstance(CLSID_CAudioVisualization4Type1, nullptr, CLSCTX_INPROC_SERVER, IID_PPV_ARGS(&control)));
    EXPECT_NE(nullptr, GetModuleHandleW(L"QELAudioVisualization4.dll"));
    CoFreeUnusedLibrariesEx(0, 0);
    EXPECT_NE(nullptr, GetModuleHandleW(L"QELAudioVisualization4.dll")) << "a control still lives";
  }
  // The first call marks the library as unused, the second one unloads it.
  CoFreeUnusedLibrariesEx(0, 0);
  CoFreeUnusedLibrariesEx(0, 0);
  EXPECT_EQ(nullptr, GetModuleHandleW(L"QELAudioVisualization4.dll"));
  CoUninitialize();
}

}  // namespace
}  // namespace av::test
