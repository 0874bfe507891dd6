// Entry point of every Windows test program. Crashes are printed and end the program with a code of their
// own, since a debugger that attaches by itself would hide them; what was printed before one is not lost. A test that leaves COM running on its thread fails,
// and not the next one of the same process.

#include <windows.h>

#include <gmock/gmock.h>
#include <objbase.h>

#include <cstdio>
#include <string>

namespace {

LONG WINAPI reportCrash(EXCEPTION_POINTERS* info) {
  std::fprintf(stderr, "crash: exception %08lx at %p\n", info->ExceptionRecord->ExceptionCode,
               info->ExceptionRecord->ExceptionAddress);
  std::fflush(stderr);
  TerminateProcess(GetCurrentProcess(), 5);
  return EXCEPTION_EXECUTE_HANDLER;
}

class ComIsEnded final : public testing::EmptyTestEventListener {
  void OnTestEnd(const testing::TestInfo&) override {
    APTTYPE apartment{};
    APTTYPEQUALIFIER qualifier{};
    // A thread without COM of its own belongs to the multi-threaded apartment while another thread is in that one.
    if (CoGetApartmentType(&apartment, &qualifier) == S_OK && qualifier != APTTYPEQUALIFIER_IMPLICIT_MTA)
      ADD_FAILURE() << "the test leaves COM running on this thread";
  }
};

// For tools/wine-run, which starts a program again if Wine ended before the program began.
void signTheStart() {
  const wchar_t* file = _wgetenv(L"AV_STARTED_FILE");
  if (!file) return;
  const HANDLE sign =
      CreateFileW((std::wstring(L"Z:") + file).c_str(), GENERIC_WRITE, 0, nullptr, CREATE_ALWAYS, 0, nullptr);
  if (sign != INVALID_HANDLE_VALUE) CloseHandle(sign);
}

}  // namespace

int wmain(int argc, wchar_t** argv) {
  signTheStart();
  SetUnhandledExceptionFilter(reportCrash);
  std::setvbuf(stdout, nullptr, _IONBF, 0);
  testing::InitGoogleMock(&argc, argv);
  testing::UnitTest::GetInstance()->listeners().Append(new ComIsEnded);
  return RUN_ALL_TESTS();
}
