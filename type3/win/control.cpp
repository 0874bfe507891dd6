#include "type3/win/control.h"

namespace av::type3 {

namespace {

const ole::ControlInfo controlInfo{CLSID_CAudioVisualization4Type3, L"CAudioVisualization4Type3 Object",
                                   OLEMISC_RECOMPOSEONRESIZE | OLEMISC_CANTLINKINSIDE | OLEMISC_INSIDEOUT |
                                       OLEMISC_ACTIVATEWHENVISIBLE | OLEMISC_SETCLIENTSITEFIRST};

}  // namespace

CAudioVisualization4Type3::CAudioVisualization4Type3(IUnknown* outer) noexcept
    : Control(outer, controlInfo), Dual(static_cast<ole::Object&>(*this)) {}

void* CAudioVisualization4Type3::findInterface(REFIID iid) noexcept {
  if (iid == IID_IDispatch || iid == IID_IAudioVisualizationTemplate || iid == IID_IAudioVisualization4Type3)
    return static_cast<IAudioVisualization4Type3*>(this);
  return Control::findInterface(iid);
}

void CAudioVisualization4Type3::draw(HDC target, const RECT& bounds) {
  FillRect(target, &bounds, static_cast<HBRUSH>(GetStockObject(BLACK_BRUSH)));
}

HRESULT createType3Control(IUnknown* outer, REFIID iid, void** object) {
  return ole::createObject<CAudioVisualization4Type3>(outer, iid, object);
}

}  // namespace av::type3
