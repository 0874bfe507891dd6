#pragma once

#include "host/create.h"

#include <QELAudioVisualization4.h>

#include <wrl/client.h>

namespace avplayer {

/// Where controls come from: the library beside the program, or the registry.
class ControlSource {
 public:
  HRESULT open(bool registered) {
    m_registered = registered;
    return registered ? S_OK : m_library.loadBesideProgram(L"QELAudioVisualization4.dll");
  }
  HRESULT create(REFCLSID classId, Microsoft::WRL::ComPtr<IAudioVisualizationTemplate>& control) const {
    return m_registered ? avhost::createRegistered(classId, control.GetAddressOf())
                        : m_library.create(classId, control.GetAddressOf());
  }

 private:
  bool m_registered = false;
  avhost::ControlLibrary m_library;
};

}  // namespace avplayer
