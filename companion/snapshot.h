#pragma once

#include "companion/automation_object.h"
#include "companion/control_maker.h"
#include "companion/scaled_font.h"

#include <AudioBlocks.h>
#include <oleidl.h>
#include <wrl/client.h>

namespace av::companion {

/// `AudioBlocks.Snapshot`: a control's picture as a file. The control needs no window: it stays inactive, and is drawn
/// as a container draws an inactive control. What its timer would do, if it had a container, is done here.
class SnapshotObject final : public AutomationObject<ISnapshot> {
 public:
  explicit SnapshotObject(IUnknown* outer) noexcept;

  // ISnapshot [control thread]
  STDMETHODIMP CreateControl(LONG number, IDispatch** created) override;
  STDMETHODIMP get_Control(IDispatch** value) override;
  STDMETHODIMP put_Control(IDispatch* value) override;
  STDMETHODIMP putref_Control(IDispatch* value) override { return put_Control(value); }
  STDMETHODIMP get_Width(LONG* value) override;
  STDMETHODIMP put_Width(LONG value) override;
  STDMETHODIMP get_Height(LONG* value) override;
  STDMETHODIMP put_Height(LONG value) override;
  STDMETHODIMP get_Dpi(LONG* value) override;
  STDMETHODIMP put_Dpi(LONG value) override;
  STDMETHODIMP Wait(LONG milliseconds) override;
  STDMETHODIMP Save(BSTR path) override;

 private:
  void tearDown() noexcept override { letGo(); }

  void take(IDispatch* control);
  void letGo() noexcept;
  void resize(SIZE sizePx);
  /// Whether no container but this object cares for the control.
  [[nodiscard]] bool ownsControl() const;
  void layOut();
  void tick(int count);

  ControlMaker m_maker;
  Microsoft::WRL::ComPtr<IDispatch> m_control;
  Microsoft::WRL::ComPtr<IViewObject> m_view;  // the control's
  ScaledFont m_font;
  SIZE m_sizePx = {640, 360};
  int m_screenDpi;
  int m_dpi;
};

/// See ole::CreateFunction.
HRESULT createSnapshot(IUnknown* outer, REFIID iid, void** object);

}  // namespace av::companion
