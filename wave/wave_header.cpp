#include "wave/wave_header.h"

#include "wave/pcm_samples.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <span>
#include <utility>

namespace av::wave {

namespace {

using Bytes = std::span<const std::uint8_t>;

constexpr std::size_t riffHeaderBytes = 12;
constexpr std::size_t chunkHeaderBytes = 8;
constexpr std::size_t pcmFormatBytes = 16;       // without the extension size
constexpr std::size_t standardFormatBytes = 18;  // with it
constexpr std::size_t extensibleFormatBytes = 40;
constexpr std::size_t longestFormatBytes = 180;  // what the controls keep of a format
constexpr std::uint16_t tagPcm = 1;
constexpr std::uint16_t tagFloat = 3;
constexpr std::uint16_t tagExtensible = 0xFFFE;
constexpr std::uint32_t openSize = 0xFFFFFFFF;
constexpr int mostChunks = 100'000;  // more than any writer makes: a damaged file is not searched for ever

/// The common tail of the sub-format identifiers that stand for a format tag (KSDATAFORMAT_SUBTYPE_...).
constexpr std::array<std::uint8_t, 14> subformatTail = {0x00, 0x00, 0x00, 0x00, 0x10, 0x00, 0x80,
                                                        0x00, 0x00, 0xAA, 0x00, 0x38, 0x9B, 0x71};

std::uint16_t word(Bytes bytes, std::size_t at) { return static_cast<std::uint16_t>(bytes[at] | bytes[at + 1] << 8); }

std::uint32_t doubleWord(Bytes bytes, std::size_t at) {
  return word(bytes, at) | static_cast<std::uint32_t>(word(bytes, at + 2)) << 16;
}

std::uint64_t quadWord(Bytes bytes, std::size_t at) {
  return doubleWord(bytes, at) | static_cast<std::uint64_t>(doubleWord(bytes, at + 4)) << 32;
}

bool hasName(Bytes bytes, std::size_t at, const char* name) { return std::memcmp(&bytes[at], name, 4) == 0; }

HeaderResult refuse(std::string problem) { return {std::nullopt, std::move(problem)}; }

std::string hex(std::uint16_t value) {
  constexpr char digits[] = "0123456789ABCDEF";
  std::string text = "0x";
  for (int shift = 12; shift >= 0; shift -= 4) text += digits[value >> shift & 15];
  return text;
}

std::vector<std::uint8_t> readBytes(ByteSource& file, std::uint64_t at, std::size_t count) {
  std::vector<std::uint8_t> bytes(count);
  bytes.resize(file.read(at, bytes));
  return bytes;
}

/// The two chunks that matter.
struct Chunks {
  std::optional<std::vector<std::uint8_t>> format;
  std::optional<std::uint64_t> dataOffset;
  std::uint64_t dataBytes = 0;
  std::uint64_t longDataBytes = 0;  ///< what a "ds64" chunk says; 0: nothing

