#include "player/win/file_sound.h"

#include "demo/wav_reader.h"

#include <cmath>
#include <fstream>
#include <iterator>
#include <new>
#include <vector>

namespace avplayer {

namespace {

namespace fs = std::filesystem;

std::shared_ptr<const Sound> convert(const avdemo::WavRecording& recording) {
  auto sound = std::make_shared<Sound>();
  sound->sampleRateHz = recording.sampleRateHz;
  sound->channels = recording.channels;
  sound->samples.reserve(recording.frameCount() * recording.channels);
  for (std::size_t frame = 0; frame < recording.frameCount(); ++frame)
    for (std::size_t channel = 0; channel < recording.channels; ++channel)
      sound->samples.push_back(static_cast<std::int16_t>(std::floor(recording.sample(frame, channel) * 32768)));
  return sound;
}

std::wstring describe(const avdemo::WavRecording& recording) {
  wchar_t rate[32];
  std::swprintf(rate, std::size(rate), L"%g kHz", recording.sampleRateHz / 1000.0);
  const std::wstring channels = recording.channels == 1   ? L"mono"
                                : recording.channels == 2 ? L"stereo"
                                                          : std::to_wstring(recording.channels) + L" channels";
  return std::wstring(rate) + L", " + std::to_wstring(recording.fileBitsPerSample) + L" bits, " + channels;
}

FileSound read(const fs::path& path) {
  std::error_code error;
  if (!fs::exists(path, error)) return {nullptr, {}, L"no such file"};
  if (fs::is_directory(path, error)) return {nullptr, {}, L"a folder, not a file"};
  std::ifstream file(path, std::ios::binary);
  if (!file) return {nullptr, {}, L"cannot be opened"};
  const std::vector<char> chars(std::istreambuf_iterator<char>(file), {});
  const std::vector<std::uint8_t> bytes(chars.begin(), chars.end());
  const avdemo::WavResult result = avdemo::readWav(bytes);
  if (!result.recording) return {nullptr, {}, std::wstring(result.problem.begin(), result.problem.end())};
  return {convert(*result.recording), describe(*result.recording), {}};
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
