#include "common/win/timer.h"

#include "common/repaint_schedule.h"
#include "common/win/message_wait.h"
#include "common/win/unique_handle.h"

#include <objbase.h>

#include <algorithm>
#include <atomic>
#include <mutex>
#include <new>
#include <utility>

namespace av {

using Microsoft::WRL::ComPtr;

namespace {

constexpr auto relaxed = std::memory_order_relaxed;

/// How long a worker may take to end beyond its wait, before teardown stops waiting for it. A worker whose tick can be
/// delivered ends in no time; one that called into an apartment that was torn down under it may never return.
constexpr DWORD endGraceMs = 20000;
constexpr DWORD endGraceWithoutApartmentMs = 500;

bool apartmentIsGone() noexcept {
  APTTYPE type;
  APTTYPEQUALIFIER qualifier;
  return CoGetApartmentType(&type, &qualifier) == CO_E_NOTINITIALIZED;
}

/// Frees a stream with the marshalled reference in it that nobody has taken.
void discardMarshalled(IStream* stream) noexcept {
  stream->Seek({}, STREAM_SEEK_SET, nullptr);
  CoReleaseMarshalData(stream);
  stream->Release();
}

/// Takes the reference out of `stream`, which is freed in every case. Null when it cannot be unmarshalled.
ComPtr<IAudioVisualizationTemplate> unmarshal(IStream* stream, const IID& id) noexcept {
  ComPtr<IAudioVisualizationTemplate> proxy;
  stream->AddRef();
  const HRESULT result =
      CoGetInterfaceAndReleaseStream(stream, id, reinterpret_cast<void**>(proxy.ReleaseAndGetAddressOf()));
  if (FAILED(result)) discardMarshalled(stream);  // the marshalled reference would hold the tick object for ever
  else stream->Release();
  return proxy;
}

/// The module that this code is in, counted up, so that it stays loaded until the worker has left it.
HMODULE referenceThisModule() noexcept {
  static const char inThisModule = 0;
  HMODULE module = nullptr;
  GetModuleHandleExW(GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS, reinterpret_cast<const wchar_t*>(&inThisModule), &module);
  return module;
}

}  // namespace

/// What the timer shares with its workers; lives as long as the last of them.
struct RepaintTimer::Shared : RepaintWords {
  Shared(const IID& id, WorkerPlatform& system) : dispatchId(id), platform(system) {}
  ~Shared() { revoke(); }
  Shared(const Shared&) = delete;
  Shared& operator=(const Shared&) = delete;

  /// The tick object on its way to a worker, from start until the worker takes it: marshalled for it alone, or, with a
  /// cookie, to be fetched from the table.
  std::atomic<IStream*> stream{nullptr};
  std::atomic<bool> fetchPending{false};
  bool isPending() const noexcept { return stream.load() != nullptr || fetchPending.load(); }

  // Written while there is no worker: workers read them without a lock.
  ComPtr<IGlobalInterfaceTable> table;
  DWORD cookie = 0;  ///< of the tick object in the table; 0: it is not there

  /// Takes the tick object out of the table, which any thread may that is in an apartment. Not while a worker may still
  /// fetch it: Wine 8 frees twice what it has made for a pointer that it cannot hand out in the end.
  void revoke() noexcept {
    // An apartment that went first has let go of the object already, and the table may answer that it knows nothing.
    if (cookie != 0) table->RevokeInterfaceFromGlobal(std::exchange(cookie, 0));
  }

  const IID dispatchId;
  WorkerPlatform& platform;

  // [repaint worker]
  ComPtr<IAudioVisualizationTemplate> takeCallback() noexcept {
    if (IStream* const marshalled = stream.exchange(nullptr)) return unmarshal(marshalled, dispatchId);
    ComPtr<IAudioVisualizationTemplate> proxy;
    if (fetchPending.exchange(false))
      table->GetInterfaceFromGlobal(cookie, dispatchId, reinterpret_cast<void**>(proxy.GetAddressOf()));
    return proxy;
  }
};

struct RepaintTimer::Worker {
  UniqueHandle thread;
  DWORD threadId = 0;

