#include "picture/golden_analysers.h"

namespace av::test {
namespace {

using Stage = GoldenAnalyserStage;

constexpr SIZE usual{480, 270};

constexpr LONG logarithmic = 1;

// ViewType.
constexpr LONG gradients = 1;
constexpr LONG spots = 2;
constexpr LONG gradientSpots = 3;

/// Frequencies on a logarithmic axis, which needs long blocks for its low bands.
void logAxis(Stage& analyser, LONG lineCount) {
  analyser->put_XScaleType(logarithmic);
  analyser->put_FFTLength(4096);
  analyser->put_LineCount(lineCount);
}

/// Fewer, larger columns and segments.
void coarse(Stage& analyser) {
  analyser->put_LineCount(32);
  analyser->put_LineInterval(3);
  analyser->put_SpotHeight(5);
  analyser->put_SpotInterval(2);
}

void dark(Stage& analyser) {
  coarse(analyser);
  analyser->put_BackColor(RGB(13, 17, 23));
  analyser->put_ScaleColor(RGB(139, 148, 158));  // the scales' texts are black
  analyser->put_BorderColor(RGB(68, 76, 86));
  analyser->put_BorderType(1);
  analyser->put_LineLowColor(RGB(56, 139, 253));
  analyser->put_LineMidColor(RGB(163, 113, 247));
  analyser->put_LineHighColor(RGB(247, 120, 186));
  analyser->put_BackLineLowColor(RGB(22, 31, 46));
  analyser->put_BackLineMidColor(RGB(30, 27, 46));
  analyser->put_BackLineHighColor(RGB(42, 27, 38));
  analyser->put_TickColor(RGB(201, 209, 217));
}

void light(Stage& analyser) {
  coarse(analyser);
  analyser->put_BackColor(RGB(255, 255, 255));
  analyser->put_ScaleColor(RGB(246, 248, 250));
  analyser->put_BorderColor(RGB(175, 184, 193));
  analyser->put_BorderType(1);
  analyser->put_LineLowColor(RGB(26, 127, 55));
  analyser->put_LineMidColor(RGB(212, 140, 10));
  analyser->put_LineHighColor(RGB(207, 34, 46));
  analyser->put_BackLineLowColor(RGB(233, 243, 236));
  analyser->put_BackLineMidColor(RGB(250, 242, 226));
  analyser->put_BackLineHighColor(RGB(252, 234, 236));
  analyser->put_TickColor(RGB(87, 96, 106));
}

void mirrored(Stage& analyser, bool x, bool y) {
  analyser->put_AlignmentX(x);
  analyser->put_AlignmentY(y);
}

constexpr GoldenAnalyser analysers[] = {
    {"analyser", usual, [](Stage& a) { a.playWithPeaks(); }},
    {"analyser-before-sound", usual, [](Stage&) {}},
    {"analyser-logarithmic", usual, [](Stage& a) { logAxis(a, 60), a.playWithPeaks(); }},
    {"analyser-48-khz", usual, [](Stage& a) { a->put_FFTLength(2048), a.playWithPeaks(48000); }},
    {"analyser-gradients", usual, [](Stage& a) { a->put_ViewType(gradients), a.playWithPeaks(); }},
    {"analyser-spots", usual, [](Stage& a) { coarse(a), a->put_ViewType(spots), a.playWithPeaks(); }},
    {"analyser-gradient-spots-dark", usual,
     [](Stage& a) { dark(a), a->put_ViewType(gradientSpots), a.playWithPeaks(); }},
    {"analyser-mirrored-x", usual, [](Stage& a) { mirrored(a, true, false), a.playWithPeaks(); }},
    {"analyser-mirrored-y", usual, [](Stage& a) { coarse(a), mirrored(a, false, true), a.playWithPeaks(); }},
    {"analyser-mirrored-spots-light", usual,
     [](Stage& a) { light(a), mirrored(a, false, true), a->put_ViewType(spots), a.playWithPeaks(); }},
    {"analyser-mirrored-both-logarithmic-dark", usual,
     [](Stage& a) { dark(a), logAxis(a, 41), mirrored(a, true, true), a->put_ViewType(gradients), a.playWithPeaks(); }},
    {"analyser-no-scales", usual,
     [](Stage& a) {
       a->put_ScaleXVisible(VARIANT_FALSE), a->put_ScaleYVisible(VARIANT_FALSE), a->put_BorderType(2),
           a.playWithPeaks();
     }},
    {"analyser-no-segments-light", usual,
     [](Stage& a) { light(a), a->put_SpotInterval(0), a->put_ViewType(gradients), a.playWithPeaks(); }},
    {"analyser-20-to-80-db", usual,
     [](Stage& a) { coarse(a), a->put_ScaleYMin(20), a->put_ScaleYMax(80), a.playWithPeaks(); }},
    {"analyser-small", {80, 50}, [](Stage& a) { a->put_LineCount(8), a.playWithPeaks(); }},
    {"analyser-large", {1000, 600}, [](Stage& a) { dark(a), logAxis(a, 120), a.playWithPeaks(); }},
    {"analyser-drawn-by-a-container", {1280, 900}, [](Stage& a) { light(a), a.playWithPeaks(); }},
    {"analyser-dark-192-dpi", {960, 540}, [](Stage& a) { dark(a), logAxis(a, 48), a.playWithPeaks(); }, 192},
};

}  // namespace

std::span<const GoldenAnalyser> goldenAnalysers() { return analysers; }

}  // namespace av::test
