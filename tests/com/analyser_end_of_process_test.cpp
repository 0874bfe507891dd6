// FFT lengths that hosts can put and that end the process with the next block: shown in a process of its own.

#include "host/analyser_test.h"
#include "support/win/run_program.h"

#include <cstdio>
#include <string>

namespace av::test {
namespace {

/// What a child of the tests below runs: named by them, so that it is no test of any other run.
class DISABLED_AnalyserChild : public AnalyserTest {
 protected:
  void sendBlockOfLength(LONG length) {
    ASSERT_EQ(S_OK, m_analyser->put_FFTLength(length));
    EXPECT_EQ(S_OK, m_analyser->SendAudioData(nullptr));
    std::fputs("put\n", stdout);
    send(sineBlock(100));
    std::fputs("survived\n", stdout);
  }
};

TEST_F(DISABLED_AnalyserChild, SendsABlockOfLength0) { sendBlockOfLength(0); }
TEST_F(DISABLED_AnalyserChild, SendsABlockOfLength1) { sendBlockOfLength(1); }
TEST_F(DISABLED_AnalyserChild, SendsABlockOfLength2) { sendBlockOfLength(2); }
TEST_F(DISABLED_AnalyserChild, SendsABlockOfLength4) { sendBlockOfLength(4); }

ProgramRun runChild(int length) {
  wchar_t path[MAX_PATH];
  GetModuleFileNameW(nullptr, path, MAX_PATH);
  return runProgram(L"\"" + std::wstring(path) +
                    L"\" --gtest_also_run_disabled_tests --gtest_filter=DISABLED_AnalyserChild.SendsABlockOfLength" +
                    std::to_wstring(length));
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
    const ProgramRun run = runChild(one.length);
    EXPECT_EQ(1u, run.exitCode) << one.length;
    EXPECT_NE(std::string::npos, run.output.find("put")) << run.output;
    EXPECT_EQ(std::string::npos, run.output.find("survived")) << run.output;
    EXPECT_EQ(one.message, withoutReturns(run.errors)) << one.length;
  }
}

TEST(AnalyserEndOfProcess, FourIsTheSmallestLengthThatIsSurvived) {
  const ProgramRun run = runChild(4);
  EXPECT_EQ(0u, run.exitCode) << run.output << run.errors;
  EXPECT_NE(std::string::npos, run.output.find("survived")) << run.output;
}

}  // namespace
}  // namespace av::test
