#pragma once

#include <algorithm>
#include <array>
#include <string_view>

namespace av {

/// A short ASCII text as the wide characters that Windows takes, without memory of the heap. Texts beyond 63
/// characters are cut: scale texts have at most 11.
class AsciiText {
 public:
  explicit AsciiText(std::string_view text) noexcept
      : m_length(static_cast<int>(std::min(text.size(), m_characters.size() - 1))) {
    std::transform(text.begin(), text.begin() + m_length, m_characters.begin(),
                   [](char c) { return static_cast<wchar_t>(static_cast<unsigned char>(c)); });
  }

  const wchar_t* data() const noexcept { return m_characters.data(); }
  int length() const noexcept { return m_length; }

 private:
  std::array<wchar_t, 64> m_characters{};
  int m_length;
};

}  // namespace av
