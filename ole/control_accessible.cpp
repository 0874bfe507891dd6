// What a control tells of itself to screen readers; see Accessible.

#include "ole/control.h"

#include <olectl.h>

#include <algorithm>

namespace av::ole {

namespace {

using Microsoft::WRL::ComPtr;

std::wstring windowText(HWND window) {
  const int length = GetWindowTextLengthW(window);
  if (length <= 0) return {};
  std::wstring text(static_cast<std::size_t>(length) + 1, L'\0');
  text.resize(static_cast<std::size_t>(std::max(GetWindowTextW(window, text.data(), length + 1), 0)));
  return text;
}

/// What the container calls its control, where it has a word for it.
std::wstring ambientDisplayName(IOleClientSite* site) {
  ComPtr<IDispatch> ambients;
  if (!site || FAILED(site->QueryInterface(IID_PPV_ARGS(&ambients))) || !ambients) return {};
  VARIANT name;
  VariantInit(&name);
  DISPPARAMS none{};
  struct Clear {
    VARIANT& variant;
    ~Clear() { VariantClear(&variant); }
  } const clear{name};
  const HRESULT result = ambients->Invoke(DISPID_AMBIENT_DISPLAYNAME, IID_NULL, LOCALE_USER_DEFAULT,
                                          DISPATCH_PROPERTYGET, &none, &name, nullptr, nullptr);
  if (FAILED(result) || V_VT(&name) != VT_BSTR || !V_BSTR(&name)) return {};
  return {V_BSTR(&name), SysStringLen(V_BSTR(&name))};
}

}  // namespace

LONG Control::accessibleRole() const noexcept { return m_info.accessibleRole; }

std::wstring Control::accessibleName() {
  const KeepAlive alive(*this);
  std::wstring name = windowText(m_inPlace.window());
  if (name.empty()) {
    const ComPtr<IOleClientSite> site = m_clientSite;
    name = ambientDisplayName(site.Get());
  }
  return name.empty() ? m_info.accessibleName : name;
}

std::wstring Control::accessibleDescription() { return spokenDescription(); }

std::wstring Control::accessibleValue() { return spokenValue(); }

HRESULT Control::accessibleTakeFocus() {
  const KeepAlive alive(*this);
  const HRESULT result = m_inPlace.activateUserInterface();
  if (FAILED(result)) return result;
  const HWND window = m_inPlace.window();
  // An active user interface does not ask for the focus again.
  if (result == S_OK && window && GetFocus() != window) SetFocus(window);
  return window && GetFocus() == window ? S_OK : S_FALSE;
}

}  // namespace av::ole
