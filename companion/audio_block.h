#pragma once

#include "companion/audio_frames.h"
#include "companion/automation_object.h"

#include <AudioBlocks.h>

namespace av::companion {

/// `AudioBlocks.AudioBlock`: a format and samples, which goes to SendAudioData as it is.
class AudioBlockObject final : public AutomationObject<IAudioBlock> {
 public:
  explicit AudioBlockObject(IUnknown* outer) noexcept : AutomationObject(outer, L"AudioBlock") {}

  /// Fills a new block.
  void setContent(BlockContent content) noexcept { m_content = std::move(content); }

  // IAudioBlock [control thread]
  STDMETHODIMP SetFormat(LONG channels, LONG sampleRateHz, LONG bitsPerSample) override;
  STDMETHODIMP SetSamples(VARIANT values) override;
  STDMETHODIMP SetIntegers(VARIANT values) override;
  STDMETHODIMP SetBytes(VARIANT values) override;
  STDMETHODIMP get_Channels(LONG* value) override;
  STDMETHODIMP get_SampleRate(LONG* value) override;
  STDMETHODIMP get_BitsPerSample(LONG* value) override;
  STDMETHODIMP get_Frames(LONG* value) override;
  STDMETHODIMP get_Duration(double* value) override;
  STDMETHODIMP get_Sample(LONG frame, LONG channel, double* value) override;

 private:
  void* findInterface(REFIID iid) noexcept override;
  void takeStored(std::vector<std::uint8_t> stored);

  BlockContent m_content;
  AudioFrames m_frames{*this, m_content};
};

/// A new block of that content, counted once. Throws std::bad_alloc.
IAudioBlock* makeAudioBlock(BlockContent content);

/// Makes an empty block; see ole::CreateFunction.
HRESULT createAudioBlock(IUnknown* outer, REFIID iid, void** object);

}  // namespace av::companion