  bool hasEnded() const noexcept { return WaitForSingleObject(thread.get(), 0) == WAIT_OBJECT_0; }
};

/// What a thread is born with.
struct RepaintTimer::WorkerStart {
  std::shared_ptr<Shared> shared;
  HMODULE module;
};

RepaintTimer::RepaintTimer(IAudioVisualizationTemplate* control, const IID& dispatchId, ole::ModuleLock& moduleLock,
                           WorkerPlatform& platform)
    : m_control(control),
      m_dispatchId(dispatchId),
      m_moduleLock(moduleLock),
      m_platform(platform),
      m_shared(std::make_shared<Shared>(dispatchId, platform)) {}

RepaintTimer::~RepaintTimer() { shutDown(); }

bool RepaintTimer::allowStartOnAnyThread() noexcept {
  if (m_cutLoose) return false;
  // Marshalling happens at once, and looks for the interface as it does in Start.
  if (m_shared->cookie == 0)
    m_platform.inModuleContext([](void* timer) { static_cast<RepaintTimer*>(timer)->registerTickObject(); }, this);
  return m_shared->cookie != 0;
}

void RepaintTimer::registerTickObject() noexcept {
  ComPtr<IGlobalInterfaceTable> table;
  if (FAILED(CoCreateInstance(CLSID_StdGlobalInterfaceTable, nullptr, CLSCTX_INPROC_SERVER, IID_PPV_ARGS(&table))) ||
      !ensureTickObject())
    return;
  DWORD cookie = 0;
  if (FAILED(table->RegisterInterfaceInGlobal(m_tickObject.Get(), m_dispatchId, &cookie))) {
    CoDisconnectObject(m_tickObject.Get(), 0);  // see marshalTickObject
    return;
  }
  m_shared->table = table;
  m_shared->cookie = cookie;
}

bool RepaintTimer::onControlThread() const noexcept { return GetCurrentThreadId() == m_controlThreadId; }

bool RepaintTimer::canFetch() const noexcept {
  // The table's own reference goes when the apartment is torn down, and the entry is good for nothing then.
  return m_shared->cookie != 0 && m_tickObject->isSharedOut();
}

bool RepaintTimer::ensureTickObject() noexcept {
  if (!m_tickObject) m_tickObject = TickObject::create(m_control, m_dispatchId, m_moduleLock);
  return m_tickObject != nullptr;
}

std::uint32_t RepaintTimer::Start(std::uint32_t periodMs) noexcept {
  const std::lock_guard lock(m_lock);
  // A message that is dispatched while Stop waits must not set the flag again that the worker is to see cleared.
  if (m_cutLoose || m_stopping) return 0;
  const bool canCreate = m_shared->m_bRunning.load(relaxed) == 0 && !m_shared->isPending();
  m_shared->m_nInterval.store(periodMs, relaxed);
  // What is marshalled on a thread belongs to that thread: its ticks would not reach the control's.
  if (canCreate && !onControlThread() && !canFetch()) return 0;
  m_shared->m_bRunning.store(1, relaxed);
  if (!canCreate) return 0;

  // Both the marshalling here and the unmarshalling in the thread, which inherits the context, look for the interface.
  m_platform.inModuleContext([](void* timer) { static_cast<RepaintTimer*>(timer)->marshalAndCreateWorker(); }, this);
  return 0;
}

void RepaintTimer::Stop() noexcept {
  clearRunning();
  if (m_tickObject && m_tickObject->insideTick()) return;
  std::shared_ptr<Worker> worker;  // keeps the handle open whatever is dispatched
  {
    const std::lock_guard lock(m_lock);
    if (m_stopping || !m_youngest) return;
    worker = std::move(m_youngest);
    m_stopping = true;
  }
  waitForEnd(*worker);
  const std::lock_guard lock(m_lock);
  m_stopping = false;
  forgetEndedWorkers();
  m_shared->m_bBusy.store(0, relaxed);
}

void RepaintTimer::clearRunning() noexcept { m_shared->m_bRunning.store(0, relaxed); }

void RepaintTimer::cutLoose() noexcept {
  {
    const std::lock_guard lock(m_lock);
    m_cutLoose = true;
    clearRunning();
  }
  if (m_tickObject) m_tickObject->cutLoose();
}

void RepaintTimer::shutDown() noexcept {
  cutLoose();
  std::vector<std::shared_ptr<Worker>> workers;
  {
    const std::lock_guard lock(m_lock);
    if (std::exchange(m_shutDown, true)) return;
    m_youngest.reset();
    workers = std::move(m_workers);
  }
  if (!m_tickObject || !m_tickObject->insideTick())
    for (const std::shared_ptr<Worker>& worker : workers) waitForEnd(*worker);
  // Of those that cannot be waited for, the last one does this.
  const bool allEnded =
      std::all_of(workers.begin(), workers.end(), [](const auto& worker) { return worker->hasEnded(); });
  if (allEnded) m_shared->revoke();
  m_shared->m_bBusy.store(0, relaxed);
  // Still there when no thread could be created for it.
  if (IStream* const stream = m_shared->stream.exchange(nullptr)) discardMarshalled(stream);
  m_tickObject.Reset();
}

std::size_t RepaintTimer::liveWorkers() noexcept {
  const std::lock_guard lock(m_lock);
  forgetEndedWorkers();
  return m_workers.size();
}

void RepaintTimer::marshalAndCreateWorker() noexcept {
  // A pointer that was marshalled for its one worker comes without a call to this thread; the table's does not.
  if (onControlThread()) m_shared->stream.store(marshalTickObject());
  if (m_shared->stream.load() == nullptr && canFetch()) m_shared->fetchPending.store(true);
  m_youngest.reset();
  forgetEndedWorkers();
  m_shared->m_bBusy.store(0, relaxed);
  m_youngest = createWorker();
}

IStream* RepaintTimer::marshalTickObject() noexcept {
  if (!ensureTickObject()) return nullptr;
  IStream* stream = nullptr;
  if (SUCCEEDED(CoMarshalInterThreadInterfaceInStream(m_dispatchId, m_tickObject.Get(), &stream))) return stream;
  // An interface that nobody describes fails half-way, and Wine's COM then keeps the object until it is told not to.
  // Not while a worker ticks through another reference to it, or the table has one.
  if (m_workers.empty() && m_shared->cookie == 0) CoDisconnectObject(m_tickObject.Get(), 0);
  return nullptr;
}

std::shared_ptr<RepaintTimer::Worker> RepaintTimer::createWorker() noexcept {
  // Everything that needs memory comes before the thread, so that no thread is ever left unlisted.
  std::shared_ptr<Worker> worker;
  std::unique_ptr<WorkerStart> start;
  try {
    worker = std::make_shared<Worker>();
    start.reset(new WorkerStart{m_shared, nullptr});
    m_workers.reserve(m_workers.size() + 1);
  } catch (const std::bad_alloc&) {
    return nullptr;
  }
  const HMODULE module = start->module = referenceThisModule();
  worker->thread.reset(m_platform.createThread(&RepaintTimer::workerMain, start.get(), worker->threadId));
  if (!worker->thread) {
    if (module) FreeLibrary(module);
    return nullptr;
  }
  static_cast<void>(start.release());  // the thread's now
  m_workers.push_back(worker);
  return worker;
}

// [repaint worker]
DWORD WINAPI RepaintTimer::workerMain(void* argument) {
  HMODULE module = nullptr;
  {
    const std::unique_ptr<WorkerStart> start(static_cast<WorkerStart*>(argument));
    module = start->module;
    runWorker(std::move(start->shared));
  }
  // Nothing with a destructor may be alive here: the thread never returns from giving its module reference back.
  if (module) FreeLibraryAndExitThread(module, 0);
  return 0;
}

// [repaint worker]
void RepaintTimer::runWorker(std::shared_ptr<Shared>&& owned) {
  const bool comInitialised = SUCCEEDED(CoInitialize(nullptr));
  {
    // Given back while the thread still is in an apartment: the last one takes the tick object out of the table.
    const std::shared_ptr<Shared> kept = std::move(owned);
    Shared& shared = *kept;
    const ComPtr<IAudioVisualizationTemplate> callback = shared.takeCallback();
    runRepaintSchedule(
        shared, [&shared] { return shared.platform.tickCount(); },
        [&shared](std::uint32_t durationMs) { shared.platform.sleepMs(durationMs); },
        [&callback] {
          if (callback) callback->_OnTimer();
        });
  }
  if (comInitialised) CoUninitialize();
}

void RepaintTimer::waitForEnd(const Worker& worker) noexcept {
  const std::uint64_t limitMs = std::uint64_t{m_shared->m_nInterval.load(relaxed)} +
                                (apartmentIsGone() ? endGraceWithoutApartmentMs : endGraceMs);
  waitDispatchingMessages(worker.thread.get(), static_cast<DWORD>(std::min<std::uint64_t>(limitMs, INFINITE)));
}

void RepaintTimer::forgetEndedWorkers() noexcept {
  std::erase_if(m_workers, [](const std::shared_ptr<Worker>& worker) { return worker->hasEnded(); });
}

}  // namespace av
