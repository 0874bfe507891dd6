#pragma once

#include "host/audio_buffers.h"
#include "ole/object.h"
#include "wave/pcm_samples.h"

#include <vector>

namespace av::companion {

/// The samples of a block: what the controls ask it for.
struct BlockContent {
  wave::PcmFormat format;
  std::vector<std::uint8_t> stored;

  [[nodiscard]] std::size_t frameCount() const noexcept { return stored.size() / format.storedFrameBytes(); }
};

/// The host's buffer interface as a part of a block. No method of it fails, so SendAudioData never throws.
class AudioFrames final
    : public avhost::UnusedFrameSlots<avhost::UnusedBufferSlots<ole::Delegating<avhost::IAudioFrameData>>> {
 public:
  /// `content` belongs to the same object.
  AudioFrames(ole::Object& object, BlockContent& content) noexcept : UnusedFrameSlots(object), m_content(content) {}

  STDMETHODIMP GetBuffer(BYTE** buffer) override {
    if (!buffer) return E_POINTER;
    *buffer = m_content.stored.empty() ? nullptr : m_content.stored.data();
    return S_OK;
  }
  STDMETHODIMP GetBufferSize(LONG* bytes) override { return GetDataSize(bytes); }
  STDMETHODIMP GetDataSize(LONG* bytes) override {
    if (!bytes) return E_POINTER;
    *bytes = static_cast<LONG>(m_content.stored.size());
    return S_OK;
  }
  STDMETHODIMP GetFormat(BYTE** format) override {
    if (!format) return E_POINTER;
    const wave::PcmFormat& pcm = m_content.format;
    const auto frameBytes = static_cast<WORD>(pcm.storedFrameBytes());
    m_header = {WAVE_FORMAT_PCM,
                pcm.channels,
                pcm.sampleRateHz,
                pcm.sampleRateHz * frameBytes,
                frameBytes,
                static_cast<WORD>(pcm.storedBits()),
                0};
    *format = reinterpret_cast<BYTE*>(&m_header);
    return S_OK;
  }
  STDMETHODIMP GetFormatSize(ULONG* bytes) override {
    if (!bytes) return E_POINTER;
    *bytes = sizeof m_header;
    return S_OK;
  }

 private:
  BlockContent& m_content;
  WAVEFORMATEX m_header = {};
};

}  // namespace av::companion
