#pragma once

#include <windows.h>

#include <map>
#include <string>

namespace av::test {

/// Registry entries by path. A key stands as "CLSID\{...}\Control\" with an empty text, its default value as
/// "CLSID\{...}\Control\@", a named value as "CLSID\{...}\Control\Name". Texts stand as they are; other types as
/// "type:bytes" in hexadecimal digits. Paths are equal in any letter case, as in the registry.
struct LessInAnyLetterCase {
  bool operator()(const std::wstring& a, const std::wstring& b) const { return lstrcmpiW(a.c_str(), b.c_str()) < 0; }
};
using RegistryEntries = std::map<std::wstring, std::wstring, LessInAnyLetterCase>;

/// Everything below HKEY_CLASSES_ROOT, save Wow6432Node.
RegistryEntries snapshotOfClasses();

/// One key of HKEY_CLASSES_ROOT, if it is there, and everything below it.
RegistryEntries snapshotOfClasses(const std::wstring& key);

/// Entries of `later` that `earlier` has not, or has with another text.
RegistryEntries added(const RegistryEntries& earlier, const RegistryEntries& later);

}  // namespace av::test
