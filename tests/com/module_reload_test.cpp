// Hosts that load and unload the DLL for each use pay nothing that lasts.

#include "host/dll_test.h"
#include "host/first_exception.h"
#include "support/win/resource_probes.h"

#include <cstdlib>
#include <functional>

namespace av::test {
namespace {

TEST(ResourceProbes, SeeASlotThatIsTaken) {
  const std::size_t before = spareThreadLocalSlots();
  const DWORD slot = TlsAlloc();
  EXPECT_EQ(before - 1, spareThreadLocalSlots());
  TlsFree(slot);
  EXPECT_EQ(before, spareThreadLocalSlots());
}

TEST(ResourceProbes, SeeABlockThatIsKept) {
  const HeapUse before = HeapUse::now();
  void* volatile block = std::malloc(777);  // which the compiler leaves out if it may
  const HeapUse with = HeapUse::now();
  std::free(block);
  EXPECT_EQ(before.blocks + 1, with.blocks);
  EXPECT_LE(before.bytes + 777, with.bytes);
  EXPECT_EQ(before, HeapUse::now());
}

/// What a process has that the DLL could keep.
struct Kept {
  std::size_t spareSlots = spareThreadLocalSlots();
  int kernelHandles = openKernelHandles();
  HeapUse heap = HeapUse::now();
  friend bool operator==(const Kept&, const Kept&) = default;
};

void PrintTo(const Kept& kept, std::ostream* out) {
  *out << kept.spareSlots << " slots to spare, " << kept.kernelHandles << " handles, ";
  PrintTo(kept.heap, out);
}

class ModuleReload : public testing::Test {
 protected:
  /// Loads the DLL, does `work` with it and unloads it, over and over.
  static void reload(int times, const std::function<void(avhost::ControlLibrary&)>& work) {
    for (int i = 0; i < times; ++i) {
      avhost::ControlLibrary library;
      ASSERT_EQ(S_OK, library.loadBesideProgram(dllName));
      ASSERT_NO_FATAL_FAILURE(work(library));
      ASSERT_EQ(S_OK, library.canUnloadNow());
      ASSERT_TRUE(library.unload());
      ASSERT_EQ(nullptr, GetModuleHandleW(dllName));
    }
  }

  static void expectNothingIsKept(const std::function<void(avhost::ControlLibrary&)>& work) {
    ASSERT_NO_FATAL_FAILURE(reload(3, work));  // what the system's libraries take on first use
    // What the DLL keeps, it keeps every time. Threads of the system's, which earlier tests of the process have started,
    // take a block now and then as well: one round in which nothing is kept shows that the DLL keeps nothing.
    Kept before, after;
    for (int round = 0; round < 5; ++round) {
      before = Kept();
      ASSERT_NO_FATAL_FAILURE(reload(10, work));
      after = Kept();
      if (before == after) return;
    }
    EXPECT_EQ(before, after);
  }
};

TEST_F(ModuleReload, LoadingAndUnloadingKeepsNothing) {
  expectNothingIsKept([](avhost::ControlLibrary&) {});
}

TEST_F(ModuleReload, AnExceptionInsideTheDllKeepsNothing) {
  const avhost::Apartment apartment;
  expectNothingIsKept([](avhost::ControlLibrary& library) {
    ComPtr<IDispatch> view;
    ASSERT_EQ(S_OK, library.create(CLSID_CAudioVisualization4Type1, view.GetAddressOf()));
    meetAnException(view.Get());
  });
}

/// A thread that sends a failing block and then lives on until it is told to end. Not a std::thread: the test program's
/// own runtime would keep something for it.
class AudioThread {
 public:
  explicit AudioThread(IDispatch* control) : m_control(control) { WaitForSingleObject(m_sent, INFINITE); }
  ~AudioThread() {
    SetEvent(m_end);
    WaitForSingleObject(m_thread, INFINITE);
    for (const HANDLE handle : {m_sent, m_end, m_thread}) CloseHandle(handle);
  }
  AudioThread(const AudioThread&) = delete;
  AudioThread& operator=(const AudioThread&) = delete;

 private:
  static DWORD WINAPI main(void* argument) {
    const auto* const self = static_cast<AudioThread*>(argument);
    meetAnException(self->m_control);
    SetEvent(self->m_sent);
    WaitForSingleObject(self->m_end, INFINITE);
    return 0;
  }

  IDispatch* m_control;
  HANDLE m_sent = CreateEventW(nullptr, TRUE, FALSE, nullptr);
  HANDLE m_end = CreateEventW(nullptr, TRUE, FALSE, nullptr);
  HANDLE m_thread = CreateThread(nullptr, 0, &AudioThread::main, this, 0, nullptr);
};

TEST_F(ModuleReload, AThreadThatMetAnExceptionInsideMayOutliveTheDll) {
  const avhost::Apartment apartment;
  expectNothingIsKept([](avhost::ControlLibrary& library) {
    ComPtr<IDispatch> view;
    ASSERT_EQ(S_OK, library.create(CLSID_CAudioVisualization4Type1, view.GetAddressOf()));
    const AudioThread thread(view.Get());
    view.Reset();
    EXPECT_TRUE(library.unload());
    EXPECT_EQ(nullptr, GetModuleHandleW(dllName));
  });
}

}  // namespace
}  // namespace av::test
