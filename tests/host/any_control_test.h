#pragma once

#include "host/audio_buffers.h"
#include "host/each_control_test.h"
#include "host/window_picture.h"

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

namespace av::test {

/// A property that a host can put, as the type library describes it.
struct PutProperty {
  std::wstring name;
  DISPID id = 0;
  VARTYPE type = VT_EMPTY;  ///< VT_UI4 for colours, VT_DISPATCH for fonts
  bool indexed = false;
  bool byReference = false;
};

/// Every property of the control that can be put.
std::vector<PutProperty> putProperties(IDispatch& control);

/// Puts a value through IDispatch; an indexed property gets index 1.
HRESULT putValue(IDispatch& control, const PutProperty& property, VARIANT value);

/// A test on each of the three classes that treats them alike: properties by name, blocks, pictures.
class AnyControlTest : public EachControlTest {
 protected:
  /// One or more values of one property, with the rest as they are.
  struct Look {
    const wchar_t* property;
    std::vector<LONG> values;
  };

  void SetUp() override;
  void TearDown() override;

  /// In-place active in a window of that client size. Nothing falls and the view draws every block at once.
  void activate(SIZE clientSizePx);
  void put(const wchar_t* property, LONG value);
  HRESULT send(const std::vector<std::int16_t>& samples);
  /// A block of noise that every control analyses.
  HRESULT sendNoise(int amplitude = 20000);
  /// What the window shows after a tick and a redraw.
  WindowPicture shown();
  HRESULT drawOn(HDC target, const RECTL& bounds);
  /// What the control draws outside its window.
  WindowPicture drawn(SIZE size);
  /// The property that changes a control's picture most, with values that all draw something.
  Look looks() const;

  HWND window() const { return m_container.controlWindow(); }
  bool isView() const { return GetParam() == 1; }
  bool isMeter() const { return GetParam() == 2; }
  bool isAnalyser() const { return GetParam() == 3; }
  const CLSID& classId() const;

  ComPtr<IAudioVisualizationTemplate> m_audio;
};

}  // namespace av::test
