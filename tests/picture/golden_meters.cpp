#include "picture/golden_meters.h"

namespace av::test {
namespace {

using Stage = GoldenMeterStage;

/// 100 lines of 3 pixels, as they come, and nothing left over.
constexpr SIZE usual{401, 240};

constexpr LONG octaves = 1;

void mode(Stage& meter, LONG lineType, LONG alignmentX = 0) {
  meter->put_LineType(lineType);
  meter->put_AlignmentX(alignmentX);
}

/// Fewer, larger lines and segments, as hosts put them.
void coarse(Stage& meter) {
  meter->put_LineInterval(3);
  meter->put_LineCount(32);
  meter->put_SpotHeight(5);
  meter->put_SpotInterval(2);
}

void dark(Stage& meter) {
  coarse(meter);
  meter->put_BackColor(RGB(13, 17, 23));
  meter->put_BorderColor(RGB(68, 76, 86));
  meter->put_BorderType(1);
  meter->put_BorderWidth(6);
  meter->put_LineLowColor(RGB(56, 139, 253));
  meter->put_LineMidColor(RGB(163, 113, 247));
  meter->put_LineHighColor(RGB(247, 120, 186));
  meter->put_BackLineLowColor(RGB(22, 31, 46));
  meter->put_BackLineMidColor(RGB(30, 27, 46));
  meter->put_BackLineHighColor(RGB(42, 27, 38));
}

void light(Stage& meter) {
  coarse(meter);
  meter->put_BackColor(RGB(255, 255, 255));
  meter->put_BorderColor(RGB(175, 184, 193));
  meter->put_BorderType(1);
  meter->put_BorderWidth(6);
  meter->put_LineLowColor(RGB(26, 127, 55));
  meter->put_LineMidColor(RGB(212, 140, 10));
  meter->put_LineHighColor(RGB(207, 34, 46));
  meter->put_BackLineLowColor(RGB(233, 243, 236));
  meter->put_BackLineMidColor(RGB(250, 242, 226));
  meter->put_BackLineHighColor(RGB(252, 234, 236));
}

constexpr GoldenMeter meters[] = {
    {"meter", usual, [](Stage& m) { m.playWithPeaks(); }},
    {"meter-before-sound", usual, [](Stage& m) { light(m), m->put_BorderType(2); }},
    {"meter-silence", usual, [](Stage& m) { m.playLevel(0); }},
    {"meter-gradients", usual, [](Stage& m) { mode(m, 1), m.playWithPeaks(); }},
    {"meter-octaves", usual, [](Stage& m) { m->put_FFTViewType(octaves), m.playWithPeaks(4096); }},
    {"meter-centred-bands", usual, [](Stage& m) { m->put_AlignmentY(1), m.playWithPeaks(); }},
    {"meter-no-ticks", usual, [](Stage& m) { m->put_TickVisible(VARIANT_FALSE), m.playWithPeaks(); }},
    {"meter-dots", usual, [](Stage& m) { coarse(m), mode(m, 2), m.playWithPeaks(); }},
    {"meter-dots-gradients-light", usual, [](Stage& m) { light(m), mode(m, 3), m.playWithPeaks(); }},
    {"meter-graph", usual, [](Stage& m) { mode(m, 4), m.playWithPeaks(); }},
    {"meter-graph-light", usual, [](Stage& m) { light(m), mode(m, 4), m.playWithPeaks(); }},
    {"meter-smooth-graph-dark", usual, [](Stage& m) { dark(m), mode(m, 5), m.playWithPeaks(); }},
    {"meter-mirrored", usual, [](Stage& m) { coarse(m), mode(m, 0, 1), m.playWithPeaks(); }},
    {"meter-mirrored-gradients-dark", usual,
     [](Stage& m) { dark(m), mode(m, 1, 1), m->put_AlignmentY(1), m.playWithPeaks(); }},
    {"meter-mirrored-dots-dark", usual, [](Stage& m) { dark(m), mode(m, 3, 1), m.playWithPeaks(); }},
    {"meter-mirrored-graph", usual, [](Stage& m) { coarse(m), mode(m, 4, 1), m.playWithPeaks(); }},
    {"meter-mirrored-smooth-graph-light", usual, [](Stage& m) { light(m), mode(m, 5, 1), m.playWithPeaks(); }},
    {"meter-no-such-mode", usual, [](Stage& m) { light(m), mode(m, 7), m.playWithPeaks(); }},
    {"meter-dark", usual, [](Stage& m) { dark(m), m.playWithPeaks(); }},
    {"meter-small", {60, 40}, [](Stage& m) { m->put_LineCount(3), m.playWithPeaks(); }},
    {"meter-large", {1200, 800}, [](Stage& m) { coarse(m), mode(m, 1), m.playWithPeaks(); }},
    {"meter-dark-192-dpi", {802, 480}, [](Stage& m) { dark(m), m.playWithPeaks(); }, 192},
};

}  // namespace

std::span<const GoldenMeter> goldenMeters() { return meters; }

}  // namespace av::test
