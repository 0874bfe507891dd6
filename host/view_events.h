#pragma once

// For hosts: the mouse events of the waveform and spectrum view as methods. Copy this one file; it needs C++11, the
// Windows headers and nothing else of this project.
//
//   struct Pointer : avhost::ViewEvents {
//     void mouseDown(LONG x, LONG y, LONG xValue, LONG yValue) override { show(xValue, yValue); }
//   };
//   Pointer pointer;
//   pointer.connect(view);
//
// docs/events.md says when each event comes and in what units.

#include <windows.h>

#include <oaidl.h>
#include <ocidl.h>

#include <new>

namespace avhost {

/// Hears of the view's mouse events: derive, override what is wanted, connect. All methods are called on the thread that
/// made the view. [control thread]
///
/// While it is connected it holds the view. It disconnects itself at its end, which may come inside an event, as may
/// everything else: closing the view, releasing it, connecting and disconnecting.
class ViewEvents {
 public:
  ViewEvents() = default;
  ViewEvents(const ViewEvents&) = delete;
  ViewEvents& operator=(const ViewEvents&) = delete;
  virtual ~ViewEvents() { disconnect(); }

  // Positions are pixels of the view, which may be negative; xValue is a sample's index or a frequency in Hz, yValue a
  // level in dB.

  /// The pointer moved over the plot.
  virtual void mouseMove(LONG /*x*/, LONG /*y*/, LONG /*xValue*/, LONG /*yValue*/) {}
  /// The left button was released.
  virtual void mouseUp(LONG /*x*/, LONG /*y*/, LONG /*xValue*/, LONG /*yValue*/) {}
  /// The left button was pressed.
  virtual void mouseDown(LONG /*x*/, LONG /*y*/, LONG /*xValue*/, LONG /*yValue*/) {}
  /// Follows every mouseUp.
  virtual void mouseClick(LONG /*x*/, LONG /*y*/) {}
  /// The left button was pressed a second time, instead of mouseDown.
  virtual void mouseDblClick() {}

  /// E_UNEXPECTED while it is connected already, CONNECT_E_NOCONNECTION for a control without these events.
  HRESULT connect(IUnknown* view) noexcept {
    if (!view) return E_POINTER;
    if (m_sink) return E_UNEXPECTED;
    IConnectionPointContainer* points = nullptr;
    HRESULT result = view->QueryInterface(IID_IConnectionPointContainer, reinterpret_cast<void**>(&points));
    if (FAILED(result)) return result;
    result = points->FindConnectionPoint(interfaceId(), &m_point);
    points->Release();
    if (SUCCEEDED(result)) {
      m_sink = new (std::nothrow) Sink(*this);
      result = m_sink ? m_point->Advise(m_sink, &m_cookie) : E_OUTOFMEMORY;
    }
    if (FAILED(result)) letGo();
    return result;
  }

  /// Does nothing while it is not connected.
  void disconnect() noexcept {
    if (!m_sink) return;
    m_sink->leave();  // first: whoever still holds the sink finds nobody behind it
    m_point->Unadvise(m_cookie);
    letGo();
  }

  bool isConnected() const noexcept { return m_sink != nullptr; }

  /// `_IAudioVisualization4Type1Events`.
  static REFIID interfaceId() noexcept {
    static constexpr IID id = {0xDEA14881, 0xD3D1, 0x4AE6, {0x85, 0x61, 0x9E, 0xC6, 0xD9, 0xEE, 0xBC, 0xF9}};
    return id;
  }

 private:
  // What the view holds. It outlives its owner where the view, or a call that is under way, needs it longer.
  class Sink final : public IDispatch {
   public:
    explicit Sink(ViewEvents& owner) noexcept : m_owner(&owner) {}
    void leave() noexcept { m_owner = nullptr; }

    STDMETHODIMP QueryInterface(REFIID iid, void** object) override {
      if (!object) return E_POINTER;
      const bool known =
          IsEqualIID(iid, IID_IUnknown) || IsEqualIID(iid, IID_IDispatch) || IsEqualIID(iid, ViewEvents::interfaceId());
      *object = known ? this : nullptr;
      if (!known) return E_NOINTERFACE;
      AddRef();
      return S_OK;
    }
    STDMETHODIMP_(ULONG) AddRef() override { return ++m_references; }
    STDMETHODIMP_(ULONG) Release() override {
      const ULONG left = --m_references;
      if (left == 0) delete this;
      return left;
    }

    STDMETHODIMP GetTypeInfoCount(UINT* count) override {
      if (!count) return E_POINTER;
      *count = 0;
      return S_OK;
    }
    STDMETHODIMP GetTypeInfo(UINT, LCID, ITypeInfo** info) override {
      if (info) *info = nullptr;
      return E_NOTIMPL;
    }
    STDMETHODIMP GetIDsOfNames(REFIID, LPOLESTR*, UINT, LCID, DISPID*) override { return E_NOTIMPL; }

    STDMETHODIMP Invoke(DISPID event, REFIID, LCID, WORD flags, DISPPARAMS* parameters, VARIANT*, EXCEPINFO*,
                        UINT*) override {
      if (event < 1 || event > 5 || !(flags & DISPATCH_METHOD)) return DISP_E_MEMBERNOTFOUND;
      if (!parameters) return E_POINTER;
      const UINT count = event == 5 ? 0 : event == 4 ? 2 : 4;
      if (parameters->cArgs != count) return DISP_E_BADPARAMCOUNT;
      LONG a[4] = {};
      for (UINT i = 0; i < count; ++i) {
        const VARIANT& argument = parameters->rgvarg[count - 1 - i];  // the last one is the first there
        if (V_VT(&argument) != VT_I4) return DISP_E_TYPEMISMATCH;
        a[i] = V_I4(&argument);
      }
      if (!m_owner) return S_OK;
      AddRef();  // the owner may go inside its method
      switch (event) {
        case 1: m_owner->mouseMove(a[0], a[1], a[2], a[3]); break;
        case 2: m_owner->mouseUp(a[0], a[1], a[2], a[3]); break;
        case 3: m_owner->mouseDown(a[0], a[1], a[2], a[3]); break;
        case 4: m_owner->mouseClick(a[0], a[1]); break;
        default: m_owner->mouseDblClick(); break;
      }
      Release();
      return S_OK;
    }

   private:
    ~Sink() = default;
    ULONG m_references = 1;
    ViewEvents* m_owner;
  };

  void letGo() noexcept {
    // Taken out first: the last reference to the view may go with them.
    Sink* const sink = m_sink;
    IConnectionPoint* const point = m_point;
    m_sink = nullptr;
    m_point = nullptr;
    m_cookie = 0;
    if (sink) sink->Release();
    if (point) point->Release();
  }

  Sink* m_sink = nullptr;
  IConnectionPoint* m_point = nullptr;
  DWORD m_cookie = 0;
};

}  // namespace avhost
