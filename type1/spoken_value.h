#pragma once

#include "type1/settings.h"
#include "type1/view_signal.h"

#include <string>

namespace av::type1 {

/// What the view shows, in words for a screen reader. Allocates the text (std::bad_alloc).
///
/// Waveform: the peak of the window's samples, of each channel. Spectrum: the highest of the levels that are drawn (the
/// smoothed ones while smoothing is on) and its bin's frequency, of each channel; the bars show the channels' mean, and so
/// say one. X-Y views: the correlation of each pair of channels (`dsp::correlation`). "silence" where nothing is
/// audible (`isAudible`) or no block has come; "nothing shown" for types that draw nothing.
std::u16string spokenValue(const ViewSettings& settings, const ViewSignal& signal);  // [under the drawing lock]

/// What kind of picture the view is, in words.
std::u16string spokenDescription(const ViewSettings& settings);

}  // namespace av::type1
