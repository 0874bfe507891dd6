// The finished controls under a clock, for tools/bench-controls:
//   control_bench frames SHOWN WAV COUNT        processor time of so many frames
//   control_bench calls SHOWN WAV COUNT         where a frame's time goes
//   control_bench grid SHOWN WAV RATE SECONDS   a hundred controls that hear so many blocks a second
// Each prints lines of a name and figures.

#include "bench/win/bench_control.h"
#include "bench/win/control_grid.h"
#include "bench/win/import_clock.h"

#include <cstdio>
#include <cstdlib>
#include <string>

namespace av::bench {
namespace {

constexpr std::size_t blockFrames = 1600;  // 30 blocks of 48 kHz in a second
constexpr int watchedFrames = 60;

/// Lets the control become warm, and ends the program unless its pictures follow the sound.
void watchPictures(Offscreen& offscreen, Recording& recording) {
  int changes = 0;
  std::uint64_t last = 0;
  for (int i = 0; i < watchedFrames; ++i) {
    offscreen.frame(recording);
    const std::uint64_t now = offscreen.fingerprint();
    if (now != last) ++changes;
    last = now;
  }
  std::printf("changed %d %d\n", changes, watchedFrames);
  need(changes * 10 >= watchedFrames * 9, "seeing the pictures change");
  recording.rewind();
}

void timeFrames(const std::string& shown, const char* wav, int count) {
  const Library library;
  Recording recording(wav, blockFrames);
  Offscreen offscreen(library.create(shown));
  watchPictures(offscreen, recording);
  const double before = processorTimeMs();
  for (int i = 0; i < count; ++i) offscreen.frame(recording);
  std::printf("processor-ms %.1f\n", processorTimeMs() - before);
}

void timeCalls(const std::string& shown, const char* wav, int count) {
  const Library library;
  Recording recording(wav, blockFrames);
  Offscreen offscreen(library.create(shown));
  watchPictures(offscreen, recording);
  ImportClock clock(library.module());
  for (int i = 0; i < count; ++i) clock.frame([&] { offscreen.frame(recording); });
  clock.print();
}

int run(int argc, char** argv) {
  const std::string mode = argc > 1 ? argv[1] : "";
  if (mode == "frames" && argc == 5) timeFrames(argv[2], argv[3], std::atoi(argv[4]));
  else if (mode == "calls" && argc == 5) timeCalls(argv[2], argv[3], std::atoi(argv[4]));
  else if (mode == "grid" && argc == 6) watchGrid(argv[2], argv[3], std::atoi(argv[4]), std::atoi(argv[5]));
  else return 2;
  return 0;
}

}  // namespace
}  // namespace av::bench

int main(int argc, char** argv) {
  const avhost::Apartment apartment;
  av::bench::need(SUCCEEDED(apartment.result()), "starting COM");
  return av::bench::run(argc, argv);
}
