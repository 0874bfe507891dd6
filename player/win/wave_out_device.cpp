#include "player/win/wave_out_device.h"

#include <mmreg.h>

namespace avplayer {

bool WaveOutDevice::open(std::uint32_t sampleRateHz) {
  close();
  const WAVEFORMATEX format = {WAVE_FORMAT_PCM, 2, sampleRateHz, sampleRateHz * 4, 4, 16, 0};
  const MMRESULT result =
      waveOutOpen(&m_device, WAVE_MAPPER, &format, reinterpret_cast<DWORD_PTR>(m_bufferDone), 0, CALLBACK_EVENT);
  if (result != MMSYSERR_NOERROR) m_device = nullptr;
  return m_device != nullptr;
}

void WaveOutDevice::close() {
  if (!m_device) return;
  // Gives all buffers back; a device that was unplugged may refuse it, and is closed all the same.
  waveOutReset(m_device);
  for (Buffer& buffer : m_buffers) {
    if (buffer.queued) waveOutUnprepareHeader(m_device, &buffer.header, sizeof buffer.header);
    buffer.queued = false;
  }
  waveOutClose(m_device);
  m_device = nullptr;
}

int WaveOutDevice::freeBuffers() {
  if (!m_device) return -1;
  int count = 0;
  for (const Buffer& buffer : m_buffers) count += isFree(buffer) ? 1 : 0;
  return count;
}

bool WaveOutDevice::write(std::span<const std::int16_t> stereo) {
  if (!m_device) return false;
  for (Buffer& buffer : m_buffers) {
    if (!isFree(buffer)) continue;
    if (buffer.queued) waveOutUnprepareHeader(m_device, &buffer.header, sizeof buffer.header);
    buffer.queued = false;
    buffer.samples.assign(stereo.begin(), stereo.end());
    buffer.header = {};
    buffer.header.lpData = reinterpret_cast<char*>(buffer.samples.data());
    buffer.header.dwBufferLength = static_cast<DWORD>(buffer.samples.size() * sizeof buffer.samples[0]);
    if (waveOutPrepareHeader(m_device, &buffer.header, sizeof buffer.header) != MMSYSERR_NOERROR) return false;
    buffer.queued = true;
    if (waveOutWrite(m_device, &buffer.header, sizeof buffer.header) == MMSYSERR_NOERROR) return true;
    waveOutUnprepareHeader(m_device, &buffer.header, sizeof buffer.header);
    buffer.queued = false;
    return false;
  }
  return false;
}

std::optional<std::int64_t> WaveOutDevice::playedFrames() {
  MMTIME time = {};
  time.wType = TIME_SAMPLES;
  if (!m_device || waveOutGetPosition(m_device, &time, sizeof time) != MMSYSERR_NOERROR) return std::nullopt;
  // A driver that knows no samples answers in bytes.
  if (time.wType == TIME_SAMPLES) return std::int64_t{time.u.sample};
  if (time.wType == TIME_BYTES) return std::int64_t{time.u.cb} / 4;
  return std::nullopt;
}

bool WaveOutDevice::empty() { return m_device && waveOutReset(m_device) == MMSYSERR_NOERROR; }
bool WaveOutDevice::pause() { return m_device && waveOutPause(m_device) == MMSYSERR_NOERROR; }
bool WaveOutDevice::resume() { return m_device && waveOutRestart(m_device) == MMSYSERR_NOERROR; }

}  // namespace avplayer
