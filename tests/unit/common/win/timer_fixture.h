#pragma once

#include "common/win/timer.h"
#include "common/win/unique_handle.h"
#include "support/win/resource_probes.h"

#include <gmock/gmock.h>
#include <objbase.h>

#include <atomic>
#include <cstdint>
#include <cstdio>
#include <functional>
#include <string>
#include <vector>

// What the repaint timer's tests share: a control of twelve slots, a counting module lock, a platform that can be told
// to fail, and the ways in which marshalling can find the type library.
namespace av::timer_test {

class CountingModuleLock final : public ole::ModuleLock {
 public:
  void lockModule() noexcept override { ++count; }
  void unlockModule() noexcept override { --count; }
  std::atomic<int> count{0};
};

/// The system, save that threads can be refused, time can be watched and the module's context is the test's choice.
class TestPlatform final : public WorkerPlatform {
 public:
  HANDLE createThread(LPTHREAD_START_ROUTINE body, void* argument, DWORD& threadId) noexcept override {
    if (refuseThreads) return nullptr;
    ++threadsCreated;
    return CreateThread(nullptr, 0, body, argument, 0, &threadId);
  }
  DWORD tickCount() noexcept override { return GetTickCount(); }
  void sleepMs(DWORD durationMs) noexcept override {
    if (durationMs > 1) {
      lastSleepMs = durationMs;
      ++wholePeriods;
    }
    Sleep(durationMs);
  }
  void inModuleContext(void (*step)(void*), void* argument) noexcept override {
    if (skipSteps) return;
    ULONG_PTR cookie = 0;
    const bool active = moduleContext != INVALID_HANDLE_VALUE && ActivateActCtx(moduleContext, &cookie);
    step(argument);
    if (active) DeactivateActCtx(0, cookie);
  }

  bool refuseThreads = false;
  bool skipSteps = false;  ///< as if the system had refused whatever is asked of it in the context
  std::atomic<int> threadsCreated{0};
  std::atomic<DWORD> lastSleepMs{0};
  std::atomic<int> wholePeriods{0};
  HANDLE moduleContext = INVALID_HANDLE_VALUE;
};

class FakeControl;
using FakeTimer = CTimer<FakeControl, IAudioVisualizationTemplate, &IID_IAudioVisualization4Type1>;

/// A control that only ticks, and dies as the real ones do: pinned, ticks cut loose, waits last.
class FakeControl final : public IAudioVisualizationTemplate {
 public:
  FakeControl(CountingModuleLock& lock, TestPlatform& platform, bool* destroyed = nullptr)
      : timer(*this, lock, platform), m_destroyed(destroyed) {}

  FakeTimer timer;
  std::vector<DWORD> tickThreads;
  std::vector<DWORD> tickTimes;
  std::function<void()> onTick = [] {};

  STDMETHODIMP QueryInterface(REFIID id, void** object) override {
    if (object == nullptr) return E_POINTER;
    *object = nullptr;
    if (!IsEqualIID(id, IID_IUnknown)) return E_NOINTERFACE;
    *object = this;
    AddRef();
    return S_OK;
  }
  STDMETHODIMP_(ULONG) AddRef() override { return ++m_references; }
  STDMETHODIMP_(ULONG) Release() override {
    const ULONG left = --m_references;
    if (left == 0) {
      m_references = 1000;  // pinned
      timer.cutLoose();
      timer.shutDown();
      if (m_destroyed) *m_destroyed = true;
      delete this;
    }
    return left;
  }
  STDMETHODIMP _OnTimer() override {
    tickThreads.push_back(GetCurrentThreadId());
    tickTimes.push_back(GetTickCount());
    onTick();
    return S_OK;
  }
  STDMETHODIMP GetTypeInfoCount(UINT*) override { return E_NOTIMPL; }
  STDMETHODIMP GetTypeInfo(UINT, LCID, ITypeInfo**) override { return E_NOTIMPL; }
  STDMETHODIMP GetIDsOfNames(REFIID, LPOLESTR*, UINT, LCID, DISPID*) override { return E_NOTIMPL; }
  STDMETHODIMP Invoke(DISPID, REFIID, LCID, WORD, DISPPARAMS*, VARIANT*, EXCEPINFO*, UINT*) override {
    return E_NOTIMPL;
  }
  STDMETHODIMP SendAudioData(IUnknown*) override { return E_NOTIMPL; }
  STDMETHODIMP Repaint() override { return E_NOTIMPL; }
  STDMETHODIMP SetAdditionalParam(BSTR, VARIANT) override { return E_NOTIMPL; }
  STDMETHODIMP GetAdditionalParam(BSTR, VARIANT*) override { return E_NOTIMPL; }

