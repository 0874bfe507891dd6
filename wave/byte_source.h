#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <span>

namespace av::wave {

/// Bytes that can be read at any place: a file, or memory.
class ByteSource {
 public:
  ByteSource() = default;
  ByteSource(const ByteSource&) = delete;
  ByteSource& operator=(const ByteSource&) = delete;
  virtual ~ByteSource() = default;

  [[nodiscard]] virtual std::uint64_t size() const noexcept = 0;
  /// Fills `bytes` from `position` on; returns how many there were. May throw what the source throws when it fails.
  virtual std::size_t read(std::uint64_t position, std::span<std::uint8_t> bytes) = 0;
};

/// Bytes of the caller's, which have to stay where they are.
class MemorySource final : public ByteSource {
 public:
  explicit MemorySource(std::span<const std::uint8_t> bytes) noexcept : m_bytes(bytes) {}

  [[nodiscard]] std::uint64_t size() const noexcept override { return m_bytes.size(); }
  std::size_t read(std::uint64_t position, std::span<std::uint8_t> bytes) override {
    if (position >= m_bytes.size()) return 0;
    const std::span<const std::uint8_t> rest = m_bytes.subspan(static_cast<std::size_t>(position));
    const std::size_t count = std::min(rest.size(), bytes.size());
    if (count > 0) std::memcpy(bytes.data(), rest.data(), count);
    return count;
  }

 private:
  std::span<const std::uint8_t> m_bytes;
};

}  // namespace av::wave
