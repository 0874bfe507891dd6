#include "common/win/worker_platform.h"

#include "ole/activation_context.h"

namespace av {

namespace {

class SystemWorkerPlatform final : public WorkerPlatform {
 public:
  HANDLE createThread(LPTHREAD_START_ROUTINE body, void* argument, DWORD& threadId) noexcept override {
    return CreateThread(nullptr, 0, body, argument, 0, &threadId);
  }
  DWORD tickCount() noexcept override { return GetTickCount(); }
  void sleepMs(DWORD durationMs) noexcept override { Sleep(durationMs); }
  void inModuleContext(void (*step)(void*), void* argument) noexcept override {
    const ole::OwnActivationContext context;
    step(argument);
  }
};

}  // namespace

WorkerPlatform& systemWorkerPlatform() noexcept {
  static SystemWorkerPlatform platform;
  return platform;
}

}  // namespace av