 private:
  ~FakeControl() = default;
  std::atomic<ULONG> m_references{1};
  bool* m_destroyed;
};

/// The folder of this program, with a backslash; the type library is built beside it.
inline std::wstring programFolder() {
  wchar_t path[MAX_PATH] = {};
  GetModuleFileNameW(nullptr, path, MAX_PATH);
  std::wstring folder = path;
  return folder.substr(0, folder.find_last_of(L'\\') + 1);
}

/// An activation context that names the type library and how its first control interface is marshalled.
class ManifestContext {
 public:
  ManifestContext() {
    // Beside the type library, which is looked for where the manifest lies.
    const std::wstring path = programFolder() + L"timer_test." + std::to_wstring(GetCurrentProcessId()) + L".manifest";
    if (FILE* const file = _wfopen(path.c_str(), L"wb")) {
      std::fputs(
          "<?xml version='1.0' encoding='UTF-8' standalone='yes'?>"
          "<assembly xmlns='urn:schemas-microsoft-com:asm.v1' manifestVersion='1.0'>"
          "<assemblyIdentity type='win32' name='TimerTest' version='1.0.0.0'/>"
          "<file name='QELAudioVisualization4.tlb'>"
          "<typelib tlbid='{A864F7F5-89DD-4A12-9E3F-61C30ECC8180}' version='1.0' helpdir=''/></file>"
          "<comInterfaceExternalProxyStub name='IAudioVisualizationTemplate'"
          " iid='{4AF266BD-950A-4620-B390-00288767A1F5}' tlbid='{A864F7F5-89DD-4A12-9E3F-61C30ECC8180}'"
          " proxyStubClsid32='{00020424-0000-0000-C000-000000000046}'/>"
          "<comInterfaceExternalProxyStub name='IAudioVisualization4Type1'"
          " iid='{1A1420DC-77FE-4BAE-803B-6E290B0BDEDB}' tlbid='{A864F7F5-89DD-4A12-9E3F-61C30ECC8180}'"
          " proxyStubClsid32='{00020424-0000-0000-C000-000000000046}'/>"
          "</assembly>",
          file);
      std::fclose(file);
    }
    ACTCTXW request{};
    request.cbSize = sizeof request;
    request.lpSource = path.c_str();
    m_context = CreateActCtxW(&request);
    DeleteFileW(path.c_str());
  }
  ~ManifestContext() {
    if (m_context != INVALID_HANDLE_VALUE) ReleaseActCtx(m_context);
  }
  ManifestContext(const ManifestContext&) = delete;
  ManifestContext& operator=(const ManifestContext&) = delete;
  HANDLE get() const { return m_context; }

 private:
  HANDLE m_context = INVALID_HANDLE_VALUE;
};

/// Dispatches this thread's messages until `done()` or the time limit, which only a hanging test reaches.
inline bool dispatchUntil(const std::function<bool()>& done, DWORD limitMs = 30000) {
  const DWORD start = GetTickCount();
  while (!done()) {
    if (GetTickCount() - start >= limitMs) return false;
    MsgWaitForMultipleObjectsEx(0, nullptr, 5, QS_ALLINPUT, MWMO_INPUTAVAILABLE);
    MSG message;
    while (PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE)) DispatchMessageW(&message);
  }
  return true;
}

inline void dispatchFor(DWORD durationMs) {
  dispatchUntil([] { return false; }, durationMs);
}

using test::openKernelHandles;

/// What a thread of a host's is to COM.
enum class Host { noApartment, singleThreaded, multiThreaded };

/// Runs `work` on a plain thread to its end, with no message dispatched here meanwhile.
inline void onAnotherThread(Host host, const std::function<void()>& work) {
  struct Task {
    Host host;
    const std::function<void()>& work;
    static DWORD WINAPI main(void* argument) {
      const auto& task = *static_cast<const Task*>(argument);
      if (task.host != Host::noApartment)
        CoInitializeEx(nullptr, task.host == Host::singleThreaded ? COINIT_APARTMENTTHREADED : COINIT_MULTITHREADED);
      task.work();
      if (task.host != Host::noApartment) CoUninitialize();
      return 0;
    }
  } task{host, work};
  const UniqueHandle thread(CreateThread(nullptr, 0, &Task::main, &task, 0, nullptr));
  ASSERT_EQ(WAIT_OBJECT_0, WaitForSingleObject(thread.get(), 30000));
}

/// How the tick object comes to a worker.
enum class Way { stream, table };

inline std::string wayName(const testing::TestParamInfo<Way>& way) {
  return way.param == Way::stream ? "ByStream" : "ByTable";
}

/// A control in a single-threaded apartment, whose interface can be marshalled through the module's context.
class RepaintTimerTest : public testing::Test {
 protected:
  void SetUp() override {
    ASSERT_HRESULT_SUCCEEDED(CoInitialize(nullptr));
    ASSERT_NE(INVALID_HANDLE_VALUE, m_manifest.get());
    m_platform.moduleContext = m_manifest.get();
    m_control = new FakeControl(m_lock, m_platform, &m_destroyed);
  }
  void TearDown() override {
    releaseControl();
    EXPECT_EQ(0, m_lock.count) << "something still holds the module";
    CoUninitialize();
  }
  void releaseControl() {
    if (m_control) std::exchange(m_control, nullptr)->Release();
  }
  std::size_t ticks() const { return m_control->tickTimes.size(); }
  bool waitForTicks(std::size_t count) {
    return dispatchUntil([&] { return ticks() >= count; });
  }

  ManifestContext m_manifest;
  CountingModuleLock m_lock;
  TestPlatform m_platform;
  bool m_destroyed = false;
  FakeControl* m_control = nullptr;
};

}  // namespace av::timer_test
