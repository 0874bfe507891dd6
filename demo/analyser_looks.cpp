#include "demo/control_as.h"
#include "demo/failure.h"
#include "demo/looks.h"

namespace avdemo {

namespace {

using Analyser = IAudioVisualization4Type3;

constexpr LONG logarithmic = 1;  // XScaleType
constexpr LONG lineBorder = 1;

// ViewType.
constexpr LONG columns = 0;
constexpr LONG gradientColumns = 1;
constexpr LONG spots = 2;
constexpr LONG gradientSpots = 3;

void set(HRESULT result) { require(result, L"setting a property of the analyser"); }

// What is shown. A block is as long as the transform.

LONG linear(Analyser& analyser, LONG viewType) {
  set(analyser.put_ViewType(viewType));
  set(analyser.put_FFTLength(2048));
  return 2048;
}
/// The low bands of a logarithmic axis need long blocks.
LONG octaves(Analyser& analyser, LONG viewType) {
  set(analyser.put_ViewType(viewType));
  set(analyser.put_XScaleType(logarithmic));
  set(analyser.put_FFTLength(8192));
  return 8192;
}
/// Low frequencies in the centre, high ones at both sides; columns grow from the middle up and down.
LONG butterfly(Analyser& analyser, LONG viewType) {
  set(analyser.put_AlignmentX(1));
  set(analyser.put_AlignmentY(1));
  return octaves(analyser, viewType);
}

LONG asItIs(Analyser&) { return 512; }
LONG linearColumns(Analyser& analyser) { return linear(analyser, columns); }
LONG octaveColumns(Analyser& analyser) { return octaves(analyser, columns); }
LONG octaveGradients(Analyser& analyser) { return octaves(analyser, gradientColumns); }
LONG octaveSpots(Analyser& analyser) { return octaves(analyser, spots); }
LONG gradientOctaveSpots(Analyser& analyser) { return octaves(analyser, gradientSpots); }
LONG butterflyColumns(Analyser& analyser) { return butterfly(analyser, columns); }
LONG butterflyGradients(Analyser& analyser) { return butterfly(analyser, gradientColumns); }
LONG butterflySpots(Analyser& analyser) { return butterfly(analyser, spots); }

/// One continuous bar a column, its zones running into each other.
LONG smoothColumns(Analyser& analyser) {
  set(analyser.put_SpotInterval(0));
  return octaves(analyser, gradientColumns);
}

constexpr SIZE wide = {501, 270};

// In which colours and sizes.

struct Palette {
  COLORREF back, scale, border, tick;
  COLORREF lit[3], unlit[3];  // low, middle and high zone
};

/// The scales' texts are black, so their ground is not as dark as the rest.
constexpr Palette midnight = {RGB(13, 17, 23),
                              RGB(125, 135, 148),
                              RGB(48, 56, 66),
                              RGB(230, 237, 243),
                              {RGB(56, 139, 253), RGB(163, 113, 247), RGB(247, 120, 186)},
                              {RGB(22, 31, 46), RGB(30, 27, 46), RGB(42, 27, 38)}};

constexpr Palette paper = {RGB(255, 255, 255),
                           RGB(246, 248, 250),
                           RGB(200, 208, 217),
                           RGB(87, 96, 106),
                           {RGB(26, 127, 55), RGB(212, 140, 10), RGB(207, 34, 46)},
                           {RGB(233, 243, 236), RGB(250, 242, 226), RGB(252, 234, 236)}};

/// Lengths are pixels of a display of 96 DPI.
void apply(Analyser& analyser, const Palette& palette, int dpi) {
  const auto px = [dpi](int length) { return static_cast<LONG>(MulDiv(length, dpi, 96)); };
  set(analyser.put_BackColor(palette.back));
  set(analyser.put_ScaleColor(palette.scale));
  set(analyser.put_BorderColor(palette.border));
  set(analyser.put_BorderType(lineBorder));
  set(analyser.put_TickColor(palette.tick));
  set(analyser.put_LineLowColor(palette.lit[0]));
  set(analyser.put_LineMidColor(palette.lit[1]));
  set(analyser.put_LineHighColor(palette.lit[2]));
  set(analyser.put_BackLineLowColor(palette.unlit[0]));
  set(analyser.put_BackLineMidColor(palette.unlit[1]));
  set(analyser.put_BackLineHighColor(palette.unlit[2]));
  set(analyser.put_LineInterval(px(3)));
  set(analyser.put_LineCount(42));
  set(analyser.put_SpotHeight(px(3)));
  set(analyser.put_SpotInterval(px(2)));
}

void asItComes(Analyser&, int) {}
void dark(Analyser& analyser, int dpi) { apply(analyser, midnight, dpi); }
void light(Analyser& analyser, int dpi) { apply(analyser, paper, dpi); }

template <LONG (*shape)(Analyser&), void (*theme)(Analyser&, int)>
LONG prepare(IAudioVisualizationTemplate& control, int dpi) {
  const auto analyser = controlAs<Analyser>(control);
  theme(*analyser.Get(), dpi);
  return shape(*analyser.Get());
}

template <LONG (*shape)(Analyser&), void (*theme)(Analyser&, int)>
constexpr Look look(std::wstring_view name) {
  // Every block is drawn at once, and columns stay for half a second.
  return {name, &CLSID_CAudioVisualization4Type3, wide, 0, 0, prepare<shape, theme>, {}};
}

constexpr Look looks[] = {
    look<asItIs, asItComes>(L"analyser"),
    look<octaveColumns, asItComes>(L"analyser-logarithmic"),
    look<octaveGradients, asItComes>(L"analyser-gradients"),
    look<octaveSpots, asItComes>(L"analyser-spots"),
    look<butterflyColumns, asItComes>(L"analyser-mirrored"),
    look<linearColumns, dark>(L"analyser-linear-dark"),
    look<octaveColumns, dark>(L"analyser-dark"),
    look<gradientOctaveSpots, dark>(L"analyser-spots-dark"),
    look<butterflyGradients, dark>(L"analyser-mirrored-dark"),
    look<octaveColumns, light>(L"analyser-light"),
    look<smoothColumns, light>(L"analyser-smooth-light"),
    look<butterflySpots, light>(L"analyser-spots-mirrored-light"),
};

}  // namespace

std::span<const Look> analyserLooks() { return looks; }

}  // namespace avdemo
