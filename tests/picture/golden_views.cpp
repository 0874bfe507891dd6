#include "picture/golden_views.h"

namespace av::test {
namespace {

using Stage = GoldenStage;

constexpr SIZE usual{480, 270};

// The looks. Colours are put as hosts put them: 0x00BBGGRR, or RGB().

void dark(Stage& view) {
  view->put_BackColor(RGB(13, 17, 23));
  view->put_ScaleColor(RGB(22, 27, 34));
  view->put_GridColor(RGB(48, 54, 61));
  view->put_TextColor(RGB(201, 209, 217));
  view->put_BorderColor(RGB(68, 76, 86));
  view->put_BorderType(1);
  view->put_LineColor(1, RGB(88, 166, 255));
  view->put_LineColor(2, RGB(255, 123, 114));
  view->put_LineColor(3, RGB(126, 231, 135));
  view.font(L"Arial", 7);
}

void light(Stage& view) {
  view->put_BackColor(RGB(255, 255, 255));
  view->put_ScaleColor(RGB(246, 248, 250));
  view->put_GridColor(RGB(216, 222, 228));
  view->put_TextColor(RGB(87, 96, 106));
  view->put_BorderColor(RGB(175, 184, 193));
  view->put_BorderType(1);
  view->put_LineColor(1, RGB(9, 105, 218));
  view->put_LineColor(2, RGB(207, 34, 46));
  view->put_LineColor(3, RGB(26, 127, 55));
  view.font(L"Arial", 7);
}

// The kinds of view.

void unsmoothed(Stage& view) { view->put_VisualizationSmooth(VARIANT_FALSE); }

void waveform(Stage& view) { unsmoothed(view); }

void type(Stage& view, LONG visualizationType, LONG axis) {
  unsmoothed(view);
  view->put_FFTWindowType(3);
  view->put_FFTViewType(axis);
  view->put_VisualizationType(visualizationType);
}
void spectrum(Stage& view) { type(view, 2, 1); }
void octaves(Stage& view) { type(view, 2, 2); }

void scales(Stage& view, bool x, bool y, bool grid = true) {
  view->put_ScaleXVisible(x ? VARIANT_TRUE : VARIANT_FALSE);
  view->put_ScaleYVisible(y ? VARIANT_TRUE : VARIANT_FALSE);
  view->put_GridVisible(grid ? VARIANT_TRUE : VARIANT_FALSE);
}

constexpr GoldenView views[] = {
    {"waveform", usual, [](Stage& v) { waveform(v), v.play(); }},
    {"waveform-before-sound", usual, [](Stage& v) { waveform(v); }},
    {"waveform-mono", usual, [](Stage& v) { waveform(v), v.play(16, 1); }},
    {"waveform-3-channels", usual, [](Stage& v) { waveform(v), v.play(16, 3); }},
    {"waveform-18-channels", usual, [](Stage& v) { waveform(v), v.play(16, 18); }},
    {"waveform-8-bits", usual, [](Stage& v) { waveform(v), v.play(8), waveform(v); }},
    {"waveform-32-bits", usual, [](Stage& v) { waveform(v), v.play(32), waveform(v); }},
    {"waveform-64-samples", usual, [](Stage& v) { v->put_FFTWindowSize(64), waveform(v), v.play(16, 2, 64); }},
    {"waveform-16384-samples", usual, [](Stage& v) { v->put_FFTWindowSize(16384), waveform(v), v.play(16, 2, 16384); }},
    {"waveform-upper-half", usual, [](Stage& v) { waveform(v), v->put_ScaleYMin(50), v.play(); }},
    {"waveform-dark", usual, [](Stage& v) { dark(v), waveform(v), v.play(); }},
    {"waveform-light", usual, [](Stage& v) { light(v), waveform(v), v.play(); }},
    {"waveform-small", {80, 50}, [](Stage& v) { waveform(v), v.play(); }},
    {"waveform-low", {300, 60}, [](Stage& v) { waveform(v), v.play(); }},
    {"waveform-narrow", {100, 300}, [](Stage& v) { waveform(v), v.play(); }},
    {"waveform-large", {1000, 600}, [](Stage& v) { waveform(v), v.play(); }},
    {"waveform-drawn-by-a-container", {1920, 1080}, [](Stage& v) { dark(v), waveform(v), v.play(); }},
    {"waveform-192-dpi", {960, 540}, [](Stage& v) { waveform(v), v.play(); }, 192},

    {"border-0", {240, 135}, [](Stage& v) { light(v), v->put_BorderType(0), waveform(v), v.play(); }},
    {"border-1", {240, 135}, [](Stage& v) { light(v), v->put_BorderType(1), waveform(v), v.play(); }},
    {"border-2", {240, 135}, [](Stage& v) { light(v), v->put_BorderType(2), waveform(v), v.play(); }},
    {"border-3", {240, 135}, [](Stage& v) { light(v), v->put_BorderType(3), waveform(v), v.play(); }},

    {"no-horizontal-scale", {240, 135}, [](Stage& v) { scales(v, false, true), waveform(v), v.play(); }},
    {"no-vertical-scale", {240, 135}, [](Stage& v) { scales(v, true, false), waveform(v), v.play(); }},
    {"no-scales", {240, 135}, [](Stage& v) { scales(v, false, false), waveform(v), v.play(); }},
    {"no-grid", {240, 135}, [](Stage& v) { scales(v, true, true, false), waveform(v), v.play(); }},
    {"curve-alone", {240, 135}, [](Stage& v) { scales(v, false, false, false), waveform(v), v.play(); }},

    {"font-9-points", usual, [](Stage& v) { v.font(L"Arial", 9), spectrum(v), v.play(); }},
    {"font-12-points-bold-italic", usual, [](Stage& v) { v.font(L"Arial", 12, true, true), spectrum(v), v.play(); }},
    {"font-24-points", usual, [](Stage& v) { v.font(L"Arial", 24), spectrum(v), v.play(); }},

    {"spectrum", usual, [](Stage& v) { spectrum(v), v.play(); }},
    {"spectrum-before-sound", usual, [](Stage& v) { spectrum(v); }},
    {"spectrum-mono", usual, [](Stage& v) { spectrum(v), v.play(16, 1); }},
    {"spectrum-3-channels", usual, [](Stage& v) { spectrum(v), v.play(16, 3); }},
    {"spectrum-18-channels", usual, [](Stage& v) { spectrum(v), v.play(16, 18); }},
    {"spectrum-8-bits", usual, [](Stage& v) { spectrum(v), v.play(8), unsmoothed(v); }},
    {"spectrum-24-bits-192-khz", usual, [](Stage& v) { spectrum(v), v.play(24, 2, 1024, 192000), unsmoothed(v); }},
    {"spectrum-32-bits-8-khz", usual, [](Stage& v) { spectrum(v), v.play(32, 2, 1024, 8000), unsmoothed(v); }},
    {"spectrum-64-samples", usual, [](Stage& v) { v->put_FFTWindowSize(64), spectrum(v), v.play(16, 2, 64); }},
    {"spectrum-16384-samples", usual, [](Stage& v) { v->put_FFTWindowSize(16384), spectrum(v), v.play(16, 2, 16384); }},
    {"spectrum-without-a-window", usual, [](Stage& v) { spectrum(v), v->put_FFTWindowType(0), v.play(); }},
    {"spectrum-20-to-80-percent", usual,
     [](Stage& v) { spectrum(v), v->put_ScaleYMin(20), v->put_ScaleYMax(80), v.play(); }},
    {"spectrum-rising", usual,
     [](Stage& v) { spectrum(v), v->put_VisualizationSmooth(VARIANT_TRUE), v.play(), v.tick(4); }},
    {"spectrum-falling", usual,
     [](Stage& v) {
       spectrum(v), v->put_VisualizationSmooth(VARIANT_TRUE), v.play(), v.tick(40), v.playLevel(0), v.tick(1);
     }},
    {"spectrum-dark", usual, [](Stage& v) { dark(v), spectrum(v), v.play(); }},
    {"spectrum-light", usual, [](Stage& v) { light(v), spectrum(v), v.play(); }},
    {"spectrum-small", {80, 50}, [](Stage& v) { spectrum(v), v.play(); }},
    {"spectrum-large", {1000, 600}, [](Stage& v) { dark(v), spectrum(v), v.play(); }},
    {"spectrum-dark-192-dpi", {960, 540}, [](Stage& v) { dark(v), spectrum(v), v.play(); }, 192},

    {"octaves", usual, [](Stage& v) { octaves(v), v.play(); }},
    {"octaves-mono", usual, [](Stage& v) { octaves(v), v.play(16, 1); }},
    {"octaves-3-channels", usual, [](Stage& v) { octaves(v), v.play(16, 3); }},
    {"octaves-64-samples", usual, [](Stage& v) { v->put_FFTWindowSize(64), octaves(v), v.play(16, 2, 64); }},
    {"octaves-16384-samples", usual, [](Stage& v) { v->put_FFTWindowSize(16384), octaves(v), v.play(16, 2, 16384); }},
    {"octaves-dark", usual, [](Stage& v) { dark(v), octaves(v), v.play(); }},
    {"octaves-light", usual, [](Stage& v) { light(v), octaves(v), v.play(); }},
    {"octaves-small", {80, 50}, [](Stage& v) { octaves(v), v.play(); }},
    {"octaves-large", {1000, 600}, [](Stage& v) { light(v), octaves(v), v.play(); }},

    {"bars-3", usual, [](Stage& v) { type(v, 3, 1), v.play(); }},
    {"bars-4", usual, [](Stage& v) { type(v, 4, 1), v.play(); }},
    {"bars-5", usual, [](Stage& v) { type(v, 5, 1), v.play(); }},
    {"bars-3-octaves", usual, [](Stage& v) { type(v, 3, 2), v.play(); }},
    {"bars-4-octaves", usual, [](Stage& v) { type(v, 4, 2), v.play(); }},
    {"bars-5-octaves", usual, [](Stage& v) { type(v, 5, 2), v.play(); }},
    {"bars-mono", usual, [](Stage& v) { type(v, 3, 1), v.play(16, 1); }},
    {"bars-3-channels", usual, [](Stage& v) { type(v, 4, 1), v.play(16, 3); }},
    {"bars-18-channels", usual, [](Stage& v) { type(v, 5, 1), v.play(16, 18); }},
    {"bars-64-samples", usual, [](Stage& v) { v->put_FFTWindowSize(64), type(v, 3, 1), v.play(16, 2, 64); }},
    {"bars-20-to-80-percent", usual,
     [](Stage& v) { type(v, 4, 1), v->put_ScaleYMin(20), v->put_ScaleYMax(80), v.play(); }},
    {"bars-rising", usual,
     [](Stage& v) { type(v, 5, 1), v->put_VisualizationSmooth(VARIANT_TRUE), v.play(), v.tick(6); }},
    {"bars-before-sound", usual, [](Stage& v) { type(v, 3, 1); }},
    {"bars-dark", usual, [](Stage& v) { dark(v), type(v, 4, 2), v.play(); }},
    {"bars-light", usual, [](Stage& v) { light(v), type(v, 3, 2), v.play(); }},
    {"bars-small", {80, 50}, [](Stage& v) { type(v, 5, 1), v.play(); }},
    {"bars-large", {1000, 600}, [](Stage& v) { dark(v), type(v, 3, 1), v.play(); }},
    {"bars-drawn-by-a-container", {1280, 900}, [](Stage& v) { type(v, 4, 1), v.play(); }},
    {"bars-192-dpi", {960, 540}, [](Stage& v) { type(v, 5, 2), v.play(); }, 192},

    {"xy-6", usual, [](Stage& v) { type(v, 6, 1), v.play(); }},
    {"xy-7", usual, [](Stage& v) { type(v, 7, 1), v.play(); }},
    {"xy-before-sound", usual, [](Stage& v) { type(v, 6, 1); }},
    {"xy-6-mono", usual, [](Stage& v) { type(v, 6, 1), v.play(16, 1); }},
    {"xy-7-mono", usual, [](Stage& v) { type(v, 7, 1), v.play(16, 1); }},
    {"xy-6-3-channels", usual, [](Stage& v) { type(v, 6, 1), v.play(16, 3); }},
    {"xy-7-3-channels", usual, [](Stage& v) { type(v, 7, 1), v.play(16, 3); }},
    {"xy-6-18-channels", usual, [](Stage& v) { type(v, 6, 1), v.play(16, 18); }},
    {"xy-6-dark", usual, [](Stage& v) { dark(v), type(v, 6, 1), v.play(); }},
    {"xy-7-light", usual, [](Stage& v) { light(v), type(v, 7, 1), v.play(); }},
    {"xy-6-no-scales", {300, 315}, [](Stage& v) { scales(v, false, false), type(v, 6, 1), v.play(); }},
    {"xy-6-no-grid", usual, [](Stage& v) { scales(v, true, true, false), type(v, 6, 1), v.play(); }},
    {"xy-7-tall", {200, 400}, [](Stage& v) { type(v, 7, 1), v.play(); }},
    {"xy-6-small", {80, 50}, [](Stage& v) { type(v, 6, 1), v.play(); }},
    {"xy-7-large", {1000, 600}, [](Stage& v) { dark(v), type(v, 7, 1), v.play(); }},

    {"type-9-shows-no-curve", {240, 135}, [](Stage& v) { type(v, 9, 1), v.play(); }},
};

}  // namespace

std::span<const GoldenView> goldenViews() { return views; }

}  // namespace av::test
