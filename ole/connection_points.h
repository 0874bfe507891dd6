#pragma once

#include "ole/part.h"

#include <ocidl.h>
#include <olectl.h>
#include <wrl/client.h>

#include <initializer_list>
#include <vector>

namespace av::ole {

/// The connection point of a control's default event interface: an object of its own identity that lives in the
/// control and keeps it alive. [control thread]
class ConnectionPoint final : public IConnectionPoint {
 public:
  explicit ConnectionPoint(Control& control) noexcept : m_control(control) {}
  ConnectionPoint(const ConnectionPoint&) = delete;
  ConnectionPoint& operator=(const ConnectionPoint&) = delete;

  STDMETHODIMP QueryInterface(REFIID iid, void** object) override;
  STDMETHODIMP_(ULONG) AddRef() override;
  STDMETHODIMP_(ULONG) Release() override;

  STDMETHODIMP GetConnectionInterface(IID* iid) override;
  STDMETHODIMP GetConnectionPointContainer(IConnectionPointContainer** container) override;
  /// Takes sinks that answer for the event interface, and plain IDispatch ones, as scripts have them.
  STDMETHODIMP Advise(IUnknown* sink, DWORD* cookie) override;
  STDMETHODIMP Unadvise(DWORD cookie) override;
  STDMETHODIMP EnumConnections(IEnumConnections** connections) override;

  /// Sends an event to the sinks that are connected now, in the order of their connection. A sink that is disconnected
  /// meanwhile is passed over, one that is connected meanwhile waits for the next event; a failing sink does not stop
  /// the others. `arguments`: the first one first, at most eight (E_INVALIDARG); each sink gets a copy of its own.
  /// Returns the last failure, else S_OK. The caller holds the control.
  HRESULT fire(DISPID event, std::initializer_list<LONG> arguments);

  /// Lets all sinks go: the control is at its end.
  void disconnectAll() noexcept;

 private:
  struct Connection {
    DWORD cookie;
    Microsoft::WRL::ComPtr<IDispatch> sink;
  };

  bool isConnected(DWORD cookie) const noexcept;

  Control& m_control;
  std::vector<Connection> m_connections;
  DWORD m_lastCookie = 0;
};

/// IConnectionPointContainer: the control's event interface, if it has one, and nothing else; property changes are not
/// announced. [control thread]
class ConnectionPointContainer final : public ControlPart<IConnectionPointContainer> {
 public:
  template <class DerivedControl>
  explicit ConnectionPointContainer(DerivedControl& control) noexcept : ControlPart(control), m_events(control) {}

  STDMETHODIMP EnumConnectionPoints(IEnumConnectionPoints** points) override;
  STDMETHODIMP FindConnectionPoint(REFIID iid, IConnectionPoint** point) override;

  /// The point of the event interface; null for a control without events.
  ConnectionPoint* events() noexcept;

 private:
  ConnectionPoint m_events;
};

}  // namespace av::ole
