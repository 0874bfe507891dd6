// From nothing to a moving picture with the host kit: a tone that sweeps up and down through the spectrum view, until
// the window is closed.

#include "host/container.h"
#include "host/controls.h"
#include "host/message_pump.h"
#include "host/samples.h"

#include <QELAudioVisualization4.h>

#include <cmath>
#include <cstdio>

namespace {

constexpr unsigned rateHz = 44100;

/// Half of full scale, 100 Hz to 10 kHz and back in four seconds.
void fillWithSweep(float (&samples)[1024], double& seconds, double& turns) {
  for (float& sample : samples) {
    seconds += 1.0 / rateHz;
    turns += 1000 * std::pow(10.0, -std::cos(seconds * 3.14159 / 2)) / rateHz;
    sample = 0.5f * static_cast<float>(std::sin(turns * 6.28318));
  }
}

int failed(const char* what, HRESULT result) {
  std::fprintf(stderr, "%s: %08lX\n", what, static_cast<unsigned long>(result));
  return 1;
}

}  // namespace

int main() {
  avhost::Controls controls;
  HRESULT result = controls.open();
  if (FAILED(result)) return failed("There is no library", result);

  Microsoft::WRL::ComPtr<IAudioVisualization4Type1> view;
  result = controls.create(__uuidof(CAudioVisualization4Type1), view.GetAddressOf());
  if (FAILED(result)) return failed("There is no view", result);
  view->put_VisualizationType(2);  // a spectrum
  view->put_ScaleYMax(50);         // 0 to -93 dB of the 186 dB that samples of 32 bits span

  avhost::Container window;  // after the view, so that it goes first
  result = window.show(view.Get(), {.title = L"Sweep", .clientSizePx = {640, 360}});
  if (FAILED(result)) return failed("There is no window", result);

  avhost::SampleBlocks blocks(rateHz, 1);
  float samples[1024];
  double seconds = 0, turns = 0;
  while (window.window()) {
    fillWithSweep(samples, seconds, turns);
    view->SendAudioData(blocks.interleaved(samples, 1024));
    avhost::pumpMessages(23);  // 1024 frames last 23 ms
  }
  return 0;
}
