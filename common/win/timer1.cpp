#include "common/win/timer1.h"

#include "common/win/message_wait.h"

#include <objbase.h>

#include <algorithm>
#include <new>
#include <utility>

namespace av {

/// One thread from its start to its end.
struct CTimer1::Run {
  explicit Run(CTimer1& timer) noexcept : owner(timer) {}
  /// The thread uses the timer and its lines until its very end.
  ~Run() {
    if (!thread) return;
    running = 0;
    // Messages that cannot be waited for any more must not let the lines go before the thread.
    if (waitDispatchingMessages(thread.get()) != WaitResult::signalled) WaitForSingleObject(thread.get(), INFINITE);
  }
  Run(const Run&) = delete;
  Run& operator=(const Run&) = delete;

  void sleep() const noexcept {
    const auto durationMs = static_cast<DWORD>(std::max<std::int32_t>(owner.m_periodMs, 1));
    if (!owner.m_ending || WaitForSingleObject(owner.m_ending.get(), durationMs) == WAIT_FAILED)
      owner.m_platform.sleepMs(durationMs);
  }

  CTimer1& owner;
  Relaxed<std::int32_t> running = 1;
  UniqueHandle thread;
  DWORD threadId = 0;
};

CTimer1::CTimer1(LineList& lines, WorkerPlatform& platform) noexcept
    : m_lines(lines), m_platform(platform), m_ending(CreateEventW(nullptr, TRUE, FALSE, nullptr)) {}

CTimer1::~CTimer1() {
  if (m_run) m_run->running = 0;
  if (m_ending) SetEvent(m_ending.get());
  Stop();
}

void CTimer1::Start() noexcept {
  if (m_run) return;
  std::unique_ptr<Run> run(new (std::nothrow) Run(*this));
  if (!run) return;
  run->thread.reset(m_platform.createThread(&CTimer1::threadMain, run.get(), run->threadId));
  if (run->thread) m_run = std::move(run);
}

void CTimer1::Stop() noexcept {
  const std::unique_ptr<Run> run = std::move(m_run);  // what its end waits for may bring the next start
}

// [fall thread]
DWORD WINAPI CTimer1::threadMain(void* argument) {
  const Run& run = *static_cast<const Run*>(argument);
  const bool comInitialised = SUCCEEDED(CoInitialize(nullptr));
  while (run.running) {
    run.sleep();
    if (!run.running) break;
    run.owner.m_lines.FallStep([&run] { return run.owner.m_platform.tickCount(); });
  }
  if (comInitialised) CoUninitialize();
  return 0;
}

}  // namespace av
