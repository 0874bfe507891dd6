#pragma once

#include "wave/byte_source.h"

#include <algorithm>
#include <utility>
#include <vector>

namespace av::support {

/// A file of any size: bytes that lie at some places, and zeros.
class SparseSource final : public wave::ByteSource {
 public:
  explicit SparseSource(std::uint64_t size) : m_size(size) {}

  void put(std::uint64_t position, std::vector<std::uint8_t> bytes) {
    m_parts.emplace_back(position, std::move(bytes));
  }
  /// The file gets shorter.
  void truncate(std::uint64_t readable) { m_readable = readable; }

  [[nodiscard]] std::uint64_t size() const noexcept override { return m_size; }
  std::size_t read(std::uint64_t position, std::span<std::uint8_t> bytes) override {
    ++reads;
    const std::uint64_t end = std::min(m_size, m_readable);
    if (position >= end) return 0;
    const auto count = static_cast<std::size_t>(std::min<std::uint64_t>(bytes.size(), end - position));
    for (std::size_t i = 0; i < count; ++i) bytes[i] = at(position + i);
    bytesRead += count;
    return count;
  }

  int reads = 0;
  std::uint64_t bytesRead = 0;

 private:
  [[nodiscard]] std::uint8_t at(std::uint64_t position) const {
    for (const auto& [from, bytes] : m_parts)
      if (position >= from && position - from < bytes.size()) return bytes[static_cast<std::size_t>(position - from)];
    return 0;
  }

  std::uint64_t m_size;
  std::uint64_t m_readable = ~std::uint64_t{0};
  std::vector<std::pair<std::uint64_t, std::vector<std::uint8_t>>> m_parts;
};

}  // namespace av::support
