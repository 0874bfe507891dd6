// Sends the spectrum analyser one block after a put of FFTLength, for tests of what that does to a process:
//   block_of_length LENGTH
// Prints "put" before the block and "survived" after it, and ends with 0; or with 2 if it came to no block.

#include "host/audio_buffers.h"
#include "host/create.h"

#include <windows.h>

#include <QELAudioVisualization4.h>
#include <mmreg.h>
#include <wrl/client.h>

#include <cstdint>
#include <cstdio>
#include <cwchar>
#include <vector>

int wmain(int argumentCount, wchar_t** arguments) {
  if (argumentCount != 2) return 2;
  const avhost::Apartment apartment;
  avhost::ControlLibrary library;
  Microsoft::WRL::ComPtr<IAudioVisualization4Type3> analyser;
  if (FAILED(library.loadBesideProgram(L"QELAudioVisualization4.dll")) ||
      FAILED(library.create(CLSID_CAudioVisualization4Type3, analyser.GetAddressOf())) ||
      FAILED(analyser->put_FFTLength(std::wcstol(arguments[1], nullptr, 10)))) {
    return 2;
  }
  std::puts("put");
  std::fflush(stdout);
  const std::vector<std::int16_t> samples(512, 1000);
  const WAVEFORMATEX format{WAVE_FORMAT_PCM, 1, 44100, 88200, 2, 16, 0};
  analyser->SendAudioData(avhost::audioFrames(format, samples.data(), static_cast<LONG>(samples.size() * 2)).get());
  std::puts("survived");
  return 0;
}
