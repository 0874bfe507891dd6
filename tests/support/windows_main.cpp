// Entry point of every Windows test program. Crashes are printed and end the program with a code of their
// own, since a debugger that attaches by itself would hide them.

#include <windows.h>

#include <gmock/gmock.h>

#include <cstdio>

namespace {

LONG WINAPI reportCrash(EXCEPTION_POINTERS* info) {
  std::fprintf(stderr, "crash: exception %08lx at %p\n", info->ExceptionRecord->ExceptionCode,
               info->ExceptionRecord->ExceptionAddress);
  std::fflush(stderr);
  TerminateProcess(GetCurrentProcess(), 5);
  return EXCEPTION_EXECUTE_HANDLER;
}

}  // namespace

int wmain(int argc, wchar_t** argv) {
  SetUnhandledExceptionFilter(reportCrash);
  testing::InitGoogleMock(&argc, argv);
  return RUN_ALL_TESTS();
}
