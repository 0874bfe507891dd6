#include "dsp/hartley.h"
#include "bench/contest.h"
#include "bench/fftw_real_fft.h"
#include "bench/kiss_real_fft.h"
#include "bench/literal_hartley.h"
#include "dsp/levels.h"
#include "dsp/radix4_hartley.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <memory>

namespace av::bench {
namespace {

constexpr double fullScale = 32767;
constexpr double noFloorDb = -std::numeric_limits<double>::infinity();

using InPlace = std::function<void(std::span<double> values)>;

/// Every run begins with a copy of the samples, as a block's decoding would write them.
void addInPlace(const std::string& name, const std::string& contender, std::size_t length, std::size_t places,
                const InPlace& work) {
  const auto samples = std::make_shared<std::vector<double>>(noise(length));
  const auto values = std::make_shared<std::vector<double>>(places);
  add(name, contender, length, [=] {
    std::ranges::copy(*samples, values->begin());
    work(*values);
  });
}

std::vector<double> result(const InPlace& work, std::size_t length, std::size_t places) {
  std::vector<double> values = noise(length);
  values.resize(places);
  work(values);
  values.resize(length);
  return values;
}

void literalViewLevels(std::span<double> values) {
  literalHartley(values);
  literalLevels(values, fullScale, dsp::emptyBinDb, noFloorDb);
}

/// The view's transform by the kernels from the `first` one on, and its levels.
void addOwn(const std::string& contender, std::size_t length, std::size_t first) {
  const auto transform =
      std::make_shared<dsp::HartleyTransform>(static_cast<int>(length), dsp::hartleyKernels().subspan(first));
  const dsp::LevelKernel& kernel = *dsp::levelKernels()[first];
  const InPlace own = [transform](auto values) { transform->transform(values); };
  const InPlace ownLevels = [transform, &kernel](auto values) {
    transform->transform(values);
    dsp::hartleyBinsToLevels(values, fullScale, kernel);
  };
  const auto expected = result(literalViewLevels, length, length);
  require(isNear(result(own, length, length), result(literalHartley, length, length), 1e-13), "Hartley transform");
  require(isNear(result(ownLevels, length, length), expected, 1e-12), "Hartley levels");
  addInPlace("hartley", contender, length, length, own);
  addInPlace("levels", contender, length, length, ownLevels);
}

/// The view's transform, for powers of two, and its levels.
void addView(std::size_t length) {
  addInPlace("hartley", "literal", length, length, literalHartley);
  addInPlace("levels", "literal", length, length, literalViewLevels);
  addOwn(ours, length, 0);
  for (std::size_t i = 1; i < dsp::hartleyKernels().size(); ++i)
    addOwn(std::string("ours, ").append(dsp::hartleyKernels()[i]->name), length, i);
}

/// The meter's, for the other lengths, where it is a thing of its own that no library has.
void addMeter(std::size_t length) {
  constexpr std::size_t places = dsp::Radix4Hartley::bufferLength;
  const auto transform = std::make_shared<dsp::Radix4Hartley>();
  const InPlace own = [=](std::span<double> buffer) {
    transform->transform(buffer.first<places>(), static_cast<int>(length));
  };
  const InPlace literal = [=](std::span<double> buffer) { literalRadix4Hartley(buffer, length); };
  const InPlace ownLevels = [=](std::span<double> buffer) {
    own(buffer);
    dsp::hartleyBinsToLevels(buffer.first(length), fullScale, -91.0);
  };
  const InPlace literalLevelsOf = [=](std::span<double> buffer) {
    literal(buffer);
    literalLevels(buffer.first(length), fullScale, -91.0, -91.0);
  };
  require(sameBits(result(own, length, places), result(literal, length, places)), "radix-4 Hartley stages");
  require(isNear(result(ownLevels, length, places), result(literalLevelsOf, length, places), 1e-12), "meter levels");
  addInPlace("hartley", "literal", length, places, literal);
  addInPlace("hartley", ours, length, places, own);
  addInPlace("levels", "literal", length, places, literalLevelsOf);
  addInPlace("levels", ours, length, places, ownLevels);
}

/// A transform of real input, and levels from its bins by the library's own logarithms.
template <class Fft, class Levels>
void addLibrary(const std::string& contender, std::size_t length, const std::shared_ptr<Fft>& fft, Levels levelsOf) {
  const auto samples = std::make_shared<std::vector<double>>(noise(length));
  const auto levels = std::make_shared<std::vector<double>>(length / 2);
  const auto transform = [=] {
    std::ranges::copy(*samples, fft->input().begin());
    fft->transform();
  };
  add("hartley", contender, length, transform);
  add("levels", contender, length, [=] {
    transform();
    levelsOf(*fft, *levels);
  });
}

void addFftw(std::size_t length, bool measured) {
  const auto fft = std::make_shared<FftwRealFft>(length, measured ? FFTW_MEASURE : FFTW_ESTIMATE);
  const double scale = 4.0 / (fullScale * fullScale * static_cast<double>(length) * static_cast<double>(length));
  addLibrary(measured ? "FFTW MEASURE" : "FFTW ESTIMATE", length, fft, [=](const FftwRealFft& done, auto& levels) {
    const auto bins = done.output();
    for (std::size_t k = 1; k < levels.size(); ++k)
      levels[k] = 10 * std::log10((bins[k][0] * bins[k][0] + bins[k][1] * bins[k][1]) * scale);
  });
}

void addKiss(std::size_t length) {
  const auto fft = std::make_shared<KissRealFft>(length);
  const auto scale =
      static_cast<float>(4.0 / (fullScale * fullScale * static_cast<double>(length) * static_cast<double>(length)));
  addLibrary("KissFFT, single precision", length, fft, [=](const KissRealFft& done, auto& levels) {
    const auto bins = done.output();
    for (std::size_t k = 1; k < levels.size(); ++k)
      levels[k] = 10 * std::log10((bins[k].r * bins[k].r + bins[k].i * bins[k].i) * scale);
  });
}

}  // namespace

void addHartley() {
  for (std::size_t length = 512; length <= 65536; length *= 2) {
    addView(length);
    addFftw(length, false);
    addFftw(length, true);
    addKiss(length);
  }
  for (const std::size_t length : {882u, 1000u, 4410u, 44100u}) addMeter(length);
}

}  // namespace av::bench
