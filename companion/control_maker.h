#pragma once

#include <windows.h>

#include <oaidl.h>
#include <wrl/client.h>

#include "host/create.h"

namespace av::companion {

/// Creates the controls by number: registered ones, or else those of the library beside this DLL, through its manifest.
/// The manifest's activation context lives as long as this object; the controls do not need it once they are made.
class ControlMaker {
 public:
  /// 1 waveform and spectrum view, 2 level meter, 3 spectrum analyser. Throws a Failure.  [control thread]
  Microsoft::WRL::ComPtr<IDispatch> create(LONG number);

 private:
  avhost::ActivationContext m_manifest;
};

}  // namespace av::companion
