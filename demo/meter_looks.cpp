#include "demo/control_as.h"
#include "demo/failure.h"
#include "demo/looks.h"

namespace avdemo {

namespace {

using Meter = IAudioVisualization4Type2;

constexpr LONG octaves = 1;  // FFTViewType
constexpr LONG lineBorder = 1;

// LineType.
constexpr LONG solidBars = 0;
constexpr LONG gradientBars = 1;
constexpr LONG gradientDots = 3;
constexpr LONG graph = 4;
constexpr LONG smoothGraph = 5;

void set(HRESULT result) { require(result, L"setting a property of the meter"); }

// What is shown. The low octaves need long blocks.

LONG bands(Meter& meter, LONG lineType) {
  set(meter.put_LineType(lineType));
  return 1024;
}
LONG octaveBands(Meter& meter, LONG lineType) {
  set(meter.put_FFTViewType(octaves));
  set(meter.put_LineType(lineType));
  return 4096;
}
/// Low bands in the centre, high ones at both sides; bars grow from the middle row up and down. Each half has the upper
/// half of the percentages: the zones begin in its middle and at three quarters.
LONG butterfly(Meter& meter, LONG lineType) {
  set(meter.put_MidPoint(75));
  set(meter.put_HighPoint(88));
  set(meter.put_AlignmentX(1));
  set(meter.put_AlignmentY(1));
  return octaveBands(meter, lineType);
}

LONG bars(Meter& meter) { return bands(meter, solidBars); }
LONG octaveBars(Meter& meter) { return octaveBands(meter, solidBars); }
LONG gradientOctaveBars(Meter& meter) { return octaveBands(meter, gradientBars); }
LONG octaveDots(Meter& meter) { return octaveBands(meter, gradientDots); }
LONG octaveGraph(Meter& meter) { return octaveBands(meter, graph); }
LONG smoothOctaveGraph(Meter& meter) { return octaveBands(meter, smoothGraph); }
LONG butterflyBars(Meter& meter) { return butterfly(meter, gradientBars); }
LONG butterflyDots(Meter& meter) { return butterfly(meter, gradientDots); }
LONG butterflyGraph(Meter& meter) { return butterfly(meter, smoothGraph); }

/// Ticks that can be watched: held for half a second, then falling by 50 dB a second.
LONG slowTicks(Meter& meter) {
  const LONG blockFrames = octaveBands(meter, gradientBars);
  set(meter.put_TickDelayTime(500));
  set(meter.put_TickReleaseTime(20));
  return blockFrames;
}

/// Whole pixels for each of the lines, so that little is left over at the sides.
constexpr SIZE wide = {501, 270};

// In which colours and sizes.

struct Palette {
  COLORREF back, border;
  COLORREF lit[3], unlit[3];  // low, middle and high zone
};

constexpr Palette midnight = {RGB(13, 17, 23),
                              RGB(48, 56, 66),
                              {RGB(56, 139, 253), RGB(163, 113, 247), RGB(247, 120, 186)},
                              {RGB(22, 31, 46), RGB(30, 27, 46), RGB(42, 27, 38)}};

constexpr Palette paper = {RGB(255, 255, 255),
                           RGB(200, 208, 217),
                           {RGB(26, 127, 55), RGB(212, 140, 10), RGB(207, 34, 46)},
                           {RGB(233, 243, 236), RGB(250, 242, 226), RGB(252, 234, 236)}};

/// Lengths are pixels of a display of 96 DPI.
void apply(Meter& meter, const Palette& palette, int dpi) {
  const auto px = [dpi](int length) { return static_cast<LONG>(MulDiv(length, dpi, 96)); };
  set(meter.put_BackColor(palette.back));
  set(meter.put_BorderColor(palette.border));
  set(meter.put_BorderType(lineBorder));
  set(meter.put_BorderWidth(px(8)));
  set(meter.put_LineLowColor(palette.lit[0]));
  set(meter.put_LineMidColor(palette.lit[1]));
  set(meter.put_LineHighColor(palette.lit[2]));
  set(meter.put_BackLineLowColor(palette.unlit[0]));
  set(meter.put_BackLineMidColor(palette.unlit[1]));
  set(meter.put_BackLineHighColor(palette.unlit[2]));
  set(meter.put_MidPoint(45));
  set(meter.put_HighPoint(70));
  set(meter.put_LineInterval(px(3)));
  set(meter.put_LineCount(44));
  set(meter.put_SpotHeight(px(3)));
  set(meter.put_SpotInterval(px(2)));
}

void asItComes(Meter&, int) {}
void dark(Meter& meter, int dpi) { apply(meter, midnight, dpi); }
void light(Meter& meter, int dpi) { apply(meter, paper, dpi); }

template <LONG (*shape)(Meter&), void (*theme)(Meter&, int)>
LONG prepare(IAudioVisualizationTemplate& control, int dpi) {
  const auto meter = controlAs<Meter>(control);
  theme(*meter.Get(), dpi);
  return shape(*meter.Get());
}

/// Its timer shows a block 50 ms after the last tick.
constexpr DWORD restMs = 60;

template <LONG (*shape)(Meter&), void (*theme)(Meter&, int)>
constexpr Look look(std::wstring_view name, std::span<const DWORD> momentsMs = {}) {
  return {name, &CLSID_CAudioVisualization4Type2, wide, restMs, 0, prepare<shape, theme>, momentsMs};
}

/// The sound; the ticks where it was; half-way down; nearly at the bottom.
constexpr DWORD fall[] = {0, 300, 900, 1300};

constexpr Look looks[] = {
    look<bars, asItComes>(L"meter"),
    look<octaveBars, asItComes>(L"meter-octaves"),
    look<gradientOctaveBars, asItComes>(L"meter-gradients"),
    look<octaveDots, asItComes>(L"meter-dots"),
    look<octaveGraph, asItComes>(L"meter-graph"),
    look<smoothOctaveGraph, asItComes>(L"meter-smooth-graph"),
    look<butterflyBars, asItComes>(L"meter-mirrored"),
    look<gradientOctaveBars, dark>(L"meter-dark"),
    look<smoothOctaveGraph, dark>(L"meter-smooth-graph-dark"),
    look<butterflyBars, dark>(L"meter-mirrored-dark"),
    look<butterflyDots, dark>(L"meter-dots-mirrored-dark"),
    look<octaveBars, light>(L"meter-light"),
    look<octaveDots, light>(L"meter-dots-light"),
    look<butterflyGraph, light>(L"meter-graph-mirrored-light"),
    look<slowTicks, dark>(L"meter-peaks-dark", fall),
};

}  // namespace

std::span<const Look> meterLooks() { return looks; }

}  // namespace avdemo
