#pragma once

#include "gfx/argb.h"
#include "type3/settings.h"

#include <vector>

namespace av::type3 {

/// The colours of a column from its top row to its bottom row. All columns are the same, so one of them says all.
using PixelColumn = std::vector<Argb>;

/// Which of the prepared columns a `ColumnFill` takes its colours from.
enum ColumnImageId : int { unlitColumn, litColumn, flippedLitColumn };

/// What is painted once for a height and a set of properties, and then shown in every frame until it is rebuilt.
struct ColumnImages {
  PixelColumn unlit;             ///< in the `BackLine...` colours, as high as the column area
  PixelColumn lit;               ///< in the `Line...` colours; half as high where columns grow from the middle
  PixelColumn flippedLit;        ///< `lit` upside down
  Argb gapColour = opaqueBlack;  ///< `BackColor` when the gaps were cut

  const PixelColumn& operator[](int id) const noexcept {
    return id == litColumn ? lit : id == flippedLitColumn ? flippedLit : unlit;
  }
};

/// Paints all columns anew for a column area of `areaHeightPx`; 0 or less leaves them empty. Has to follow every put whose
/// effects contain `rebuild` or `relayout`, and every new size.
void rebuildColumnImages(ColumnImages& images, const AnalyserSettings& settings, int areaHeightPx);

}  // namespace av::type3
