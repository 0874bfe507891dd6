#include "type2/win/control.h"

namespace av::type2 {

namespace {

const ole::ControlInfo controlInfo{CLSID_CAudioVisualization4Type2, L"CAudioVisualization4Type2 Object",
                                   OLEMISC_RECOMPOSEONRESIZE | OLEMISC_CANTLINKINSIDE | OLEMISC_INSIDEOUT |
                                       OLEMISC_ACTIVATEWHENVISIBLE | OLEMISC_SETCLIENTSITEFIRST,
                                   true};  // it paints itself from its timer, into a window of its own

}  // namespace

CAudioVisualization4Type2::CAudioVisualization4Type2(IUnknown* outer) noexcept
    : Control(outer, controlInfo), Dual(static_cast<ole::Object&>(*this)) {}

void* CAudioVisualization4Type2::findInterface(REFIID iid) noexcept {
  if (iid == IID_IDispatch || iid == IID_IAudioVisualizationTemplate || iid == IID_IAudioVisualization4Type2)
    return static_cast<IAudioVisualization4Type2*>(this);
  return Control::findInterface(iid);
}

void CAudioVisualization4Type2::draw(HDC target, const RECT& bounds) {
  FillRect(target, &bounds, static_cast<HBRUSH>(GetStockObject(BLACK_BRUSH)));
}

HRESULT createType2Control(IUnknown* outer, REFIID iid, void** object) {
  return ole::createObject<CAudioVisualization4Type2>(outer, iid, object);
}

}  // namespace av::type2
