// Runs inputs through a target without libFuzzer, so that any compiler can:  fuzz_replay TARGET FILE-OR-FOLDER ...
// Ends with an error at the first input that breaks a rule, and where there is no input at all.

#include "fuzz/targets.h"

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string_view>
#include <vector>

namespace {

struct Target {
  std::string_view name;
  void (*run)(av::fuzz::Bytes);
};

constexpr Target targets[] = {
    {"audio_blocks", av::fuzz::audioBlocks},         {"wave_files", av::fuzz::waveFiles},
    {"extent_streams", av::fuzz::extentStreams},     {"property_puts", av::fuzz::propertyPuts},
    {"spectrum_kernels", av::fuzz::spectrumKernels}, {"view_analysis", av::fuzz::viewAnalysis},
    {"meter_analysis", av::fuzz::meterAnalysis},     {"analyser_analysis", av::fuzz::analyserAnalysis},
    {"view_frames", av::fuzz::viewFrames},           {"meter_frames", av::fuzz::meterFrames},
    {"analyser_frames", av::fuzz::analyserFrames},
};

std::vector<std::filesystem::path> filesIn(const std::filesystem::path& path) {
  std::vector<std::filesystem::path> files;
  if (!std::filesystem::is_directory(path)) return {path};
  for (const auto& entry : std::filesystem::directory_iterator(path)) files.push_back(entry.path());
  std::ranges::sort(files);
  return files;
}

}  // namespace

int main(int argc, char** argv) {
  const auto target = std::ranges::find(targets, std::string_view(argc > 1 ? argv[1] : ""), &Target::name);
  if (target == std::end(targets)) {
    std::fprintf(stderr, "usage: fuzz_replay TARGET FILE-OR-FOLDER ...\n");
    return 2;
  }
  int count = 0;
  for (int i = 2; i < argc; ++i) {
    for (const auto& path : filesIn(argv[i])) {
      std::ifstream file(path, std::ios::binary);
      if (!file) {
        std::fprintf(stderr, "%s cannot be read\n", path.c_str());
        return 2;
      }
      const std::vector<char> read{std::istreambuf_iterator<char>(file), {}};
      // Exactly as many bytes as the input has, so that a sanitizer sees what is read behind them.
      const std::vector<std::uint8_t> input(read.begin(), read.end());
      std::printf("%s\n", path.c_str());
      std::fflush(stdout);
      target->run(input);
      ++count;
    }
  }
  std::printf("%d inputs\n", count);
  return count > 0 ? 0 : 2;
}
