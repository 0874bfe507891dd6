#include "companion/file_writer.h"

#include <windows.h>

#include "companion/failure.h"

namespace av::companion {

void writeFile(const std::wstring& path, std::span<const std::byte> bytes) {
  const HANDLE file =
      CreateFileW(path.c_str(), GENERIC_WRITE, 0, nullptr, CREATE_ALWAYS, FILE_ATTRIBUTE_NORMAL, nullptr);
  if (file == INVALID_HANDLE_VALUE) throw fileFailure(GetLastError(), path);
  DWORD count = 0;
  const BOOL written = WriteFile(file, bytes.data(), static_cast<DWORD>(bytes.size()), &count, nullptr);
  const DWORD error = GetLastError();
  CloseHandle(file);
  if (written && count == bytes.size()) return;
  DeleteFileW(path.c_str());
  throw fileFailure(written ? ERROR_DISK_FULL : error, path);
}

}  // namespace av::companion
