#pragma once

#include "gfx/frame_parts.h"
#include "type1/layout.h"
#include "type1/settings.h"
#include "type1/view_signal.h"

namespace av::type1 {

/// Appends the curves of the waveform view (type 1), one polyline a channel that holds an array.
/// Nothing is appended when the scale spans nothing (`scaleYMax` not above `scaleYMin`).
void addWaveforms(Polylines& curves, const ViewSettings& settings, const ViewSignal& signal, const ViewLayout& layout);

/// Appends the spectra of type 2 on the linear frequency axis, one polyline a channel that holds an array: the smoothed
/// levels while smoothing is on. Nothing is appended when the scale spans nothing or the dynamic range is not positive.
void addLinearSpectra(Polylines& curves, const ViewSettings& settings, const ViewSignal& signal,
                      const ViewLayout& layout);

/// The same on the octave axis (`OctaveAxis`), whose first octave's width holds only the flat start.
void addOctaveSpectra(Polylines& curves, const ViewSettings& settings, const ViewSignal& signal,
                      const ViewLayout& layout);

}  // namespace av::type1
