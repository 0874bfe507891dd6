#include "demo/looks.h"

#include "demo/failure.h"

#include <olectl.h>
#include <wrl/client.h>

namespace avdemo {

namespace {

constexpr LONG waveform = 1;
constexpr LONG spectrum = 2;
constexpr LONG hannWindow = 3;
constexpr LONG lineBorder = 1;

void set(HRESULT result) { require(result, L"setting a property of the view"); }

void applyWaveform(IAudioVisualization4Type1& view) { set(view.put_VisualizationType(waveform)); }

void applySpectrum(IAudioVisualization4Type1& view) {
  set(view.put_FFTWindowType(hannWindow));
  set(view.put_VisualizationType(spectrum));
}

void applyColours(IAudioVisualization4Type1& view) {
  set(view.put_BackColor(RGB(18, 24, 38)));
  set(view.put_ScaleColor(RGB(30, 39, 58)));
  set(view.put_GridColor(RGB(48, 60, 84)));
  set(view.put_TextColor(RGB(190, 202, 224)));
  set(view.put_BorderColor(RGB(90, 108, 144)));
  set(view.put_BorderType(lineBorder));
  set(view.put_LineColor(1, RGB(96, 205, 255)));
  set(view.put_LineColor(2, RGB(255, 170, 92)));

  FONTDESC description = {};
  description.cbSizeofstruct = sizeof description;
  wchar_t face[] = L"Arial";
  description.lpstrName = face;
  description.cySize.int64 = 8 * 10000;  // points in a currency value
  description.sWeight = FW_NORMAL;
  description.sCharset = DEFAULT_CHARSET;
  Microsoft::WRL::ComPtr<IFontDisp> font;
  set(OleCreateFontIndirect(&description, IID_PPV_ARGS(font.GetAddressOf())));
  set(view.putref_ScaleFont(font.Get()));
}

void applyColouredWaveform(IAudioVisualization4Type1& view) {
  applyColours(view);
  applyWaveform(view);
}

void applyColouredSpectrum(IAudioVisualization4Type1& view) {
  applyColours(view);
  applySpectrum(view);
}

constexpr Look looks[] = {
    {L"waveform", applyWaveform},
    {L"spectrum", applySpectrum},
    {L"waveform-colours", applyColouredWaveform},
    {L"spectrum-colours", applyColouredSpectrum},
};

}  // namespace

std::span<const Look> allLooks() { return looks; }

}  // namespace avdemo
