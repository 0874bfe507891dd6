// The persisted extent, read from streams of any content that end anywhere, fail, or lie about what they delivered.

#include "fuzz/check.h"
#include "fuzz/input.h"
#include "fuzz/targets.h"
#include "ole/extent_words.h"

#include <algorithm>
#include <cstring>
#include <vector>

namespace av::fuzz {
namespace {

constexpr std::int32_t refused = -2147467259;  // E_FAIL
constexpr std::int32_t streamFailed = -7;

class Stream {
 public:
  Stream(std::vector<std::uint8_t> content, int failingRead, bool boasts)
      : m_content(std::move(content)), m_failingRead(failingRead), m_boasts(boasts) {}

  std::int32_t read(void* to, std::uint32_t bytes, std::uint32_t& got) {
    m_asked += bytes;
    if (m_reads++ == m_failingRead) return streamFailed;
    got = static_cast<std::uint32_t>(std::min<std::size_t>(bytes, m_content.size() - m_position));
    if (got > 0) std::memcpy(to, m_content.data() + m_position, got);
    m_position += got;
    if (m_boasts) got = bytes + 1;
    return m_reads - 1;  // successes are not always 0
  }

  std::uint32_t asked() const { return m_asked; }
  int reads() const { return m_reads; }

 private:
  std::vector<std::uint8_t> m_content;
  int m_failingRead;
  bool m_boasts;
  int m_reads = 0;
  std::size_t m_position = 0;
  std::uint32_t m_asked = 0;
};

/// By bytes, whatever this machine's order of them is.
std::uint32_t word(const std::vector<std::uint8_t>& bytes, std::size_t at) {
  return bytes[at] | std::uint32_t{bytes[at + 1]} << 8 | std::uint32_t{bytes[at + 2]} << 16 |
         std::uint32_t{bytes[at + 3]} << 24;
}

}  // namespace

void extentStreams(Bytes bytes) {
  Input input(bytes.data(), bytes.size());
  const int failingRead = input.ConsumeIntegralInRange<int>(0, 5);  // from 2 on none
  const bool boasts = input.ConsumeIntegralInRange<int>(0, 9) == 9;
  const std::vector<std::uint8_t> content = input.ConsumeRemainingBytes<std::uint8_t>();
  Stream stream(content, failingRead, boasts);

  std::int32_t result = 1;
  const auto words = ole::readExtentWords<std::int32_t>(
      [&stream](void* to, std::uint32_t count, std::uint32_t& got) { return stream.read(to, count, got); }, refused,
      result);

  const bool hasVersion = content.size() >= 4 && word(content, 0) <= 0x800;
  const bool fails = failingRead == 0 || (failingRead == 1 && hasVersion && !boasts);
  const bool good = !fails && !boasts && hasVersion && content.size() >= 12 && word(content, 4) <= 0x7FFFFFFF &&
                    word(content, 8) <= 0x7FFFFFFF;
  require(words.has_value() == good, "an extent is read where there is one, and nowhere else");
  require(stream.asked() <= 12 && (hasVersion || stream.asked() == 4), "what follows is not asked for");
  require(good ? result >= 0 : result == (fails ? streamFailed : refused), "the answer says why");
  if (words) {
    require(words->version == word(content, 0) && words->cx == word(content, 4) && words->cy == word(content, 8),
            "the words are those of the stream");
  }
}

}  // namespace av::fuzz
