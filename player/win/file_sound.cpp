#include "player/win/file_sound.h"

#include "wave/wave_reader.h"

#include <cmath>
#include <cwchar>
#include <fstream>
#include <iterator>
#include <new>
#include <vector>

namespace avplayer {

namespace {

namespace fs = std::filesystem;
using av::wave::WaveHeader;
using av::wave::WaveReader;

/// A file, read at any place.
class FileSource final : public av::wave::ByteSource {
 public:
  FileSource(std::ifstream& file, std::uint64_t size) : m_file(file), m_size(size) {}

  std::uint64_t size() const noexcept override { return m_size; }
  std::size_t read(std::uint64_t position, std::span<std::uint8_t> bytes) override {
    m_file.clear();
    m_file.seekg(static_cast<std::streamoff>(position));
    m_file.read(reinterpret_cast<char*>(bytes.data()), static_cast<std::streamsize>(bytes.size()));
    return static_cast<std::size_t>(m_file.gcount());
  }

 private:
  std::ifstream& m_file;
  std::uint64_t m_size;
};

std::shared_ptr<const Sound> readSamples(FileSource& source, const WaveHeader& header) {
  constexpr std::uint64_t framesAtOnce = 65536;
  constexpr unsigned soundBits = 16;
  auto sound = std::make_shared<Sound>();
  sound->sampleRateHz = header.sampleRateHz;
  sound->channels = header.channels;
  WaveReader reader(source, header);
  const unsigned bits = reader.blockFormat().storedBits();
  sound->samples.reserve(static_cast<std::size_t>(header.frameCount()) * header.channels);
  for (;;) {
    const std::vector<std::uint8_t> block = reader.read(std::min(framesAtOnce, reader.mostFramesOfABlock()));
    if (block.empty()) return sound;
    for (std::size_t i = 0; i < block.size() / (bits / 8); ++i) {
      const double value = av::wave::unitSample(block, bits, i);
      sound->samples.push_back(static_cast<std::int16_t>(av::wave::integerFromUnit(value, soundBits)));
    }
  }
}

std::wstring describe(const WaveHeader& header) {
  wchar_t rate[32];
  std::swprintf(rate, std::size(rate), L"%g kHz", header.sampleRateHz / 1000.0);
  const wchar_t* kind = header.kind == av::wave::SampleKind::floatingPoint ? L" bits floating-point, " : L" bits, ";
  const std::wstring channels = header.channels == 1   ? L"mono"
                                : header.channels == 2 ? L"stereo"
                                                       : std::to_wstring(header.channels) + L" channels";
  return std::wstring(rate) + L", " + std::to_wstring(header.bitsPerSample) + kind + channels;
}

FileSound read(const fs::path& path) {
  std::error_code error;
  if (!fs::exists(path, error)) return {nullptr, {}, L"no such file"};
  if (fs::is_directory(path, error)) return {nullptr, {}, L"a folder, not a file"};
  const std::uint64_t size = fs::file_size(path, error);
  std::ifstream file(path, std::ios::binary);
  if (!file || error) return {nullptr, {}, L"cannot be opened"};
  FileSource source(file, size);
  const av::wave::HeaderResult result = av::wave::readHeader(source);
  if (!result.header) return {nullptr, {}, std::wstring(result.problem.begin(), result.problem.end())};
  const std::shared_ptr<const Sound> sound = readSamples(source, *result.header);
  if (sound->samples.empty()) return {nullptr, {}, L"the file holds no samples"};
  return {sound, describe(*result.header), {}};
}

}  // namespace

FileSound readSound(const fs::path& file) {
  try {
    return read(file);
  } catch (const std::bad_alloc&) {
    return {nullptr, {}, L"too large for this machine's memory"};
  }
}

}  // namespace avplayer
