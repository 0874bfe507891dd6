// The samples in C++ as their user sees them: a window comes up, its picture moves, and closing it ends the program.

#include "host/window_picture.h"
#include "support/win/dll.h"

#include <windows.h>

#include <gtest/gtest.h>

#include <thread>

// What is `main` in a program of its own.
int cpp_host_kit();
int cpp_raw_com();

namespace av::test {
namespace {

constexpr ULONGLONG longestMs = 20000;

/// Asks every few milliseconds until `condition` holds or the time is up.
template <class Condition>
bool waitUntil(Condition condition) {
  const ULONGLONG startMs = GetTickCount64();
  while (!condition()) {
    if (GetTickCount64() - startMs > longestMs) return false;
    Sleep(10);
  }
  return true;
}

class Samples : public testing::Test {
 protected:
  // Wine writes a type library that it finds through a manifest into the registry.
  void SetUp() override { ASSERT_EQ(S_OK, LoadedDll().unregisterServer()); }
  void TearDown() override { EXPECT_EQ(S_OK, LoadedDll().unregisterServer()); }

  /// Runs a sample on a thread of its own, watches its control through five pictures, and closes the window.
  static void expectAMovingPicture(int (*sample)(), const wchar_t* title) {
    int exitCode = -1;
    std::thread program([&] { exitCode = sample(); });
    HWND window = nullptr, control = nullptr;
    EXPECT_TRUE(waitUntil([&] {
      window = FindWindowW(nullptr, title);
      control = window ? GetWindow(window, GW_CHILD) : nullptr;
      return control != nullptr || exitCode != -1;
    }));
    EXPECT_NE(nullptr, control) << "exit code " << exitCode;
    WindowPicture last = control ? pictureOf(control) : WindowPicture{};
    for (int i = 0; control && i < 5; ++i) {
      EXPECT_TRUE(waitUntil([&] { return pictureOf(control) != last; })) << "picture " << i;
      last = pictureOf(control);
    }
    if (window) PostMessageW(window, WM_CLOSE, 0, 0);
    program.join();
    EXPECT_EQ(0, exitCode);
    EXPECT_FALSE(IsWindow(window));
  }
};

TEST_F(Samples, TheHostKitShowsAMovingSpectrum) { expectAMovingPicture(cpp_host_kit, L"Sweep"); }

TEST_F(Samples, RawComShowsAMovingMeter) { expectAMovingPicture(cpp_raw_com, L"Swell"); }

}  // namespace
}  // namespace av::test
