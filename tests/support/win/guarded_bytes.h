#pragma once

#include <windows.h>

#include <cstddef>
#include <cstring>
#include <new>
#include <vector>

namespace av::support {

/// A copy of some bytes that ends exactly where an inaccessible page begins: a read of one byte too many ends the
/// process with an access violation.
class GuardedBytes {
 public:
  explicit GuardedBytes(const std::vector<BYTE>& bytes) : m_size(bytes.size()) {
    const std::size_t pages = (m_size + pageBytes - 1) / pageBytes + 1;
    m_base =
        static_cast<BYTE*>(VirtualAlloc(nullptr, (pages + 1) * pageBytes, MEM_RESERVE | MEM_COMMIT, PAGE_READWRITE));
    if (m_base == nullptr) throw std::bad_alloc();
    m_end = m_base + pages * pageBytes;
    DWORD before = 0;
    if (!VirtualProtect(m_end, pageBytes, PAGE_NOACCESS, &before)) throw std::bad_alloc();
    if (m_size != 0) std::memcpy(data(), bytes.data(), m_size);
  }
  ~GuardedBytes() { VirtualFree(m_base, 0, MEM_RELEASE); }
  GuardedBytes(const GuardedBytes&) = delete;
  GuardedBytes& operator=(const GuardedBytes&) = delete;

  BYTE* data() const { return m_end - m_size; }
  LONG size() const { return static_cast<LONG>(m_size); }

 private:
  static constexpr std::size_t pageBytes = 4096;

  std::size_t m_size;
  BYTE* m_base;
  BYTE* m_end;
};

}  // namespace av::support
