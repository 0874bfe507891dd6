#pragma once

#include "ole/object.h"

#include <oaidl.h>
#include <wrl/client.h>

namespace av::ole {

/// Late binding through a type library: what IDispatch answers from an interface's type information.
class TypeInfoDispatch {
 public:
  /// `interfaceId`: the dual interface as described in the module's type library.
  explicit TypeInfoDispatch(REFIID interfaceId) noexcept : m_interfaceId(interfaceId) {}

  HRESULT getTypeInfoCount(UINT* count) noexcept;
  HRESULT getTypeInfo(UINT index, ITypeInfo** info);
  HRESULT getIdsOfNames(REFIID reserved, LPOLESTR* names, UINT count, DISPID* ids);
  /// `instance`: the dual interface's own virtual table, which the call goes through.
  HRESULT invoke(void* instance, DISPID member, REFIID reserved, WORD flags, DISPPARAMS* arguments, VARIANT* result,
                 EXCEPINFO* exception, UINT* argumentError);

 private:
  HRESULT load();

  IID m_interfaceId;
  Microsoft::WRL::ComPtr<ITypeInfo> m_info;
};

/// A dual interface as a part of an Object: IUnknown goes to the object, IDispatch to the type information.
template <class Interface>
class Dual : public Delegating<Interface> {
 public:
  explicit Dual(Object& object) noexcept : Delegating<Interface>(object) {}

  // [control thread]
  STDMETHODIMP GetTypeInfoCount(UINT* count) override { return m_dispatch.getTypeInfoCount(count); }
  STDMETHODIMP GetTypeInfo(UINT index, LCID, ITypeInfo** info) override { return m_dispatch.getTypeInfo(index, info); }
  STDMETHODIMP GetIDsOfNames(REFIID reserved, LPOLESTR* names, UINT count, LCID, DISPID* ids) override {
    return m_dispatch.getIdsOfNames(reserved, names, count, ids);
  }
  STDMETHODIMP Invoke(DISPID member, REFIID reserved, LCID, WORD flags, DISPPARAMS* arguments, VARIANT* result,
                      EXCEPINFO* exception, UINT* argumentError) override {
    return m_dispatch.invoke(static_cast<Interface*>(this), member, reserved, flags, arguments, result, exception,
                             argumentError);
  }

 protected:
  ~Dual() = default;

 private:
  TypeInfoDispatch m_dispatch{__uuidof(Interface)};
};

}  // namespace av::ole
