#include "type1/label_series.h"

#include <algorithm>
#include <cmath>
#include <optional>

namespace av::type1 {
namespace {

/// Every `stride`th division from `first` on; in a mirrored scale from both edges to the centre.
struct Series {
  int first = 1;
  int stride = 1;
};

/// The number 1, 2, 5, 10, 20, 50, … that a step of `stepDb` reads as.
std::optional<double> roundStep(double stepDb) {
  if (!std::isfinite(stepDb)) return std::nullopt;
  double round = 1;
  for (int i = 0; round * 0.945 <= stepDb; ++i) {
    if (std::fabs(stepDb - round) <= round * 0.055) return round;
    round *= i % 3 == 1 ? 2.5 : 2;
  }
  return std::nullopt;
}

class Choice {
 public:
  Choice(const ScaleDivisions& scale, const LabelDistances& distances) : m_scale(scale), m_distances(distances) {}

  LabelledDivisions labels() const {
    LabelledDivisions middle;
    middle.divisions[static_cast<std::size_t>(middle.count++)] = (m_scale.count + 1) / 2;

    const int fitting = strideFor(m_distances.leastPx, 1);
    if (fitting > m_scale.count) return middle;
    // Steps below 1 dB would write numbers twice.
    int least = fitting;
    while (least <= m_scale.count && least * m_scale.stepDb < 1) ++least;
    if (least > m_scale.count) least = fitting;
    const int roomy = strideFor(m_distances.roomyPx, least);

    auto series = roundSeries(roomy);
    if (!series) series = roundSeries(least);
    LabelledDivisions found = of(series ? *series : plainSeries(roomy));
    // Two make a scale, in a mirrored one two in each half.
    if (found.count < (m_scale.mirrored ? 3 : 2)) found = of(plainSeries(least));
    return found.count < 2 ? middle : found;
  }

 private:
  LabelledDivisions of(const Series& series) const {
    LabelledDivisions found;
    const auto add = [&](int k) { found.divisions[static_cast<std::size_t>(found.count++)] = k; };
    const int steps = m_scale.count + 1;
    for (int k = series.first; k <= m_scale.count; k += series.stride) {
      const int acrossTheCentre = steps - 2 * k;
      if (!m_scale.mirrored || acrossTheCentre == 0) {
        add(k);
      } else if (acrossTheCentre * m_scale.heightPx >= m_distances.leastPx && 2 * acrossTheCentre >= series.stride) {
        add(k);
        add(steps - k);
      } else {
        break;  // the innermost labels of the halves would touch, or huddle
      }
    }
    return found;
  }

  /// The first stride from `from` on that sets labels at least `distancePx` apart.
  int strideFor(double distancePx, int from) const {
    int stride = from;
    while (stride <= m_scale.count && stride * m_scale.heightPx < distancePx) ++stride;
    return stride;
  }

  /// From `from` on the closest labels in round steps, as long as there are enough of them for a scale.
  std::optional<Series> roundSeries(int from) const {
    const int enough = m_scale.mirrored ? 6 : 4;
    for (int stride = from; stride * enough <= m_scale.count; ++stride) {
      if (const auto round = roundStep(stride * m_scale.stepDb)) return Series{roundFirst(stride, *round), stride};
    }
    return std::nullopt;
  }

  /// The division among the first ones whose level is nearest to a multiple of the round step.
  int roundFirst(int stride, double round) const {
    int best = stride;
    double bestOffDb = round;
    for (int first = stride; first >= 1; --first) {
      if (2 * first * m_scale.heightPx < m_distances.leastPx) break;  // it would reach beyond the edge
      const double multiples = (m_scale.topEdgeDb + first * m_scale.stepDb) / round;
      const double offDb = std::fabs(multiples - std::nearbyint(multiples)) * round;
      if (offDb >= bestOffDb) continue;
      best = first;
      bestOffDb = offDb;
    }
    return best;
  }

  /// Labels this far apart: multiples of the stride, or as many as there can be where that is one at most.
  Series plainSeries(int stride) const {
    Series best{stride, stride};
    int most = of(best).count;
    for (int first = stride - 1; first >= 1 && most < (m_scale.mirrored ? 3 : 2); --first) {
      const int count = of({first, stride}).count;
      if (count <= most) continue;
      best.first = first;
      most = count;
    }
    return best;
  }

  const ScaleDivisions& m_scale;
  const LabelDistances& m_distances;
};

}  // namespace

LabelledDivisions labelledDivisions(const ScaleDivisions& scale, const LabelDistances& distances) {
  return Choice(scale, distances).labels();
}

}  // namespace av::type1
