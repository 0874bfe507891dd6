// WAV files, good and damaged: what the header says, and samples read piece by piece.

#include "fuzz/check.h"
#include "fuzz/targets.h"
#include "wave/wave_header.h"
#include "wave/wave_reader.h"

#include <algorithm>
#include <cstddef>
#include <vector>

namespace av::fuzz {
namespace {

/// A file whose reader must not look behind its end.
class WatchedFile final : public wave::ByteSource {
 public:
  explicit WatchedFile(Bytes bytes) : m_memory(bytes) {}
  [[nodiscard]] std::uint64_t size() const noexcept override { return m_memory.size(); }
  std::size_t read(std::uint64_t position, std::span<std::uint8_t> bytes) override {
    ++reads;
    return m_memory.read(position, bytes);
  }
  int reads = 0;

 private:
  wave::MemorySource m_memory;
};

void checkHeader(const wave::WaveHeader& header, std::uint64_t fileBytes) {
  const unsigned bits = header.bitsPerSample;
  const bool isFloat = header.kind == wave::SampleKind::floatingPoint;
  require(header.channels >= 1 && header.channels <= 18, "1 to 18 channels");
  require(isFloat ? bits == 32 || bits == 64 : bits == 8 || bits == 16 || bits == 24 || bits == 32, "known widths");
  require(header.sampleRateHz >= 1 && header.sampleRateHz <= 10'000'000, "sample rates of converters");
  require(header.dataOffset <= fileBytes && header.dataBytes <= fileBytes - header.dataOffset, "samples of the file");
  require(header.dataBytes % header.bytesPerFrame() == 0, "whole frames");
  require(header.format.size() >= 18 && header.format.size() <= 180, "a format that the controls keep");
  require(header.format[16] + 18u <= header.format.size() && header.format[17] == 0, "an extension that is there");
}

void checkSamples(WatchedFile& file, const wave::WaveHeader& header, std::size_t piece) {
  wave::WaveReader reader(file, header);
  const std::vector<std::uint8_t> whole = reader.read(reader.frameCount());
  const wave::PcmFormat& format = reader.blockFormat();
  require(reader.position() == header.frameCount(), "all that the header says can be read");
  require(whole.size() == header.frameCount() * format.storedFrameBytes(), "as many stored frames as there are");
  const std::size_t samples = static_cast<std::size_t>(header.frameCount()) * format.channels;
  for (std::size_t i = 0; i < samples; ++i) {
    const double value = wave::unitSample(whole, format.bitsPerSample, i);
    require(value >= -1 && value < 1, "samples lie on the scale of one");
  }

  reader.setPosition(0);
  std::vector<std::uint8_t> joined;
  while (reader.position() < reader.frameCount()) {
    const std::vector<std::uint8_t> part = reader.read(piece);
    require(!part.empty(), "before the end there is something to read");
    joined.insert(joined.end(), part.begin(), part.end());
  }
  require(joined == whole, "pieces are the whole");
  require(reader.read(piece).empty(), "behind the end there is nothing");
}

}  // namespace

void waveFiles(Bytes bytes) {
  WatchedFile file(bytes);
  const wave::HeaderResult result = wave::readHeader(file);
  require(result.header.has_value() == result.problem.empty(), "a header or a problem");
  require(std::ranges::all_of(result.problem, [](char c) { return c >= ' ' && c <= '~'; }), "a problem in one line");
  require(file.reads <= static_cast<int>(bytes.size()) + 3, "a search that ends with the file");
  if (!result.header) return;
  checkHeader(*result.header, bytes.size());
  // Pieces of a length that the input decides.
  checkSamples(file, *result.header, bytes.back() % 7u + 1u);
}

}  // namespace av::fuzz
