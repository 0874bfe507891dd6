#include "support/win/pe_file.h"

#include <algorithm>
#include <cctype>
#include <stdexcept>

namespace av::test {
namespace {

struct Section {
  std::uint32_t address;
  std::uint32_t size;
  std::uint32_t fileOffset;
};

class Reader {
 public:
  explicit Reader(const std::vector<std::uint8_t>& bytes) : m_bytes(bytes) {}

  std::uint32_t u32(std::size_t at) const { return u16(at) | static_cast<std::uint32_t>(u16(at + 2)) << 16; }
  std::uint16_t u16(std::size_t at) const {
    return static_cast<std::uint16_t>(m_bytes.at(at) | m_bytes.at(at + 1) << 8);
  }
  std::string text(std::size_t at, std::size_t longest = 512) const {
    std::string result;
    for (std::size_t i = 0; i < longest && m_bytes.at(at + i) != 0; ++i)
      result += static_cast<char>(m_bytes.at(at + i));
    return result;
  }

  std::vector<Section> sections;
  std::size_t fileOffset(std::uint32_t address) const {
    for (const Section& section : sections)
      if (address >= section.address && address - section.address < section.size)
        return section.fileOffset + (address - section.address);
    throw std::out_of_range("an address outside all sections");
  }

 private:
  const std::vector<std::uint8_t>& m_bytes;
};

PeFile parse(const std::vector<std::uint8_t>& bytes) {
  Reader reader(bytes);
  PeFile file;
  const std::size_t header = reader.u32(0x3C);
  if (reader.text(0, 2) != "MZ" || reader.text(header) != "PE") return file;
  const std::size_t coff = header + 4;
  file.machine = reader.u16(coff);
  const std::uint16_t sectionCount = reader.u16(coff + 2);
  file.symbolTableOffset = reader.u32(coff + 8);
  file.symbolCount = reader.u32(coff + 12);
  file.isDll = (reader.u16(coff + 18) & 0x2000) != 0;

  const std::size_t optional = coff + 20;
  const bool wide = reader.u16(optional) == 0x20B;
  const std::size_t directories = optional + (wide ? 112 : 96);
  const std::size_t sectionTable = optional + reader.u16(coff + 16);
  for (std::size_t i = 0; i < sectionCount; ++i) {
    const std::size_t at = sectionTable + 40 * i;
    file.sections.push_back(reader.text(at, 8));
    reader.sections.push_back(
        {reader.u32(at + 12), std::max(reader.u32(at + 8), reader.u32(at + 16)), reader.u32(at + 20)});
  }

  if (const std::uint32_t address = reader.u32(directories); address != 0) {
    const std::size_t table = reader.fileOffset(address);
    const std::uint32_t base = reader.u32(table + 16);
    const std::uint32_t functionCount = reader.u32(table + 20);
    const std::uint32_t nameCount = reader.u32(table + 24);
    const std::size_t names = nameCount == 0 ? 0 : reader.fileOffset(reader.u32(table + 32));
    const std::size_t ordinals = nameCount == 0 ? 0 : reader.fileOffset(reader.u32(table + 36));
    std::set<std::uint32_t> named;
    for (std::size_t i = 0; i < nameCount; ++i) {
      file.exports.insert(reader.text(reader.fileOffset(reader.u32(names + 4 * i))));
      named.insert(reader.u16(ordinals + 2 * i));
    }
    for (std::uint32_t i = 0; i < functionCount; ++i)
      if (!named.contains(i)) file.exports.insert(std::string{'#'}.append(std::to_string(base + i)));
  }

  if (const std::uint32_t address = reader.u32(directories + 8); address != 0) {
    for (std::size_t at = reader.fileOffset(address); reader.u32(at + 12) != 0; at += 20) {
      std::string name = reader.text(reader.fileOffset(reader.u32(at + 12)));
      std::transform(name.begin(), name.end(), name.begin(),
                     [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
      file.imports.insert(name);
    }
  }
  file.valid = true;
  return file;
}

}  // namespace

PeFile parsePeFile(const std::vector<std::uint8_t>& bytes) {
  try {
    return parse(bytes);
  } catch (const std::out_of_range&) {
    return {};
  }
}

}  // namespace av::test
