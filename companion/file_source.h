#pragma once

#include <windows.h>

#include <string>

#include "wave/byte_source.h"

namespace av::companion {

/// A file that is open for reading; others may read and write it meanwhile. Every method throws a Failure.
class FileSource final : public wave::ByteSource {
 public:
  explicit FileSource(const std::wstring& path);
  ~FileSource() override;

  /// As it was when the file was opened.
  [[nodiscard]] std::uint64_t size() const noexcept override { return m_size; }
  std::size_t read(std::uint64_t position, std::span<std::uint8_t> bytes) override;

 private:
  std::wstring m_path;
  HANDLE m_file;
  std::uint64_t m_size = 0;
};

}  // namespace av::companion
