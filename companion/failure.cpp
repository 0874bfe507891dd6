#include "companion/failure.h"

#include "companion/path_argument.h"

namespace av::companion {

Failure fileFailure(DWORD systemError, const std::wstring& path) {
  const auto say = [&](const wchar_t* what) {
    return Failure(HRESULT_FROM_WIN32(systemError), what + (L": " + shownPath(path)));
  };
  switch (systemError) {
    case ERROR_FILE_NOT_FOUND: return say(L"there is no such file");
    case ERROR_PATH_NOT_FOUND:
    case ERROR_BAD_NETPATH:
    case ERROR_INVALID_DRIVE: return say(L"there is no such folder");
    case ERROR_INVALID_NAME:
    case ERROR_BAD_PATHNAME: return say(L"this is no name of a file");
    case ERROR_ACCESS_DENIED: return say(L"the system denies access");
    case ERROR_SHARING_VIOLATION:
    case ERROR_LOCK_VIOLATION: return say(L"another program holds the file");
    case ERROR_DISK_FULL:
    case ERROR_HANDLE_DISK_FULL: return say(L"the disk is full");
    default: return say((L"the system reports error " + std::to_wstring(systemError)).c_str());
  }
}

}  // namespace av::companion
