#include "bench/contest.h"
#include "bench/literal_decode.h"
#include "bench/pcm_noise.h"
#include "common/mono_mix.h"
#include "common/pcm_decode.h"

#include <array>
#include <memory>

namespace av::bench {
namespace {

constexpr std::size_t frames = 1024;

/// A stereo block and where its samples go.
struct Work {
  explicit Work(int bits) : pcm(bits, 2, frames) {}

  std::array<std::span<double>, 2> channels() { return {std::span(left), std::span(right)}; }

  PcmNoise pcm;
  std::vector<double> left = std::vector<double>(frames);
  std::vector<double> right = std::vector<double>(frames);
};

void compare(const std::string& name, const std::shared_ptr<Work>& expected, const std::shared_ptr<Work>& actual,
             const std::function<void(Work&)>& literal, const std::function<void(Work&)>& own) {
  literal(*expected);
  own(*actual);
  require(sameBits(actual->left, expected->left) && sameBits(actual->right, expected->right), name);
  add(name, "literal", frames, [=] { literal(*expected); });
  add(name, ours, frames, [=] { own(*actual); });
}

}  // namespace

/// The depth stands in the name: "decode" is 16 bits, the usual one.
void addDecoding() {
  for (const int bits : {16, 8, 24, 32}) {
    const std::string depth = bits == 16 ? std::string() : std::string("-").append(std::to_string(bits));
    compare(
        "decode" + depth, std::make_shared<Work>(bits), std::make_shared<Work>(bits),
        [](Work& work) { literalDecode(work.pcm.block(), work.channels(), false); },
        [](Work& work) { decodeChannels(work.pcm.block(), frames, EightBitRule::signedAsStored, work.channels()); });
    compare(
        "mix-down" + depth, std::make_shared<Work>(bits), std::make_shared<Work>(bits),
        [](Work& work) { literalMix(work.pcm.block(), work.left, false); },
        [](Work& work) { mixToMono(work.pcm.block(), EightBitRule::signedAsStored, work.left); });
  }
}

}  // namespace av::bench
