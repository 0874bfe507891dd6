#pragma once

#include <array>

namespace av::type1 {

inline constexpr int maxScaleDivisions = 100;

/// The divisions of a vertical scale: `count` of them between count + 1 equal steps.
struct ScaleDivisions {
  int count = 0;          ///< 1 to `maxScaleDivisions`
  double heightPx = 0;    ///< from one division to the next
  double stepDb = 0;      ///< from one division to the next
  double topEdgeDb = 0;   ///< where counting starts
  bool mirrored = false;  ///< levels run from both edges to the centre line
};

/// How far labels are apart.
struct LabelDistances {
  double leastPx = 0;  ///< any closer and they would touch
  double roomyPx = 0;  ///< from here on they do not look crowded
};

/// The divisions that carry labels, 1 to count; in a mirrored scale those of both halves.
struct LabelledDivisions {
  std::array<int, maxScaleDivisions> divisions{};
  int count = 0;

  const int* begin() const noexcept { return divisions.data(); }
  const int* end() const noexcept { return divisions.data() + count; }
};

/// Picks evenly spaced divisions for the labels: none closer than they may be, few enough not to look crowded, and in
/// steps that read at a glance where the divisions allow it: 1, 2 or 5 dB and their tenfolds, within 5.5 % (levels are
/// written as whole numbers, so steps of 9.8 dB read 10, 20, 29, 39). At least one division, the middle one if need be.
LabelledDivisions labelledDivisions(const ScaleDivisions& scale, const LabelDistances& distances);

}  // namespace av::type1
