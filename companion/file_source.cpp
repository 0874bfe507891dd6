#include "companion/file_source.h"

#include <algorithm>

#include "companion/failure.h"

namespace av::companion {

namespace {

constexpr std::size_t longestReadBytes = 0x1000000;

}  // namespace

FileSource::FileSource(const std::wstring& path)
    : m_path(path),
      m_file(CreateFileW(path.c_str(), GENERIC_READ, FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE, nullptr,
                         OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL, nullptr)) {
  if (m_file == INVALID_HANDLE_VALUE) throw fileFailure(GetLastError(), path);
  LARGE_INTEGER size = {};
  if (!GetFileSizeEx(m_file, &size)) {
    const DWORD error = GetLastError();
    CloseHandle(m_file);
    throw fileFailure(error, path);
  }
  m_size = static_cast<std::uint64_t>(size.QuadPart);
}

FileSource::~FileSource() { CloseHandle(m_file); }

std::size_t FileSource::read(std::uint64_t position, std::span<std::uint8_t> bytes) {
  std::size_t done = 0;
  while (done < bytes.size()) {
    const std::uint64_t at = position + done;
    OVERLAPPED place = {};
    place.Offset = static_cast<DWORD>(at);
    place.OffsetHigh = static_cast<DWORD>(at >> 32);
    const auto wanted = static_cast<DWORD>(std::min(bytes.size() - done, longestReadBytes));
    DWORD count = 0;
    if (!ReadFile(m_file, bytes.data() + done, wanted, &count, &place)) {
      const DWORD error = GetLastError();
      if (error == ERROR_HANDLE_EOF) break;
      throw fileFailure(error, m_path);
    }
    if (count == 0) break;
    done += count;
  }
  return done;
}

}  // namespace av::companion
