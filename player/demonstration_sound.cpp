#include "player/sound.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <random>

namespace avplayer {

namespace {

constexpr double rateHz = 44100;
constexpr double pi = 3.14159265358979323846;
constexpr double stepS = 0.125;  // a sixteenth at 120 beats a minute
constexpr int stepsPerBar = 16;
constexpr int bars = 4;

/// Equal temperament: a note as the MIDI number, 69 being the A of 440 Hz.
double noteHz(int note) { return 440 * std::pow(2.0, (note - 69) / 12.0); }

class Mix {
 public:
  Mix() : m_left(static_cast<std::size_t>(lengthS * rateHz)), m_right(m_left.size()) {}

  /// Adds a voice from `startS` on that lasts `soundS`; what goes beyond the end comes in at the begin, so that the loop
  /// has no seam. `pan` from 0 (left) to 1 (right); `wave(t)` is the voice at t seconds.
  template <class Wave>
  void add(double startS, double soundS, double volume, double pan, Wave wave) {
    const auto count = static_cast<std::size_t>(soundS * rateHz);
    std::size_t at = static_cast<std::size_t>(startS * rateHz) % m_left.size();
    const double left = volume * std::cos(pan * pi / 2);
    const double right = volume * std::sin(pan * pi / 2);
    for (std::size_t i = 0; i < count; ++i) {
      const double value = wave(static_cast<double>(i) / rateHz);
      m_left[at] += left * value;
      m_right[at] += right * value;
      if (++at == m_left.size()) at = 0;
    }
  }

  Sound sound() const {
    double peak = 1e-9;
    for (std::size_t i = 0; i < m_left.size(); ++i) peak = std::max({peak, std::abs(m_left[i]), std::abs(m_right[i])});
    const double gain = 30000 / peak;
    Sound sound;
    sound.samples.reserve(m_left.size() * 2);
    for (std::size_t i = 0; i < m_left.size(); ++i) {
      sound.samples.push_back(static_cast<std::int16_t>(std::lround(m_left[i] * gain)));
      sound.samples.push_back(static_cast<std::int16_t>(std::lround(m_right[i] * gain)));
    }
    return sound;
  }

 private:
  static constexpr double lengthS = bars * stepsPerBar * stepS;
  std::vector<double> m_left, m_right;
};

/// A decaying string-like tone: harmonics that fade the faster the higher they are.
void pluck(Mix& mix, double startS, int note, double volume, double pan) {
  const double turn = 2 * pi * noteHz(note);
  mix.add(startS, 0.9, volume, pan, [turn](double t) {
    double sum = 0;
    for (int harmonic = 1; harmonic <= 6; ++harmonic)
      sum += std::sin(turn * harmonic * t) * std::exp(-t * (2.5 + 1.7 * harmonic)) / harmonic;
    return sum * std::min(1.0, t * 400);
  });
}

void bass(Mix& mix, double startS, int note) {
  const double turn = 2 * pi * noteHz(note);
  mix.add(startS, 0.45, 0.55, 0.5, [turn](double t) {
    return (std::sin(turn * t) + 0.35 * std::sin(2 * turn * t)) * std::exp(-t * 3.5) * std::min(1.0, t * 200);
  });
}

void kick(Mix& mix, double startS) {
  // The pitch falls from 150 Hz to 48 Hz; its integral is the phase.
  mix.add(startS, 0.3, 0.9, 0.5, [](double t) {
    return std::sin(2 * pi * (48 * t + 102 * (1 - std::exp(-t * 28)) / 28)) * std::exp(-t * 11);
  });
}

void noise(Mix& mix, std::minstd_rand& random, double startS, double soundS, double volume, double pan, double decay) {
  double before = 0;
  mix.add(startS, soundS, volume, pan, [&random, &before, decay](double t) {
    const double value = static_cast<double>(random()) / 1073741823.5 - 1;
    const double bright = value - before;  // takes the low frequencies away
    before = value;
    return bright * std::exp(-t * decay);
  });
}

}  // namespace

Sound demonstrationSound() {
  // A minor, F, C, G: a chord a bar, its notes broken over two octaves.
  constexpr std::array<std::array<int, 4>, bars> chords = {
      {{57, 60, 64, 67}, {53, 57, 60, 64}, {60, 64, 67, 71}, {55, 59, 62, 69}}};
  constexpr std::array<int, 8> order = {0, 2, 1, 3, 2, 0, 3, 1};
  Mix mix;
  std::minstd_rand random(20);  // NOLINT(cert-msc32-c,cert-msc51-cpp): the same sound every time
  for (int step = 0; step < bars * stepsPerBar; ++step) {
    const auto& chord = chords[static_cast<std::size_t>(step / stepsPerBar)];
    const int inBar = step % stepsPerBar;
    const double at = step * stepS;
    const int octave = step % 3 == 0 ? 24 : 12;
    const double pan = 0.5 + 0.42 * std::sin(step * 0.7);
    pluck(mix, at, chord[static_cast<std::size_t>(order[static_cast<std::size_t>(step % 8)])] + octave, 0.32, pan);
    if (inBar % 4 == 0) kick(mix, at);
    if (inBar % 8 == 4) noise(mix, random, at, 0.22, 0.28, 0.45, 18);
    if (inBar % 2 == 0) noise(mix, random, at, 0.06, 0.1, 0.7, 70);
    if (inBar == 0 || inBar == 6 || inBar == 10) bass(mix, at, chord[0] - 24);
  }
  return mix.sound();
}

}  // namespace avplayer
