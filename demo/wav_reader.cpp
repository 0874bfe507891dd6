#include "demo/wav_reader.h"

#include "wave/pcm_samples.h"
#include "wave/wave_header.h"
#include "wave/wave_reader.h"

#include <utility>

namespace avdemo {

namespace {

namespace wave = av::wave;

/// The header of plain integer PCM.
std::vector<std::uint8_t> plainFormat(const wave::PcmFormat& pcm) {
  std::vector<std::uint8_t> bytes;
  const auto append = [&bytes](std::size_t value, int count) {
    for (int i = 0; i < count; ++i) bytes.push_back(static_cast<std::uint8_t>(value >> (8 * i)));
  };
  append(1, 2);
  append(pcm.channels, 2);
  append(pcm.sampleRateHz, 4);
  append(pcm.sampleRateHz * pcm.storedFrameBytes(), 4);
  append(pcm.storedFrameBytes(), 2);
  append(pcm.storedBits(), 2);
  append(0, 2);
  return bytes;
}

}  // namespace

double WavRecording::sample(std::size_t frame, std::size_t channel) const noexcept {
  return wave::unitSample(samples, bitsPerSample, frame * channels + channel);
}

WavResult readWav(std::span<const std::uint8_t> file) {
  wave::MemorySource source(file);
  wave::HeaderResult found = wave::readHeader(source);
  if (!found.header) return {std::nullopt, std::move(found.problem)};
  wave::WaveReader reader(source, *found.header);
  if (reader.frameCount() == 0) return {std::nullopt, "the file holds no samples"};

  const wave::PcmFormat& pcm = reader.blockFormat();
  const bool asInFile = found.header->kind == wave::SampleKind::integer && pcm.storedBits() == pcm.bitsPerSample;
  WavRecording recording;
  recording.channels = pcm.channels;
  recording.bitsPerSample = static_cast<std::uint16_t>(pcm.storedBits());
  recording.fileBitsPerSample = found.header->bitsPerSample;
  recording.sampleRateHz = pcm.sampleRateHz;
  recording.format = asInFile ? std::move(found.header->format) : plainFormat(pcm);
  recording.samples = reader.read(reader.frameCount());
  return {std::move(recording), {}};
}

}  // namespace avdemo
