#include "demo/looks.h"

#include "demo/control_as.h"
#include "demo/failure.h"

#include <olectl.h>
#include <wrl/client.h>

#include <array>

namespace avdemo {

namespace {

using View = IAudioVisualization4Type1;

constexpr LONG linearAxis = 1;
constexpr LONG octaveAxis = 2;
constexpr LONG hannWindow = 3;
constexpr LONG lineBorder = 1;

void set(HRESULT result) { require(result, L"setting a property of the view"); }

// What is shown.

void waveform(View& view) { set(view.put_VisualizationType(1)); }

void spectrum(View& view, LONG type, LONG axis, LONG samples) {
  set(view.put_FFTWindowSize(samples));
  set(view.put_FFTWindowType(hannWindow));
  set(view.put_FFTViewType(axis));
  set(view.put_VisualizationType(type));
}
// Short windows leave the linear axis a pixel a line; low octaves need long ones.
void lines(View& view) { spectrum(view, 2, linearAxis, 1024); }
void octaves(View& view) { spectrum(view, 2, octaveAxis, 2048); }
void redBars(View& view) { spectrum(view, 3, linearAxis, 512); }
void blueBars(View& view) { spectrum(view, 4, linearAxis, 512); }
void greenBars(View& view) { spectrum(view, 5, linearAxis, 512); }
void redOctaves(View& view) { spectrum(view, 3, octaveAxis, 4096); }
void blueOctaves(View& view) { spectrum(view, 4, octaveAxis, 4096); }
void greenOctaves(View& view) { spectrum(view, 5, octaveAxis, 4096); }

/// The stereo image alone: scales say nothing about it.
void stereo(View& view, LONG type) {
  set(view.put_FFTWindowSize(1024));
  set(view.put_ScaleXVisible(VARIANT_FALSE));
  set(view.put_ScaleYVisible(VARIANT_FALSE));
  set(view.put_VisualizationType(type));
}
void stereoLine(View& view) { stereo(view, 6); }
void stereoBalance(View& view) { stereo(view, 7); }

// At 96 DPI. The X-Y views have their square, and the row of the correlation below it.
constexpr SIZE wide = {480, 270};
constexpr SIZE square = {300, 315};

// In which colours.

struct Palette {
  COLORREF back, scale, grid, text, border;
  std::array<COLORREF, 4> lines;
};

constexpr Palette midnight = {
    RGB(13, 17, 23), RGB(22, 27, 34),
    RGB(48, 56, 67), RGB(173, 184, 197),
    RGB(48, 56, 66), {RGB(88, 166, 255), RGB(255, 166, 87), RGB(126, 231, 135), RGB(210, 168, 255)}};

constexpr Palette paper = {
    RGB(255, 255, 255), RGB(246, 248, 250), RGB(216, 222, 229),
    RGB(82, 92, 105),   RGB(200, 208, 217), {RGB(9, 105, 218), RGB(219, 97, 9), RGB(26, 127, 55), RGB(130, 80, 223)}};

void apply(View& view, const Palette& palette) {
  set(view.put_BackColor(palette.back));
  set(view.put_ScaleColor(palette.scale));
  set(view.put_GridColor(palette.grid));
  set(view.put_TextColor(palette.text));
  set(view.put_BorderColor(palette.border));
  set(view.put_BorderType(lineBorder));
  LONG channel = 1;
  for (const COLORREF colour : palette.lines) set(view.put_LineColor(channel++, colour));

  FONTDESC description = {};
  description.cbSizeofstruct = sizeof description;
  wchar_t face[] = L"Arial";
  description.lpstrName = face;
  description.cySize.int64 = 7 * 10000;  // points in a currency value
  description.sWeight = FW_NORMAL;
  description.sCharset = DEFAULT_CHARSET;
  Microsoft::WRL::ComPtr<IFontDisp> font;
  set(OleCreateFontIndirect(&description, IID_PPV_ARGS(font.GetAddressOf())));
  set(view.putref_ScaleFont(font.Get()));
}

void asItComes(View&) {}
void dark(View& view) { apply(view, midnight); }
void light(View& view) { apply(view, paper); }

/// The view analyses one window of each block, so blocks of that length show everything.
template <void (*shape)(View&), void (*theme)(View&)>
LONG prepare(IAudioVisualizationTemplate& control, int) {
  const auto view = controlAs<View>(control);
  theme(*view.Get());
  shape(*view.Get());
  LONG windowSize = 0;
  require(view->get_FFTWindowSize(&windowSize), L"asking for the size of the analysis");
  return windowSize;
}

/// Falling levels lose a quarter every 30 ms: 100 dB are below 0.1 dB after 24 steps.
constexpr DWORD restMs = 900;
constexpr unsigned restTicks = 30;

template <void (*shape)(View&), void (*theme)(View&)>
constexpr Look look(std::wstring_view name, SIZE sizePx) {
  return {name, &CLSID_CAudioVisualization4Type1, sizePx, restMs, restTicks, prepare<shape, theme>, {}};
}

constexpr Look looks[] = {
    look<waveform, asItComes>(L"waveform", wide),
    look<lines, asItComes>(L"spectrum", wide),
    look<octaves, asItComes>(L"octaves", wide),
    look<redBars, asItComes>(L"bars-3", wide),
    look<blueBars, asItComes>(L"bars-4", wide),
    look<greenBars, asItComes>(L"bars-5", wide),
    look<stereoLine, asItComes>(L"xy-6", square),
    look<stereoBalance, asItComes>(L"xy-7", square),
    look<waveform, dark>(L"waveform-dark", wide),
    look<lines, dark>(L"spectrum-dark", wide),
    look<octaves, dark>(L"octaves-dark", wide),
    look<blueOctaves, dark>(L"bars-4-octaves-dark", wide),
    look<greenOctaves, dark>(L"bars-5-octaves-dark", wide),
    look<stereoBalance, dark>(L"xy-7-dark", square),
    look<waveform, light>(L"waveform-light", wide),
    look<lines, light>(L"spectrum-light", wide),
    look<octaves, light>(L"octaves-light", wide),
    look<redOctaves, light>(L"bars-3-octaves-light", wide),
    look<stereoLine, light>(L"xy-6-light", square),
};

}  // namespace

std::span<const Look> viewLooks() { return looks; }

}  // namespace avdemo
