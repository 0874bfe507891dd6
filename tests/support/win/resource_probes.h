#pragma once

// What a process holds of the system's resources. The usual counters read 0 on some systems.

#include <windows.h>

#include <cstddef>
#include <cstdint>
#include <map>
#include <ostream>
#include <string>
#include <vector>

namespace av::test {

namespace detail {

template <class Function>
Function ntFunction(const char* name) {
  return reinterpret_cast<Function>(reinterpret_cast<void*>(GetProcAddress(GetModuleHandleW(L"ntdll.dll"), name)));
}

struct HandleRow {
  void* object;
  ULONG_PTR processId, handle;
  ULONG access;
  USHORT creatorBackTrace, typeIndex;
  ULONG attributes, reserved;
};

/// Every open handle of this process.
inline std::vector<HandleRow> ownHandles() {
  struct Table {
    ULONG_PTR count, reserved;
    HandleRow rows[1];
  };
  using Query = LONG(WINAPI*)(ULONG informationClass, void* information, ULONG length, ULONG* needed);
  const auto query = ntFunction<Query>("NtQuerySystemInformation");
  constexpr ULONG extendedHandleInformation = 64;
  constexpr auto lengthMismatch = static_cast<LONG>(0xC0000004);
  std::vector<std::uint8_t> bytes(1u << 16);
  ULONG needed = 0;
  while (query(extendedHandleInformation, bytes.data(), static_cast<ULONG>(bytes.size()), &needed) == lengthMismatch)
    bytes.resize(bytes.size() * 2);
  const auto* const table = reinterpret_cast<const Table*>(bytes.data());
  std::vector<HandleRow> own;
  for (ULONG_PTR i = 0; i < table->count; ++i)
    if (table->rows[i].processId == GetCurrentProcessId()) own.push_back(table->rows[i]);
  return own;
}

}  // namespace detail

/// Kernel handles that this process has open.
inline int openKernelHandles() { return static_cast<int>(detail::ownHandles().size()); }

/// The same by the name of their type ("Event", "Thread", "Key" for the registry, ...).
inline std::map<std::wstring, int> openKernelHandlesByType() {
  struct TypeInformation {
    USHORT nameBytes, nameRoom;
    const wchar_t* name;
    std::uint8_t rest[1000];
  };
  using Query = LONG(WINAPI*)(HANDLE handle, ULONG informationClass, void* information, ULONG length, ULONG* needed);
  const auto query = detail::ntFunction<Query>("NtQueryObject");
  constexpr ULONG typeInformation = 2;
  std::map<std::wstring, int> counts;
  for (const detail::HandleRow& row : detail::ownHandles()) {
    TypeInformation type{};
    ULONG needed = 0;
    const bool known =
        query(reinterpret_cast<HANDLE>(row.handle), typeInformation, &type, sizeof type, &needed) >= 0 && type.name;
    ++counts[known ? std::wstring(type.name, type.nameBytes / sizeof(wchar_t)) : std::wstring(L"unknown")];
  }
  return counts;
}

/// GDI objects that this process can still make. Found out by making brushes until none is left.
inline int spareGdiObjects() {
  std::vector<HBRUSH> brushes;
  while (HBRUSH brush = CreateSolidBrush(RGB(1, 2, 3))) brushes.push_back(brush);
  for (HBRUSH brush : brushes) DeleteObject(brush);
  return static_cast<int>(brushes.size());
}

/// Thread-local slots that the process could still take; a process has 1,088.
inline std::size_t spareThreadLocalSlots() {
  std::vector<DWORD> taken;
  for (DWORD slot = TlsAlloc(); slot != TLS_OUT_OF_INDEXES; slot = TlsAlloc()) taken.push_back(slot);
  for (const DWORD slot : taken) TlsFree(slot);
  return taken.size();
}

/// What lies in the heaps of this process. Counting allocates nothing.
struct HeapUse {
  std::size_t blocks = 0;
  std::size_t bytes = 0;

  static HeapUse now() {
    HeapUse use;
    HANDLE heaps[64];
    const DWORD count = GetProcessHeaps(ARRAYSIZE(heaps), heaps);
    for (DWORD i = 0; i < count && i < ARRAYSIZE(heaps); ++i) {
      HeapLock(heaps[i]);
      PROCESS_HEAP_ENTRY entry{};
      while (HeapWalk(heaps[i], &entry)) {
        if (!(entry.wFlags & PROCESS_HEAP_ENTRY_BUSY)) continue;
        ++use.blocks;
        use.bytes += entry.cbData;
      }
      HeapUnlock(heaps[i]);
    }
    return use;
  }
  friend bool operator==(const HeapUse&, const HeapUse&) = default;
};

inline void PrintTo(const HeapUse& use, std::ostream* out) {
  *out << use.blocks << " blocks, " << use.bytes << " bytes";
}

}  // namespace av::test
