#include "support/win/registry_snapshot.h"

#include <vector>

namespace av::test {
namespace {

std::wstring asText(DWORD type, const std::vector<BYTE>& bytes) {
  if (type == REG_SZ || type == REG_EXPAND_SZ) {
    std::wstring text(reinterpret_cast<const wchar_t*>(bytes.data()), bytes.size() / sizeof(wchar_t));
    return text.substr(0, text.find(L'\0'));
  }
  std::wstring text = std::to_wstring(type) + L":";
  for (const BYTE byte : bytes) {
    text += L"0123456789abcdef"[byte >> 4];
    text += L"0123456789abcdef"[byte & 15];
  }
  return text;
}

void collect(HKEY key, const std::wstring& path, RegistryEntries& entries) {
  DWORD longestKey = 0;
  DWORD longestName = 0;
  DWORD longestValue = 0;
  RegQueryInfoKeyW(key, nullptr, nullptr, nullptr, nullptr, &longestKey, nullptr, nullptr, &longestName, &longestValue,
                   nullptr, nullptr);
  std::vector<wchar_t> name(longestName + 1);
  std::vector<BYTE> bytes(longestValue + 2);
  for (DWORD i = 0;; ++i) {
    auto nameLength = static_cast<DWORD>(name.size());
    auto byteCount = static_cast<DWORD>(bytes.size());
    DWORD type = 0;
    if (RegEnumValueW(key, i, name.data(), &nameLength, nullptr, &type, bytes.data(), &byteCount) != ERROR_SUCCESS)
      break;
    entries[path + (nameLength == 0 ? L"@" : std::wstring(name.data(), nameLength))] =
        asText(type, {bytes.begin(), bytes.begin() + byteCount});
  }
  std::vector<wchar_t> child(longestKey + 1);
  for (DWORD i = 0;; ++i) {
    auto length = static_cast<DWORD>(child.size());
    if (RegEnumKeyExW(key, i, child.data(), &length, nullptr, nullptr, nullptr, nullptr) != ERROR_SUCCESS) break;
    // The other architecture's view of the same registry: much of it is a mirror.
    if (path.empty() && lstrcmpiW(child.data(), L"Wow6432Node") == 0) continue;
    HKEY opened = nullptr;
    if (RegOpenKeyExW(key, child.data(), 0, KEY_READ, &opened) != ERROR_SUCCESS) continue;
    const std::wstring childPath = path + std::wstring(child.data(), length) + L"\\";
    entries[childPath] = L"";
    collect(opened, childPath, entries);
    RegCloseKey(opened);
  }
}

}  // namespace

RegistryEntries snapshotOfClasses() {
  RegistryEntries entries;
  collect(HKEY_CLASSES_ROOT, L"", entries);
  return entries;
}

RegistryEntries snapshotOfClasses(const std::wstring& key) {
  RegistryEntries entries;
  HKEY opened = nullptr;
  if (RegOpenKeyExW(HKEY_CLASSES_ROOT, key.c_str(), 0, KEY_READ, &opened) != ERROR_SUCCESS) return entries;
  entries[key + L"\\"] = L"";
  collect(opened, key + L"\\", entries);
  RegCloseKey(opened);
  return entries;
}

RegistryEntries added(const RegistryEntries& earlier, const RegistryEntries& later) {
  RegistryEntries result;
  for (const auto& [path, text] : later) {
    const auto before = earlier.find(path);
    if (before == earlier.end() || before->second != text) result[path] = text;
  }
  return result;
}

}  // namespace av::test
