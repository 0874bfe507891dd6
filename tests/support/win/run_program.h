#pragma once

#include <string>

namespace av::test {

/// How a program ended and what it wrote.
struct ProgramRun {
  unsigned long exitCode = ~0ul;  ///< all bits set: it did not start; 259: it was ended after the timeout
  std::string output;             ///< standard output, as bytes
  std::string errors;             ///< standard error stream, as bytes
};

/// Runs a command line to its end and collects what it writes; after `timeoutMs` it is ended. Its streams are files in
/// the temporary folder, not pipes: background programs that it starts could hold pipes open.
ProgramRun runProgram(std::wstring commandLine, unsigned long timeoutMs = 60000);

/// A file in the temporary folder that goes with the object.
class TemporaryFile {
 public:
  /// `extension` with its dot; `bytes` is what the file holds at first.
  explicit TemporaryFile(const wchar_t* extension, const std::string& bytes = {});
  ~TemporaryFile();
  TemporaryFile(const TemporaryFile&) = delete;
  TemporaryFile& operator=(const TemporaryFile&) = delete;

  [[nodiscard]] const std::wstring& path() const { return m_path; }
  [[nodiscard]] std::string bytes() const;

 private:
  std::wstring m_path;
};

}  // namespace av::test
