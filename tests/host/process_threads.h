#pragma once

#include <windows.h>

#include <gtest/gtest.h>
#include <tlhelp32.h>

#include <functional>

namespace av::test {

/// Threads of this process that are alive.
inline int threadsOfThisProcess() {
  const HANDLE snapshot = CreateToolhelp32Snapshot(TH32CS_SNAPTHREAD, 0);
  THREADENTRY32 entry{};
  entry.dwSize = sizeof entry;
  int count = 0;
  for (BOOL more = Thread32First(snapshot, &entry); more; more = Thread32Next(snapshot, &entry))
    if (entry.th32OwnerProcessID == GetCurrentProcessId()) ++count;
  CloseHandle(snapshot);
  return count;
}

/// What a thread of a host's is to COM.
enum class AudioApartment { none, singleThreaded, multiThreaded };

inline const char* nameOf(AudioApartment apartment) {
  switch (apartment) {
    case AudioApartment::none: return "APlainThread";
    case AudioApartment::singleThreaded: return "ASingleThreadedApartment";
    default: return "TheMultiThreadedApartment";
  }
}

/// A thread that is made with CreateThread alone, so that neither COM nor the C++ runtime of the program keeps something
/// for it; it runs `work` and ends. The destructor waits for it without dispatching messages.
class PlainThread {
 public:
  explicit PlainThread(std::function<void()> work, AudioApartment apartment = AudioApartment::none)
      : m_work(std::move(work)), m_apartment(apartment), m_handle(CreateThread(nullptr, 0, &main, this, 0, nullptr)) {}
  ~PlainThread() {
    EXPECT_EQ(WAIT_OBJECT_0, WaitForSingleObject(m_handle, 60000));
    CloseHandle(m_handle);
  }
  PlainThread(const PlainThread&) = delete;
  PlainThread& operator=(const PlainThread&) = delete;

  bool hasEnded() const { return WaitForSingleObject(m_handle, 0) == WAIT_OBJECT_0; }

 private:
  static DWORD WINAPI main(void* argument) {
    auto& self = *static_cast<PlainThread*>(argument);
    if (self.m_apartment != AudioApartment::none)
      CoInitializeEx(nullptr, self.m_apartment == AudioApartment::singleThreaded ? COINIT_APARTMENTTHREADED
                                                                                 : COINIT_MULTITHREADED);
    self.m_work();
    if (self.m_apartment != AudioApartment::none) CoUninitialize();
    return 0;
  }

  std::function<void()> m_work;
  AudioApartment m_apartment;
  HANDLE m_handle;
};

}  // namespace av::test
