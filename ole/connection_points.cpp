#include "ole/connection_points.h"

#include "ole/control.h"
#include "ole/enumerator.h"

#include <algorithm>
#include <new>

namespace av::ole {

using Microsoft::WRL::ComPtr;

namespace {

struct ConnectionTraits {
  using Interface = IEnumConnections;
  using Item = CONNECTDATA;
  struct Held {
    ComPtr<IUnknown> sink;
    DWORD cookie;
  };
  static HRESULT copy(const Held& held, CONNECTDATA* item) {
    item->pUnk = held.sink.Get();
    item->pUnk->AddRef();
    item->dwCookie = held.cookie;
    return S_OK;
  }
  static void release(CONNECTDATA* item) { item->pUnk->Release(); }
};

struct ConnectionPointTraits {
  using Interface = IEnumConnectionPoints;
  using Item = IConnectionPoint*;
  using Held = ComPtr<IConnectionPoint>;
  static HRESULT copy(const Held& held, IConnectionPoint** item) { return held.CopyTo(item); }
  static void release(IConnectionPoint** item) { (*item)->Release(); }
};

constexpr std::size_t mostArguments = 8;

HRESULT call(IDispatch& sink, DISPID event, std::initializer_list<LONG> arguments) {
  VARIANT reversed[mostArguments];  // DISPPARAMS has the last argument first
  auto* next = reversed + arguments.size();
  for (const LONG argument : arguments) {
    --next;
    VariantInit(next);
    V_VT(next) = VT_I4;
    V_I4(next) = argument;
  }
  DISPPARAMS parameters{reversed, nullptr, static_cast<UINT>(arguments.size()), 0};
  VARIANT result;
  VariantInit(&result);  // events answer with an HRESULT, which some sinks store here without looking
  const HRESULT called =
      sink.Invoke(event, IID_NULL, LOCALE_USER_DEFAULT, DISPATCH_METHOD, &parameters, &result, nullptr, nullptr);
  VariantClear(&result);
  return called;
}

}  // namespace

STDMETHODIMP ConnectionPoint::QueryInterface(REFIID iid, void** object) {
  if (!object) return E_POINTER;
  *object = nullptr;
  if (iid != IID_IUnknown && iid != IID_IConnectionPoint) return E_NOINTERFACE;
  *object = static_cast<IConnectionPoint*>(this);
  AddRef();
  return S_OK;
}

STDMETHODIMP_(ULONG) ConnectionPoint::AddRef() { return m_control.addRef(); }

STDMETHODIMP_(ULONG) ConnectionPoint::Release() { return m_control.release(); }

STDMETHODIMP ConnectionPoint::GetConnectionInterface(IID* iid) {
  if (!iid) return E_POINTER;
  *iid = m_control.info().eventInterfaceId;
  return S_OK;
}

STDMETHODIMP ConnectionPoint::GetConnectionPointContainer(IConnectionPointContainer** container) {
  if (!container) return E_POINTER;
  return m_control.queryInterface(IID_PPV_ARGS(container));
}

STDMETHODIMP ConnectionPoint::Advise(IUnknown* sink, DWORD* cookie) {
  if (cookie) *cookie = 0;
  if (!sink || !cookie) return E_POINTER;
  const KeepAlive alive(m_control);
  ComPtr<IDispatch> dispatch;
  // An event interface is a dispinterface: its pointer is one of IDispatch.
  if (FAILED(
          sink->QueryInterface(m_control.info().eventInterfaceId, reinterpret_cast<void**>(dispatch.GetAddressOf()))) &&
      FAILED(sink->QueryInterface(IID_PPV_ARGS(&dispatch))))
    return CONNECT_E_CANNOTCONNECT;
  if (!dispatch) return CONNECT_E_CANNOTCONNECT;
  try {
    m_connections.push_back({m_lastCookie + 1, dispatch});
  } catch (const std::bad_alloc&) {
    return E_OUTOFMEMORY;
  }
  *cookie = ++m_lastCookie;
  return S_OK;
}

STDMETHODIMP ConnectionPoint::Unadvise(DWORD cookie) {
  const KeepAlive alive(m_control);
  const auto found = std::find_if(m_connections.begin(), m_connections.end(),
                                  [&](const Connection& connection) { return connection.cookie == cookie; });
  if (found == m_connections.end()) return CONNECT_E_NOCONNECTION;
  // The list is in order before the sink is released, which may call back.
  const ComPtr<IDispatch> sink = found->sink;
  m_connections.erase(found);
  return S_OK;
}

STDMETHODIMP ConnectionPoint::EnumConnections(IEnumConnections** connections) {
  if (!connections) return E_POINTER;
  *connections = nullptr;
  try {
    Enumerator<ConnectionTraits>::Items items;
    for (const Connection& connection : m_connections) items.push_back({connection.sink, connection.cookie});
    return Enumerator<ConnectionTraits>::create(std::move(items), 0, connections);
  } catch (const std::bad_alloc&) {
    return E_OUTOFMEMORY;
  }
}

bool ConnectionPoint::isConnected(DWORD cookie) const noexcept {
  return std::any_of(m_connections.begin(), m_connections.end(),
                     [&](const Connection& connection) { return connection.cookie == cookie; });
}

HRESULT ConnectionPoint::fire(DISPID event, std::initializer_list<LONG> arguments) {
  if (arguments.size() > mostArguments) return E_INVALIDARG;
  if (m_connections.empty()) return S_OK;
  HRESULT outcome = S_OK;
  try {
    const std::vector<Connection> connections = m_connections;  // sinks come and go during the calls
    for (const Connection& connection : connections) {
      if (!isConnected(connection.cookie)) continue;
      const HRESULT called = call(*connection.sink.Get(), event, arguments);
      if (FAILED(called)) outcome = called;
    }
  } catch (const std::bad_alloc&) {
    return E_OUTOFMEMORY;
  }
  return outcome;
}

void ConnectionPoint::disconnectAll() noexcept {
  const std::vector<Connection> going = std::move(m_connections);
  m_connections.clear();
}

STDMETHODIMP ConnectionPointContainer::EnumConnectionPoints(IEnumConnectionPoints** points) {
  if (!points) return E_POINTER;
  *points = nullptr;
  try {
    Enumerator<ConnectionPointTraits>::Items items;
    if (events()) items.emplace_back(events());
    return Enumerator<ConnectionPointTraits>::create(std::move(items), 0, points);
  } catch (const std::bad_alloc&) {
    return E_OUTOFMEMORY;
  }
}

STDMETHODIMP ConnectionPointContainer::FindConnectionPoint(REFIID iid, IConnectionPoint** point) {
  if (!point) return E_POINTER;
  *point = nullptr;
  if (!events() || iid != control().info().eventInterfaceId) return CONNECT_E_NOCONNECTION;
  *point = events();
  (*point)->AddRef();
  return S_OK;
}

ConnectionPoint* ConnectionPointContainer::events() noexcept {
  return control().info().eventInterfaceId == GUID_NULL ? nullptr : &m_events;
}

}  // namespace av::ole
