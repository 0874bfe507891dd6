#pragma once

#include <windows.h>

#include <unknwn.h>

namespace av::ole {

/// The registry script interpreter that the system carries in atl.dll; no MinGW header declares it.
inline constexpr CLSID clsidRegistrar = {0x44EC053A, 0x400F, 0x11D0, {0x9D, 0xCD, 0x00, 0xA0, 0xC9, 0x03, 0x91, 0xD3}};
inline constexpr IID iidRegistrar = {0x44EC053B, 0x400F, 0x11D0, {0x9D, 0xCD, 0x00, 0xA0, 0xC9, 0x03, 0x91, 0xD3}};

/// Implemented by the system. Replacements are given first: %key% in a script stands for the item. Then one of the
/// register or unregister calls runs a script from a resource, a file or a string.
struct IRegistrar : IUnknown {
  virtual HRESULT STDMETHODCALLTYPE AddReplacement(LPCOLESTR key, LPCOLESTR item) = 0;
  virtual HRESULT STDMETHODCALLTYPE ClearReplacements() = 0;
  virtual HRESULT STDMETHODCALLTYPE ResourceRegisterSz(LPCOLESTR file, LPCOLESTR resourceName, LPCOLESTR type) = 0;
  virtual HRESULT STDMETHODCALLTYPE ResourceUnregisterSz(LPCOLESTR file, LPCOLESTR resourceName, LPCOLESTR type) = 0;
  virtual HRESULT STDMETHODCALLTYPE FileRegister(LPCOLESTR file) = 0;
  virtual HRESULT STDMETHODCALLTYPE FileUnregister(LPCOLESTR file) = 0;
  virtual HRESULT STDMETHODCALLTYPE StringRegister(LPCOLESTR script) = 0;
  virtual HRESULT STDMETHODCALLTYPE StringUnregister(LPCOLESTR script) = 0;
  virtual HRESULT STDMETHODCALLTYPE ResourceRegister(LPCOLESTR file, UINT resourceId, LPCOLESTR type) = 0;
  virtual HRESULT STDMETHODCALLTYPE ResourceUnregister(LPCOLESTR file, UINT resourceId, LPCOLESTR type) = 0;
};

}  // namespace av::ole
