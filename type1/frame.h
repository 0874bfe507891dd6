#pragma once

#include "gfx/frame_parts.h"
#include "gfx/text_measure.h"
#include "type1/bars.h"
#include "type1/layout.h"
#include "type1/settings.h"
#include "type1/view_signal.h"

#include <cstdint>
#include <vector>

namespace av::type1 {

/// What stays from frame to frame while settings, layout, sample rate and font stay; in draw order from top to bottom.
/// Positions are those of the layout's client rectangle; parts may reach beyond it by a pixel and are clipped by the
/// picture.
struct ViewFurniture {
  Rect client;
  Argb background = opaqueBlack;  ///< clears the whole picture
  std::vector<FilledRect> strips;
  Polylines border;  ///< lies over the strips
  std::vector<TextRun> labels;
  std::vector<LineSegment> grid;

  friend bool operator==(const ViewFurniture&, const ViewFurniture&) = default;
};

/// What the view shows at one moment: the furniture and, over it, what follows the sound, in the same order.
struct ViewFrame : ViewFurniture {
  std::vector<FilledRect> correlation;  ///< how alike the channels of each pair are, in the frame under the X-Y grid
  /// The columns of a bar spectrum, left to right: `image` is the type less 3 (the gradients of types 3, 4 and 5), `from`
  /// the whole image, 1 × gradientHeightPx, `to` one pixel wide and down to the plot's bottom. No column is empty.
  std::vector<ImageBlit> bars;
  Polylines curves;                  ///< waveforms, spectra, X-Y curves: one polyline a channel or pair
  std::vector<LineSegment> balance;  ///< the X-Y view in balance colours: one segment a sample, in order
};

/// Everything but what follows the sound.
void buildFurniture(ViewFurniture& reused, const ViewSettings& settings, std::uint32_t sampleRateHz,
                    const ViewLayout& layout, const TextMeasure& measure);

/// What follows the sound: curves, bars, balance segments and correlation marks. None before the first analysed block or
/// in a plot without width.
void buildCurves(ViewFrame& reused, const ViewSettings& settings, const ViewSignal& signal, const ViewLayout& layout);

/// The whole frame. The vectors of `reused` are refilled, so frames of a steady size allocate nothing.
void buildFrame(ViewFrame& reused, const ViewSettings& settings, const ViewSignal& signal, const ViewLayout& layout,
                const TextMeasure& measure);

}  // namespace av::type1