  [[nodiscard]] bool complete() const { return format && dataOffset; }
};

/// Whether a format or data chunk begins there: the one before it was written without its padding byte.
bool isChunkThatMatters(ByteSource& file, std::uint64_t at) {
  const auto name = readBytes(file, at, 4);
  return name.size() == 4 && (hasName(name, 0, "fmt ") || hasName(name, 0, "data"));
}

Chunks findChunks(ByteSource& file, std::uint32_t riffSize) {
  const bool riffSizeFits = riffSize == file.size() - chunkHeaderBytes;
  Chunks found;
  std::uint64_t at = riffHeaderBytes;
  for (int count = 0; count < mostChunks && !found.complete(); ++count) {
    const auto header = readBytes(file, at, chunkHeaderBytes);
    if (header.size() < chunkHeaderBytes) break;
    at += chunkHeaderBytes;
    const std::uint32_t size = doubleWord(header, 4);
    const std::uint64_t rest = file.size() - at;
    const bool isData = hasName(header, 0, "data");
    const bool isOpen = isData && (size == openSize || (size == 0 && !riffSizeFits));
    std::uint64_t length = std::min<std::uint64_t>(size, rest);
    if (isOpen) length = found.longDataBytes > 0 ? std::min(found.longDataBytes, rest) : rest;
    if (isData && !found.dataOffset) {
      found.dataOffset = at;
      found.dataBytes = length;
    }
    if (hasName(header, 0, "fmt ") && !found.format)
      found.format = readBytes(file, at, static_cast<std::size_t>(std::min<std::uint64_t>(length, longestFormatBytes)));
    if (hasName(header, 0, "ds64") && length >= 16) {
      if (const auto sizes = readBytes(file, at, 16); sizes.size() == 16) found.longDataBytes = quadWord(sizes, 8);
    }
    at += length;
    if (length % 2 != 0 && !isChunkThatMatters(file, at)) ++at;
  }
  return found;
}

/// The format tag that the samples have in the end: an extensible header names it in its sub-format.
std::optional<std::uint16_t> effectiveTag(Bytes format) {
  const std::uint16_t tag = word(format, 0);
  if (tag != tagExtensible) return tag;
  if (format.size() < extensibleFormatBytes) return std::nullopt;
  if (!std::ranges::equal(format.subspan(26, subformatTail.size()), subformatTail)) return std::nullopt;
  return word(format, 24);
}

std::vector<std::uint8_t> completedFormat(std::vector<std::uint8_t> bytes) {
  const bool hasExtensionSize = bytes.size() >= standardFormatBytes;
  if (!hasExtensionSize) bytes.resize(standardFormatBytes);
  // The extension cannot be longer than what follows.
  const std::size_t follows = bytes.size() - standardFormatBytes;
  const std::size_t extension = hasExtensionSize ? std::min<std::size_t>(word(bytes, 16), follows) : 0;
  bytes[16] = static_cast<std::uint8_t>(extension);  // below 256, since the format is cut to 180 bytes
  bytes[17] = 0;
  return bytes;
}

/// What is wrong with the numbers of a header; empty when nothing is.
std::string problemOf(const WaveHeader& header, std::uint16_t blockAlign) {
  const unsigned bits = header.bitsPerSample;
  if (header.channels == 0) return "the header says 0 channels";
  if (header.channels > mostChannels)
    return std::to_string(header.channels) + " channels; at most " + std::to_string(mostChannels) + " are supported";
  if (header.kind == SampleKind::floatingPoint && bits != 32 && bits != 64)
    return std::to_string(bits) + "-bit floating-point samples; 32 and 64 are supported";
  if (header.kind == SampleKind::integer && (bits % 8 != 0 || bits < 8 || bits > 32))
    return std::to_string(bits) + "-bit samples; 8, 16, 24 and 32 are supported";
  if (header.sampleRateHz == 0 || header.sampleRateHz > highestSampleRateHz)
    return "the header says a sample rate of " + std::to_string(header.sampleRateHz) + " Hz";
  if (blockAlign != header.bytesPerFrame())
    return "the header says frames of " + std::to_string(blockAlign) + " bytes, its samples make " +
           std::to_string(header.bytesPerFrame());
  return {};
}

}  // namespace

HeaderResult readHeader(ByteSource& file) {
  const auto riff = readBytes(file, 0, riffHeaderBytes);
  if (riff.empty()) return refuse("the file is empty");
  if (riff.size() < riffHeaderBytes || !hasName(riff, 8, "WAVE")) return refuse("not a WAV file");
  if (hasName(riff, 0, "RIFX")) return refuse("a big-endian WAV file (RIFX), which is not supported");
  if (!hasName(riff, 0, "RIFF") && !hasName(riff, 0, "RF64")) return refuse("not a WAV file");

  Chunks chunks = findChunks(file, doubleWord(riff, 4));
  if (!chunks.format) return refuse("a WAV file without a format chunk");
  const Bytes format = *chunks.format;
  if (format.size() < pcmFormatBytes) return refuse("the format chunk is too short");
  const std::optional<std::uint16_t> tag = effectiveTag(format);
  if (!tag) return refuse("the extensible format names no known sample type");
  if (*tag != tagPcm && *tag != tagFloat)
    return refuse("samples in format " + hex(*tag) + "; integer PCM and floating point are supported");

  WaveHeader header;
  header.kind = *tag == tagFloat ? SampleKind::floatingPoint : SampleKind::integer;
  header.channels = word(format, 2);
  header.sampleRateHz = doubleWord(format, 4);
  header.bitsPerSample = word(format, 14);
  if (std::string problem = problemOf(header, word(format, 12)); !problem.empty()) return refuse(std::move(problem));
  if (!chunks.dataOffset) return refuse("a WAV file without a data chunk");
  header.dataOffset = *chunks.dataOffset;
  header.dataBytes = chunks.dataBytes - chunks.dataBytes % header.bytesPerFrame();
  header.format = completedFormat(std::move(*chunks.format));
  return {std::move(header), {}};
}

}  // namespace av::wave
