#pragma once

#include "common/audio_block.h"
#include "common/win/host_buffers.h"

#include <wrl/client.h>

namespace av {

/// One SendAudioData argument, unpacked: asks the host's object for its format and samples and holds its interfaces
/// for as long as the samples may be read, that is until this object is destroyed.
///
/// The conversation is fixed, since hosts count on it: both interfaces are queried, IAudioFrameData first; then the
/// packed buffer is asked GetBufferSize, GetBuffer, GetBufferSize, GetDataSize, GetBuffer (it stops after the first or
/// second question when there is no room for a header or no buffer); then the frame data is asked GetFormatSize,
/// GetFormat, GetBuffer, GetDataSize, and what it answers wins. Nothing else is called, save for error information.
class AudioInput {
 public:
  /// Holds the whole conversation. [control thread or audio thread; the control's mutex, where it has one, is held]
  /// Throws `_com_error`, with every interface released, when a host method answers with a failure, and with E_POINTER
  /// when `audioData` is null: what a null argument means is each control's own affair.
  explicit AudioInput(IUnknown* audioData);

  AudioInput(const AudioInput&) = delete;
  AudioInput& operator=(const AudioInput&) = delete;

  /// The block, valid while this object lives. Null where the block is dropped: neither interface, a format tag other
  /// than PCM and extensible, 0 channels or fewer than 8 bits, no header, no format or no samples behind a pointer.
  /// Its sample bytes may be zero or negative (no frames).
  const AudioBlock* block() const noexcept { return m_accepted ? &m_block : nullptr; }

 private:
  void readPacked();
  void readFrameData();

  Microsoft::WRL::ComPtr<IAudioFrameData> m_frameData;
  Microsoft::WRL::ComPtr<IPackedAudioData> m_packedData;
  AudioBlock m_block;
  bool m_accepted = false;
};

}  // namespace av
