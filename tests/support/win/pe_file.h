#pragma once

#include <cstdint>
#include <set>
#include <string>
#include <vector>

namespace av::test {

/// What a Windows program or library says about itself in its headers, read from its file.
struct PeFile {
  bool valid = false;
  std::uint16_t machine = 0;
  bool isDll = false;
  std::uint32_t symbolTableOffset = 0;
  std::uint32_t symbolCount = 0;
  std::vector<std::string> sections;
  std::set<std::string> imports;  // file names, in small letters
  std::set<std::string> exports;  // names; exports by number alone stand as "#n"

  static constexpr std::uint16_t machineX64 = 0x8664;
  static constexpr std::uint16_t machineX86 = 0x014C;
};

/// Reads a file's bytes. Offsets that lead outside make the result invalid.
PeFile parsePeFile(const std::vector<std::uint8_t>& bytes);

}  // namespace av::test
