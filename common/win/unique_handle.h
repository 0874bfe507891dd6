#pragma once

#include <windows.h>

#include <memory>

namespace av {

struct HandleCloser {
  using pointer = HANDLE;
  void operator()(HANDLE handle) const noexcept { CloseHandle(handle); }
};

/// Owns a kernel handle whose "none" is null (threads, mutexes, events; not files).
using UniqueHandle = std::unique_ptr<void, HandleCloser>;

}  // namespace av
