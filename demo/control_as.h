#pragma once

#include "demo/failure.h"

#include <QELAudioVisualization4.h>
#include <wrl/client.h>

namespace avdemo {

/// The interface with the properties of a control. Throws a Failure where it is another control.
template <class Control>
Microsoft::WRL::ComPtr<Control> controlAs(IAudioVisualizationTemplate& control) {
  Microsoft::WRL::ComPtr<Control> properties;
  require(control.QueryInterface(__uuidof(Control), reinterpret_cast<void**>(properties.GetAddressOf())),
          L"asking for the control's properties");
  return properties;
}

}  // namespace avdemo
