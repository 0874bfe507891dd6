#pragma once

#include <windows.h>

#include <oaidl.h>

#include <functional>
#include <utility>
#include <vector>

namespace av::test {

/// Takes events by Invoke and remembers them. Lives on the stack: the count starts at 1 and frees nothing.
class EventSink : public IDispatch {
 public:
  /// `eventInterface`: what it answers for besides IUnknown and IDispatch.
  explicit EventSink(REFIID eventInterface) : m_eventInterface(eventInterface) {}

  struct Event {
    DISPID id;
    std::vector<LONG> arguments;  // in the order of the method's declaration
    friend bool operator==(const Event&, const Event&) = default;
  };

  STDMETHODIMP QueryInterface(REFIID iid, void** object) override {
    const bool known = iid == IID_IUnknown || (!hidesDispatch && iid == IID_IDispatch) ||
                       (!hidesEventInterface && iid == m_eventInterface);
    *object = known ? this : nullptr;
    if (known) AddRef();
    return known ? S_OK : E_NOINTERFACE;
  }
  STDMETHODIMP_(ULONG) AddRef() override { return ++references; }
  STDMETHODIMP_(ULONG) Release() override { return --references; }
  STDMETHODIMP GetTypeInfoCount(UINT*) override { return E_NOTIMPL; }
  STDMETHODIMP GetTypeInfo(UINT, LCID, ITypeInfo**) override { return E_NOTIMPL; }
  STDMETHODIMP GetIDsOfNames(REFIID, LPOLESTR*, UINT, LCID, DISPID*) override { return E_NOTIMPL; }
  STDMETHODIMP Invoke(DISPID id, REFIID reserved, LCID, WORD flags, DISPPARAMS* parameters, VARIANT*, EXCEPINFO*,
                      UINT*) override {
    if (!IsEqualIID(reserved, IID_NULL) || flags != DISPATCH_METHOD || parameters->cNamedArgs) return E_UNEXPECTED;
    Event event{id, {}};
    for (UINT i = parameters->cArgs; i > 0; --i) {
      const VARIANT& argument = parameters->rgvarg[i - 1];
      if (V_VT(&argument) != VT_I4) return E_UNEXPECTED;
      event.arguments.push_back(V_I4(&argument));
    }
    events.push_back(std::move(event));
    if (const auto hook = onEvent) hook();  // a copy: it may take itself away
    return answer;
  }

  std::vector<Event> events;
  std::function<void()> onEvent;
  HRESULT answer = S_OK;
  bool hidesEventInterface = false;
  bool hidesDispatch = false;
  ULONG references = 1;

 private:
  const IID m_eventInterface;
};

}  // namespace av::test
