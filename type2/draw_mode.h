#pragma once

#include "type2/settings.h"

#include <cstdint>
#include <optional>

namespace av::type2 {

/// What `LineType` and `AlignmentX` make of the lines.
struct DrawMode {
  enum class Kind {
    bars,           ///< all segments up to the level
    dots,           ///< only the segment at the level
    graph,          ///< one straight line from level to level
    smoothedGraph,  ///< the same through points in between
  };
  Kind kind = Kind::bars;
  bool gradients = false;  ///< zones of segments run into each other
  bool mirrored = false;   ///< from the horizontal centre line upward and downward

  constexpr bool isGraph() const noexcept { return kind == Kind::graph || kind == Kind::smoothedGraph; }

  friend bool operator==(const DrawMode&, const DrawMode&) = default;
};

/// The mode is `AlignmentX`·8 combined bit by bit with `LineType`: 0 and 1 are bars, 2 and 3 dots, odd ones with
/// gradients; 4 is the graph, 5 the smoothed one, and so is 6; all of these plus 8 are mirrored. Empty for every other
/// number: such a meter shows its background and border only.
constexpr std::optional<DrawMode> drawMode(const MeterSettings& settings) noexcept {
  const std::int64_t mode = std::int64_t{settings.alignmentX} * 8 | std::int64_t{settings.lineType};
  const bool mirrored = mode >= 8;
  switch (mode) {
    case 0:
    case 1:
    case 8:
    case 9: return DrawMode{DrawMode::Kind::bars, mode % 2 != 0, mirrored};
    case 2:
    case 3:
    case 10:
    case 11: return DrawMode{DrawMode::Kind::dots, mode % 2 != 0, mirrored};
    case 4:
    case 12: return DrawMode{DrawMode::Kind::graph, false, mirrored};
    case 5:
    case 6:
    case 13:
    case 14: return DrawMode{DrawMode::Kind::smoothedGraph, false, mirrored};
    default: return std::nullopt;
  }
}

}  // namespace av::type2
