// FFT lengths that hosts can put and that end the process with the next block: shown in a process of its own.

#include "support/win/run_program.h"

#include <windows.h>
#include <gtest/gtest.h>

#include <string>

namespace av::test {
namespace {

/// A program beside this one that puts `length` and sends a block.
ProgramRun sendBlockOfLength(int length) {
  wchar_t path[MAX_PATH];
  GetModuleFileNameW(nullptr, path, MAX_PATH);
  std::wstring folder = path;
  folder.resize(folder.find_last_of(L'\\') + 1);
  return runProgram(L"\"" + folder + L"block_of_length.exe\" " + std::to_wstring(length));
}

/// The text as the C library writes it, whatever the stream makes of line ends.
std::string withoutReturns(std::string text) {
  std::erase(text, '\r');
  return text;
}

TEST(AnalyserEndOfProcess, TheBlockAfterAnFftLengthBelowFourEndsTheProcessWithAMessage) {
  const struct {
    int length;
    const char* message;
  } cases[] = {{0, "0 is not a power of two\n"}, {1, "0 is not a power of two\n"}, {2, "1 is not a power of two\n"}};
  for (const auto& one : cases) {
    const ProgramRun run = sendBlockOfLength(one.length);
    EXPECT_EQ(1u, run.exitCode) << one.length;
    EXPECT_EQ("put\n", withoutReturns(run.output)) << one.length;
    EXPECT_EQ(one.message, withoutReturns(run.errors)) << one.length;
  }
}

TEST(AnalyserEndOfProcess, FourIsTheSmallestLengthThatIsSurvived) {
  const ProgramRun run = sendBlockOfLength(4);
  EXPECT_EQ(0u, run.exitCode);
  EXPECT_EQ("put\nsurvived\n", withoutReturns(run.output));
  EXPECT_EQ("", run.errors);
}

}  // namespace
}  // namespace av::test
