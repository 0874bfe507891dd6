#pragma once

#include "common/line_list.h"
#include "gfx/frame_parts.h"
#include "gfx/text_measure.h"
#include "type3/bands.h"
#include "type3/column_images.h"
#include "type3/layout.h"
#include "type3/settings.h"

#include <span>
#include <vector>

namespace av::type3 {

/// What the analyser shows at one moment, in draw order from top to bottom, relative to the control's corner. Parts may
/// reach beyond the picture, which clips them.
struct AnalyserFrame {
  Size size;

  // The furniture: changes with a property, the size or the sample rate only.
  Argb background = opaqueBlack;      ///< clears the whole picture
  std::vector<FilledRect> strips;     ///< of the scales
  std::vector<ColumnFill> unlit;      ///< the unlit columns, as one block
  std::vector<FilledRect> gaps;       ///< between the unlit columns
  std::vector<TextRun> texts;         ///< of the scales, in black
  Argb textBackground = opaqueBlack;  ///< the colour of the strips
  Polylines border;

  // The sound: changes with every block and every tick.
  std::vector<ColumnFill> columns;  ///< lit columns or spots
  std::vector<FilledRect> ticks;
};

/// Fills in the furniture and the size. `images` are those of the settings (see rebuildColumnImages).
void buildFurniture(AnalyserFrame& reused, const AnalyserSettings& settings, const AnalyserLayout& layout,
                    const ColumnImages& images, const BandAxis& axis, const TextMeasure& measure);

/// Fills in columns and ticks. Columns and peaks of 0 pixels and less draw nothing. The vectors are refilled, so frames of
/// a steady number of columns allocate nothing.
void buildColumns(AnalyserFrame& reused, const AnalyserSettings& settings, const AnalyserLayout& layout,
                  const ColumnImages& images, std::span<const LineInfo> columns);

}  // namespace av::type3
