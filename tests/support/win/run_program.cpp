#include "support/win/run_program.h"

#include <windows.h>

#include <filesystem>
#include <fstream>
#include <iterator>

namespace av::test {
namespace {

HANDLE inheritableFile(const std::wstring& path, DWORD access, DWORD disposition) {
  SECURITY_ATTRIBUTES inheritable{sizeof inheritable, nullptr, TRUE};
  return CreateFileW(path.c_str(), access, FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE, &inheritable,
                     disposition, 0, nullptr);
}

}  // namespace

TemporaryFile::TemporaryFile(const wchar_t* extension, const std::string& bytes) {
  static int made = 0;
  wchar_t folder[MAX_PATH] = {};
  GetTempPathW(MAX_PATH, folder);
  m_path = std::wstring(folder) + L"av" + std::to_wstring(GetCurrentProcessId()) + L"-" + std::to_wstring(++made) +
           extension;
  std::ofstream file(std::filesystem::path(m_path), std::ios::binary);
  file.write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
}

TemporaryFile::~TemporaryFile() { DeleteFileW(m_path.c_str()); }

std::string TemporaryFile::bytes() const {
  std::ifstream file(std::filesystem::path(m_path), std::ios::binary);
  return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
}

ProgramRun runProgram(std::wstring commandLine, unsigned long timeoutMs) {
  const TemporaryFile output(L".out"), errors(L".err");
  STARTUPINFOW startup{};
  startup.cb = sizeof startup;
  startup.dwFlags = STARTF_USESTDHANDLES;
  startup.hStdInput = inheritableFile(L"NUL", GENERIC_READ | GENERIC_WRITE, OPEN_EXISTING);
  startup.hStdOutput = inheritableFile(output.path(), GENERIC_WRITE, OPEN_EXISTING);
  startup.hStdError = inheritableFile(errors.path(), GENERIC_WRITE, OPEN_EXISTING);
  PROCESS_INFORMATION process{};
  ProgramRun run;
  if (CreateProcessW(nullptr, commandLine.data(), nullptr, nullptr, TRUE, 0, nullptr, nullptr, &startup, &process)) {
    WaitForSingleObject(process.hProcess, timeoutMs);
    GetExitCodeProcess(process.hProcess, &run.exitCode);
    if (run.exitCode == STILL_ACTIVE) TerminateProcess(process.hProcess, 99);
    CloseHandle(process.hThread);
    CloseHandle(process.hProcess);
  }
  for (HANDLE each : {startup.hStdInput, startup.hStdOutput, startup.hStdError}) CloseHandle(each);
  run.output = output.bytes();
  run.errors = errors.bytes();
  return run;
}

}  // namespace av::test
