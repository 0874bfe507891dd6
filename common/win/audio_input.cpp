#include "common/win/audio_input.h"

#include "common/win/host_error.h"

#include <algorithm>
#include <cstring>
#include <limits>

namespace av {

namespace {

using Microsoft::WRL::ComPtr;

// An object that does not offer the interface leaves the pointer null, whatever it answers or writes.
template <class Interface>
ComPtr<Interface> query(IUnknown* object) {
  void* found = nullptr;
  ComPtr<Interface> result;
  if (SUCCEEDED(object->QueryInterface(__uuidof(Interface), &found))) {
    *result.GetAddressOf() = static_cast<Interface*>(found);  // MinGW's Attach() would add a reference
  }
  return result;
}

// Calls one getter. A host may declare error information for the interface that is held or for the one that
// introduces the method; both mean this call.
template <class Interface, class Declaring, class Result>
Result ask(Interface* object, HRESULT (STDMETHODCALLTYPE Declaring::*getter)(Result*)) {
  Result result{};
  const HRESULT status = (object->*getter)(&result);
  if (FAILED(status)) raiseHostError(status, object, {__uuidof(Interface), __uuidof(Declaring)});
  return result;
}

void copyHeader(AudioFormatBlock& format, const BYTE* source, std::size_t bytes) {
  std::memcpy(&format, source, std::min(bytes, sizeof format));
}

}  // namespace

AudioInput::AudioInput(IUnknown* audioData) {
  if (audioData == nullptr) raiseHostError(E_POINTER, nullptr, {});
  m_frameData = query<IAudioFrameData>(audioData);
  m_packedData = query<IPackedAudioData>(audioData);
  if (m_packedData != nullptr) readPacked();
  if (m_frameData != nullptr) readFrameData();
  m_accepted = m_block.samples != nullptr && isAcceptedFormatTag(m_block.format.wFormatTag) &&
               frameCount(m_block.format, m_block.sampleBytes).has_value();
}

void AudioInput::readPacked() {
  IPackedAudioData* const data = m_packedData.Get();
  const LONG headerRoom = ask(data, &IMediaDataBuffer::GetBufferSize);
  if (headerRoom <= LONG{waveHeaderBytes}) return;
  const BYTE* const header = ask(data, &IMediaDataBuffer::GetBuffer);
  if (header == nullptr) return;
  copyHeader(m_block.format, header, waveHeaderBytes);
  const LONG headerBytes = LONG{waveHeaderBytes} + m_block.format.cbSize;

  const LONG bufferBytes = ask(data, &IMediaDataBuffer::GetBufferSize);
  // This pointer was handed out under the first size, so that one bounds what is read through it.
  if (bufferBytes > headerBytes) {
    copyHeader(m_block.format, header, static_cast<std::size_t>(std::min(headerBytes, headerRoom)));
  }
  const LONG dataBytes = ask(data, &IMediaDataBuffer::GetDataSize);
  const BYTE* const buffer = ask(data, &IMediaDataBuffer::GetBuffer);

  // The valid bytes may be claimed to exceed the buffer, and a subtraction from the lowest size would wrap.
  const std::int64_t sampleBytes = std::int64_t{std::min(dataBytes, bufferBytes)} - headerBytes;
  m_block.sampleBytes =
      static_cast<std::int32_t>(std::max<std::int64_t>(sampleBytes, std::numeric_limits<std::int32_t>::min()));
  // Without samples the position behind the header may lie outside the buffer; it is not formed then.
  m_block.samples = buffer != nullptr && sampleBytes > 0 ? buffer + headerBytes : buffer;
}

void AudioInput::readFrameData() {
  IAudioFrameData* const data = m_frameData.Get();
  const ULONG formatBytes = ask(data, &IAudioFrameData::GetFormatSize);
  const BYTE* const format = ask(data, &IAudioFrameData::GetFormat);
  // Copied before the next question: a host method may replace what an earlier one handed out.
  if (format != nullptr) copyHeader(m_block.format, format, formatBytes);
  const BYTE* const samples = ask(data, &IMediaDataBuffer::GetBuffer);
  m_block.sampleBytes = ask(data, &IMediaDataBuffer::GetDataSize);
  m_block.samples = format != nullptr ? samples : nullptr;
}

}  // namespace av
