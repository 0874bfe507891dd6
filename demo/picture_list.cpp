#include "demo/picture_list.h"

#include "demo/failure.h"
#include "demo/named_properties.h"
#include "host/audio_buffers.h"

#include <wrl/client.h>

#include <algorithm>
#include <cmath>
#include <cstring>
#include <cwchar>
#include <fstream>

namespace avdemo {

namespace {

std::vector<std::wstring> fieldsOf(const std::string& line) {
  std::vector<std::wstring> fields(1);
  for (const char letter : line) {
    if (letter == '\t') fields.emplace_back();
    else if (letter != '\r') fields.back() += static_cast<wchar_t>(static_cast<unsigned char>(letter));
  }
  return fields;
}

const CLSID* controlNamed(const std::wstring& name) {
  if (name == L"view") return &CLSID_CAudioVisualization4Type1;
  if (name == L"meter") return &CLSID_CAudioVisualization4Type2;
  if (name == L"analyser") return &CLSID_CAudioVisualization4Type3;
  return nullptr;
}

/// The number behind `word` in a field that begins with it.
bool readNumber(const std::wstring& field, const wchar_t* word, unsigned& number) {
  const size_t length = std::wcslen(word);
  return field.compare(0, length, word) == 0 && std::swscanf(field.c_str() + length, L"%u", &number) == 1;
}

/// False where the line makes no sense.
bool parse(const std::vector<std::wstring>& fields, ListedPicture& picture) {
  if (fields.size() < 3) return false;
  picture.name = fields[0];
  picture.control = controlNamed(fields[1]);
  if (std::swscanf(fields[2].c_str(), L"%ldx%ld", &picture.sizePx.cx, &picture.sizePx.cy) != 2) return false;
  bool behind = false;
  for (size_t i = 3; i < fields.size(); ++i) {
    unsigned number = 0;
    if (readNumber(fields[i], L"frames=", number)) picture.blockFrames = number;
    else if (readNumber(fields[i], L"channels=", number)) picture.channels = static_cast<std::uint16_t>(number);
    else if (readNumber(fields[i], L"ticks=", number)) picture.ticks = number;
    else if (fields[i] == L"then") behind = true;
    else (behind ? picture.putsBehind : picture.puts).push_back(fields[i]);
  }
  return !picture.name.empty() && picture.control && picture.sizePx.cx > 0 && picture.sizePx.cy > 0 &&
         picture.blockFrames > 0 && picture.blockFrames <= 65536 && picture.channels > 0 && picture.channels <= 18;
}

/// The partials' own pseudo-random numbers, from −1 to 1 (a linear congruence, its factors those of Numerical Recipes).
class Noise {
 public:
  double next() {
    m_state = m_state * 1664525u + 1013904223u;
    return static_cast<double>(m_state >> 8) / 8388608.0 - 1;
  }

 private:
  std::uint32_t m_state = 4;
};

constexpr std::uint32_t sampleRateHz = 44100;
constexpr int partialCount = 44;

struct Partial {
  double turn, phase, amplitude, balance;
};

std::vector<Partial> partialsOf(bool loud, Noise& noise) {
  std::vector<Partial> partials;
  for (int i = 0; i < partialCount; ++i) {
    const double hz = 40 * std::pow(2.0, i * 8.6 / partialCount);
    const double unevenDb = 7 * noise.next();
    // The quiet block is duller, so that its ticks and bars differ more at high frequencies.
    const double levelDb = -12 - i * 0.6 + unevenDb - (loud ? 0 : 3 + i * 0.25);
    partials.push_back(
        {6.283185307179586 * hz / sampleRateHz, 3.14 * noise.next(), std::pow(10, levelDb / 20), 0.5 * noise.next()});
  }
  return partials;
}

void putAll(const std::wstring& picture, const std::vector<std::wstring>& puts, IDispatch& control) {
  for (const std::wstring& put : puts) {
    const Answer answer = putNamed(control, put);
    if (FAILED(answer.result)) throw Failure{picture + L": the control refuses " + put + L" " + answer.text};
  }
}

}  // namespace

std::vector<ListedPicture> readPictureList(const std::filesystem::path& file) {
  std::ifstream lines(file);
  if (!lines) throw Failure{L"cannot read the list " + file.wstring()};
  std::vector<ListedPicture> pictures;
  for (std::string line; std::getline(lines, line);) {
    if (line.empty() || line[0] == '#') continue;
    ListedPicture picture;
    if (!parse(fieldsOf(line), picture))
      throw Failure{L"no picture can be made of the line \"" + std::wstring(line.begin(), line.end()) + L"\""};
    pictures.push_back(picture);
  }
  if (pictures.empty()) throw Failure{L"there is no picture in the list " + file.wstring()};
  return pictures;
}

void prepare(const ListedPicture& picture, IAudioVisualizationTemplate& control) {
  constexpr unsigned ticksToRest = 60;
  putAll(picture.name, picture.puts, control);
  for (const bool loud : {true, false}) {
    const WavRecording sound = listedSound(picture.blockFrames, picture.channels, loud);
    const WAVEFORMATEX& format = *reinterpret_cast<const WAVEFORMATEX*>(sound.format.data());
    const auto bytes = static_cast<LONG>(sound.samples.size());
    require(control.SendAudioData(avhost::audioFrames(format, sound.samples.data(), bytes).get()), L"sending audio");
    // Its own timer cannot tick: no message is dispatched here.
    for (unsigned tick = 0; tick < (loud ? ticksToRest : picture.ticks); ++tick) control._OnTimer();
  }
  putAll(picture.name, picture.putsBehind, control);
}

WavRecording listedSound(std::uint32_t frames, std::uint16_t channels, bool loud) {
  Noise noise;
  const std::vector<Partial> partials = partialsOf(loud, noise);
  std::vector<std::int16_t> samples;
  samples.reserve(std::size_t{frames} * channels);
  for (std::uint32_t frame = 0; frame < frames; ++frame) {
    for (int channel = 0; channel < channels; ++channel) {
      double sum = 0.0004 * noise.next();
      for (const Partial& partial : partials) {
        const double side = channel % 2 == 0 ? 1 + partial.balance : 1 - partial.balance;
        sum += partial.amplitude * side * std::sin(partial.turn * frame + partial.phase + channel * 0.7);
      }
      samples.push_back(static_cast<std::int16_t>(std::lround(32767 * std::clamp(sum, -1.0, 1.0))));
    }
  }
  const auto blockAlign = static_cast<WORD>(channels * 2);
  const WAVEFORMATEX format = {WAVE_FORMAT_PCM, channels, sampleRateHz, sampleRateHz * blockAlign, blockAlign, 16, 0};
  WavRecording sound;
  sound.channels = channels;
  sound.bitsPerSample = 16;
  sound.sampleRateHz = sampleRateHz;
  sound.format.resize(sizeof format);
  std::memcpy(sound.format.data(), &format, sizeof format);
  sound.samples.resize(samples.size() * sizeof samples[0]);
  std::memcpy(sound.samples.data(), samples.data(), sound.samples.size());
  return sound;
}

}  // namespace avdemo
