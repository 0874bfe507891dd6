#pragma once

#include "QELAudioVisualization4.h"
#include "ole/module_lock.h"

#include <wrl/client.h>

#include <atomic>

namespace av {

/// What a repaint timer marshals to its workers in the control's place. A worker's proxy keeps this object alive, not
/// the control: a counted reference to the control would keep it from ever being destroyed.
/// It answers for the control's dispatch interface with the twelve slots of IAudioVisualizationTemplate; only
/// `_OnTimer` does anything, and the worker that holds the proxy calls nothing else.
/// It counts as an object of the module, so that the DLL stays loaded until the last worker has released it.
class TickObject final : public IAudioVisualizationTemplate {
 public:
  /// `control` is not counted. `dispatchId`: the control's dispatch interface, derived from
  /// IAudioVisualizationTemplate. Null when memory is out.
  // [control thread]
  static Microsoft::WRL::ComPtr<TickObject> create(IAudioVisualizationTemplate* control, const IID& dispatchId,
                                                   ole::ModuleLock& moduleLock) noexcept;

  /// From now on a tick finds no control and returns S_OK.
  // [control thread]
  void cutLoose() noexcept { m_control = nullptr; }

  /// Whether a tick is on this thread's stack: its worker cannot end before that tick has returned.
  // [control thread]
  bool insideTick() const noexcept { return m_ticksOnStack != 0; }

  /// Whether anybody besides the timer holds the object: what was marshalled is still good for something.
  // [any thread]
  bool isSharedOut() const noexcept { return m_references.load(std::memory_order_relaxed) > 1; }

  // [any thread]
  STDMETHODIMP QueryInterface(REFIID id, void** object) override;
  STDMETHODIMP_(ULONG) AddRef() override;
  STDMETHODIMP_(ULONG) Release() override;

  /// One tick. The control is held while it runs: it may lose its last other reference meanwhile.
  // [control thread, delivered by marshalling]
  STDMETHODIMP _OnTimer() override;

  // Slots that nobody calls.
  STDMETHODIMP GetTypeInfoCount(UINT* count) override;
  STDMETHODIMP GetTypeInfo(UINT, LCID, ITypeInfo** info) override;
  STDMETHODIMP GetIDsOfNames(REFIID, LPOLESTR*, UINT, LCID, DISPID*) override { return E_NOTIMPL; }
  STDMETHODIMP Invoke(DISPID, REFIID, LCID, WORD, DISPPARAMS*, VARIANT*, EXCEPINFO*, UINT*) override {
    return E_NOTIMPL;
  }
  STDMETHODIMP SendAudioData(IUnknown*) override { return E_NOTIMPL; }
  STDMETHODIMP Repaint() override { return E_NOTIMPL; }
  STDMETHODIMP SetAdditionalParam(BSTR, VARIANT) override { return E_NOTIMPL; }
  STDMETHODIMP GetAdditionalParam(BSTR, VARIANT*) override { return E_NOTIMPL; }

 private:
  TickObject(IAudioVisualizationTemplate* control, const IID& dispatchId, ole::ModuleLock& moduleLock) noexcept;
  ~TickObject();

  std::atomic<ULONG> m_references{1};
  ole::ModuleLock& m_moduleLock;
  const IID m_dispatchId;
  IAudioVisualizationTemplate* m_control;  ///< weak; control thread only
  int m_ticksOnStack = 0;                  ///< control thread only; ticks nest when one pumps messages
};

}  // namespace av
