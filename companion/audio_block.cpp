#include "companion/audio_block.h"

#include "companion/array_argument.h"

#include <cmath>
#include <string>

namespace av::companion {

namespace {

/// Samples come a frame at a time.
void requireWholeFrames(std::size_t samples, const wave::PcmFormat& format) {
  if (samples % format.channels == 0) return;
  throw badArgument(std::to_wstring(samples) + L" values make no whole frames of " + std::to_wstring(format.channels) +
                    L" channels.");
}

void requireRoom(std::size_t samples, const wave::PcmFormat& format) {
  if (samples > wave::mostBlockBytes / (format.storedBits() / 8u)) throw badArgument(L"a block holds at most 2 GB.");
}

/// What a number that is out of range is told.
std::wstring thereAre(LONG count, const std::wstring& what) {
  if (count == 1) return L"there is 1 " + what + L", counted from 0.";
  return L"there are " + std::to_wstring(count) + L" " + what + L"s, counted from 0.";
}

}  // namespace

void* AudioBlockObject::findInterface(REFIID iid) noexcept {
  if (iid == __uuidof(avhost::IAudioFrameData) || iid == __uuidof(avhost::IMediaDataBuffer))
    return static_cast<avhost::IAudioFrameData*>(&m_frames);
  return AutomationObject::findInterface(iid);
}

STDMETHODIMP AudioBlockObject::SetFormat(LONG channels, LONG sampleRateHz, LONG bitsPerSample) {
  return guard(L"SetFormat", [&] {
    if (channels < 1 || channels > static_cast<LONG>(wave::mostChannels))
      throw badArgument(L"there must be 1 to 18 channels.");
    if (sampleRateHz < 1 || sampleRateHz > static_cast<LONG>(wave::highestSampleRateHz))
      throw badArgument(L"the sample rate must be 1 to 10000000 Hz.");
    if (bitsPerSample != 8 && bitsPerSample != 16 && bitsPerSample != 24 && bitsPerSample != 32)
      throw badArgument(L"samples must have 8, 16, 24 or 32 bits.");
    m_content = {{static_cast<std::uint16_t>(channels), static_cast<std::uint32_t>(sampleRateHz),
                  static_cast<std::uint16_t>(bitsPerSample)},
                 {}};
  });
}

STDMETHODIMP AudioBlockObject::SetSamples(VARIANT values) {
  return guard(L"SetSamples", [&] {
    const std::vector<double> numbers = numbersOf(values);
    const wave::PcmFormat& format = m_content.format;
    requireWholeFrames(numbers.size(), format);
    requireRoom(numbers.size(), format);
    const unsigned bits = format.bitsPerSample;
    std::vector<std::uint8_t> stored;
    stored.reserve(numbers.size() * (format.storedBits() / 8u));
    for (const double number : numbers) wave::storeInteger(wave::integerFromUnit(number, bits), bits, stored);
    m_content.stored.swap(stored);
  });
}

STDMETHODIMP AudioBlockObject::SetIntegers(VARIANT values) {
  return guard(L"SetIntegers", [&] {
    const std::vector<double> numbers = numbersOf(values);
    const wave::PcmFormat& format = m_content.format;
    requireWholeFrames(numbers.size(), format);
    requireRoom(numbers.size(), format);
    const unsigned bits = format.bitsPerSample;
    const wave::IntegerRange range = wave::integerRange(bits);
    std::vector<std::uint8_t> stored;
    stored.reserve(numbers.size() * (format.storedBits() / 8u));
    for (std::size_t index = 0; index < numbers.size(); ++index) {
      const double number = numbers[index];
      if (!(number >= range.lowest && number <= range.highest) || number != std::floor(number))
        throw badArgument(L"element " + std::to_wstring(index) + L" is no whole number of " + std::to_wstring(bits) +
                          (bits == 8 ? L" bits (0 to 255)." : L" bits."));
      wave::storeInteger(static_cast<std::int32_t>(number), bits, stored);
    }
    m_content.stored.swap(stored);
  });
}

STDMETHODIMP AudioBlockObject::SetBytes(VARIANT values) {
  return guard(L"SetBytes", [&] {
    const std::vector<std::uint8_t> bytes = bytesOf(values);
    const wave::PcmFormat& format = m_content.format;
    if (bytes.size() % format.packedFrameBytes() != 0)
      throw badArgument(std::to_wstring(bytes.size()) + L" bytes make no whole frames of " +
                        std::to_wstring(format.packedFrameBytes()) + L" bytes.");
    requireRoom(bytes.size() / (format.bitsPerSample / 8u), format);
    std::vector<std::uint8_t> stored;
    wave::storePacked(bytes, format.bitsPerSample, stored);
    m_content.stored.swap(stored);
  });
}

STDMETHODIMP AudioBlockObject::get_Channels(LONG* value) {
  return answer(L"Channels", value, [&] { return LONG{m_content.format.channels}; });
}

STDMETHODIMP AudioBlockObject::get_SampleRate(LONG* value) {
  return answer(L"SampleRate", value, [&] { return static_cast<LONG>(m_content.format.sampleRateHz); });
}

STDMETHODIMP AudioBlockObject::get_BitsPerSample(LONG* value) {
  return answer(L"BitsPerSample", value, [&] { return LONG{m_content.format.bitsPerSample}; });
}

STDMETHODIMP AudioBlockObject::get_Frames(LONG* value) {
  return answer(L"Frames", value, [&] { return static_cast<LONG>(m_content.frameCount()); });
}

STDMETHODIMP AudioBlockObject::get_Duration(double* value) {
  return answer(L"Duration", value,
                [&] { return static_cast<double>(m_content.frameCount()) / m_content.format.sampleRateHz; });
}

STDMETHODIMP AudioBlockObject::get_Sample(LONG frame, LONG channel, double* value) {
  return answer(L"Sample", value, [&] {
    const wave::PcmFormat& format = m_content.format;
    const auto frames = static_cast<LONG>(m_content.frameCount());
    if (frame < 0 || frame >= frames) throw badArgument(thereAre(frames, L"frame"));
    if (channel < 0 || channel >= format.channels) throw badArgument(thereAre(format.channels, L"channel"));
    const std::size_t index = static_cast<std::size_t>(frame) * format.channels + static_cast<std::size_t>(channel);
    return wave::unitSample(m_content.stored, format.bitsPerSample, index);
  });
}

IAudioBlock* makeAudioBlock(BlockContent content) {
  auto* const block = new AudioBlockObject(nullptr);
  block->setContent(std::move(content));
  return block;
}

HRESULT createAudioBlock(IUnknown* outer, REFIID iid, void** object) {
  return ole::createObject<AudioBlockObject>(outer, iid, object);
}

}  // namespace av::companion
