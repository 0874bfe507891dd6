#include "companion/control_maker.h"

#include <QELAudioVisualization4.h>

#include <string>

#include "companion/failure.h"
#include "companion/module.h"

namespace av::companion {

using Microsoft::WRL::ComPtr;

namespace {

const CLSID& classOf(LONG number) {
  switch (number) {
    case 1: return CLSID_CAudioVisualization4Type1;
    case 2: return CLSID_CAudioVisualization4Type2;
    case 3: return CLSID_CAudioVisualization4Type3;
    default:
      throw badArgument(
          L"the number must be 1 (waveform and spectrum view), 2 (level meter) or 3 (spectrum analyser).");
  }
}

std::wstring folderOfThisDll() {
  const std::wstring& path = theModule().path();
  return path.substr(0, path.find_last_of(L'\\') + 1);
}

}  // namespace

ComPtr<IDispatch> ControlMaker::create(LONG number) {
  const CLSID& classId = classOf(number);
  ComPtr<IDispatch> control;
  const HRESULT registered = avhost::createRegistered(classId, control.GetAddressOf());
  if (SUCCEEDED(registered)) return control;

  const std::wstring folder = folderOfThisDll();
  HRESULT beside = S_OK;
  if (!m_manifest.isOpen()) beside = m_manifest.openFile((folder + L"QELAudioVisualization4.manifest").c_str());
  if (SUCCEEDED(beside)) beside = m_manifest.create(classId, control.GetAddressOf());
  if (SUCCEEDED(beside)) return control;
  throw Failure(registered,
                L"QELAudioVisualization4.dll is neither registered nor, with its manifest, in the folder " + folder);
}

}  // namespace av::companion
