#include "demo/wav_reader.h"

#include <algorithm>
#include <cstring>

namespace avdemo {

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
constexpr unsigned mostChannels = 18;
constexpr std::uint32_t highestSampleRateHz = 10'000'000;  // beyond any converter: a damaged header
constexpr std::uint32_t openSize = 0xFFFFFFFF;

/// The common tail of the sub-format identifiers that stand for a format tag (KSDATAFORMAT_SUBTYPE_...).
constexpr std::uint8_t subformatTail[14] = {0x00, 0x00, 0x00, 0x00, 0x10, 0x00, 0x80,
                                            0x00, 0x00, 0xAA, 0x00, 0x38, 0x9B, 0x71};

std::uint16_t word(Bytes bytes, std::size_t at) { return static_cast<std::uint16_t>(bytes[at] | bytes[at + 1] << 8); }

std::uint32_t doubleWord(Bytes bytes, std::size_t at) {
  return word(bytes, at) | static_cast<std::uint32_t>(word(bytes, at + 2)) << 16;
}

bool hasName(Bytes bytes, std::size_t at, const char* name) { return std::memcmp(&bytes[at], name, 4) == 0; }

WavResult refuse(std::string problem) { return {std::nullopt, std::move(problem)}; }

std::string hex(std::uint16_t value) {
  constexpr char digits[] = "0123456789ABCDEF";
  std::string text = "0x";
  for (int shift = 12; shift >= 0; shift -= 4) text += digits[value >> shift & 15];
  return text;
}

/// The two chunks that matter.
struct Chunks {
  std::optional<Bytes> format;
  std::optional<Bytes> data;
};

Chunks findChunks(Bytes file) {
  const bool riffSizeFits = doubleWord(file, 4) == file.size() - chunkHeaderBytes;
  Chunks found;
  std::size_t at = riffHeaderBytes;
  while (file.size() - at >= chunkHeaderBytes && !(found.format && found.data)) {
    const std::uint32_t size = doubleWord(file, at + 4);
    const Bytes rest = file.subspan(at + chunkHeaderBytes);
    const bool isData = hasName(file, at, "data");
    const bool isOpen = isData && (size == openSize || (size == 0 && !riffSizeFits));
    const std::size_t length = isOpen ? rest.size() : std::min<std::size_t>(size, rest.size());
    if (isData && !found.data) found.data = rest.first(length);
    if (hasName(file, at, "fmt ") && !found.format) found.format = rest.first(length);
    const std::size_t padding = length < rest.size() ? length % 2 : 0;
    at += chunkHeaderBytes + length + padding;
  }
  return found;
}

/// The format tag that the samples have in the end: an extensible header names it in its sub-format.
std::optional<std::uint16_t> effectiveTag(Bytes format) {
  const std::uint16_t tag = word(format, 0);
  if (tag != tagExtensible) return tag;
  if (format.size() < extensibleFormatBytes) return std::nullopt;
  if (std::memcmp(&format[26], subformatTail, sizeof subformatTail) != 0) return std::nullopt;
  return word(format, 24);
}

std::vector<std::uint8_t> completedFormat(Bytes format) {
  std::vector<std::uint8_t> bytes(
      format.begin(), format.begin() + static_cast<std::ptrdiff_t>(std::min(format.size(), longestFormatBytes)));
  if (bytes.size() < standardFormatBytes) bytes.resize(standardFormatBytes);
  // The extension cannot be longer than what follows.
  const std::size_t extension = std::min<std::size_t>(word(bytes, 16), bytes.size() - standardFormatBytes);
  if (format.size() < standardFormatBytes || extension != word(bytes, 16)) {
    bytes[16] = static_cast<std::uint8_t>(format.size() < standardFormatBytes ? 0 : extension);
    bytes[17] = 0;
  }
  return bytes;
}

}  // namespace

double WavRecording::sample(std::size_t frame, std::size_t channel) const noexcept {
  const std::size_t width = bitsPerSample / 8u;
  const std::uint8_t* bytes = &samples[frame * bytesPerFrame() + channel * width];
  std::uint32_t raw = 0;  // the sample's bytes at the top of 32 bits, so that its sign bit is the word's
  for (std::size_t i = 0; i < width; ++i) raw |= static_cast<std::uint32_t>(bytes[i]) << (8 * (4 - width + i));
  if (width == 1) raw ^= 0x80000000u;  // 8-bit samples are unsigned around 128
  return static_cast<std::int32_t>(raw) / 2147483648.0;
}

WavResult readWav(Bytes file) {
  if (file.empty()) return refuse("the file is empty");
  if (file.size() < riffHeaderBytes || !hasName(file, 8, "WAVE")) return refuse("not a WAV file");
  if (hasName(file, 0, "RIFX")) return refuse("a big-endian WAV file (RIFX), which is not supported");
  if (!hasName(file, 0, "RIFF") && !hasName(file, 0, "RF64")) return refuse("not a WAV file");

  const Chunks chunks = findChunks(file);
  if (!chunks.format) return refuse("a WAV file without a format chunk");
  const Bytes format = *chunks.format;
  if (format.size() < pcmFormatBytes) return refuse("the format chunk is too short");

  const std::optional<std::uint16_t> tag = effectiveTag(format);
  if (!tag) return refuse("the extensible format names no known sample type");
  if (*tag == tagFloat) return refuse("floating-point samples; only integer PCM is supported");
  if (*tag != tagPcm) return refuse("samples in format " + hex(*tag) + "; only integer PCM is supported");

  WavRecording recording;
  recording.channels = word(format, 2);
  recording.sampleRateHz = doubleWord(format, 4);
  recording.bitsPerSample = word(format, 14);
  const std::uint16_t blockAlign = word(format, 12);
  if (recording.channels == 0) return refuse("the header says 0 channels");
  if (recording.channels > mostChannels)
    return refuse(std::to_string(recording.channels) + " channels; at most 18 are supported");
  if (recording.bitsPerSample % 8 != 0 || recording.bitsPerSample < 8 || recording.bitsPerSample > 32)
    return refuse(std::to_string(recording.bitsPerSample) + "-bit samples; 8, 16, 24 and 32 are supported");
  if (recording.sampleRateHz == 0 || recording.sampleRateHz > highestSampleRateHz)
    return refuse("the header says a sample rate of " + std::to_string(recording.sampleRateHz) + " Hz");
  if (blockAlign != recording.bytesPerFrame())
    return refuse("the header says frames of " + std::to_string(blockAlign) + " bytes, its samples make " +
                  std::to_string(recording.bytesPerFrame()));

  if (!chunks.data) return refuse("a WAV file without a data chunk");
  const std::size_t usedBytes = chunks.data->size() - chunks.data->size() % recording.bytesPerFrame();
  if (usedBytes == 0) return refuse("the file holds no samples");
  recording.format = completedFormat(format);
  recording.samples.assign(chunks.data->begin(), chunks.data->begin() + static_cast<std::ptrdiff_t>(usedBytes));
  return {std::move(recording), {}};
}

}  // namespace avdemo
