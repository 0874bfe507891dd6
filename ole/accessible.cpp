#include "ole/accessible.h"

#include "ole/oleacc_library.h"

#include <new>

namespace av::ole {

using Microsoft::WRL::ComPtr;

namespace {

constexpr DWORD announcePeriodMs = 1000;
constexpr LONG allSelectFlags = SELFLAG_TAKEFOCUS | SELFLAG_TAKESELECTION | SELFLAG_EXTENDSELECTION |
                                SELFLAG_ADDSELECTION | SELFLAG_REMOVESELECTION;

void setLong(VARIANT& target, LONG value) noexcept {
  V_VT(&target) = VT_I4;
  V_I4(&target) = value;
}

/// A late-bound caller may leave the child out.
bool isOmitted(const VARIANT& argument) noexcept {
  return V_VT(&argument) == VT_ERROR && V_ERROR(&argument) == DISP_E_PARAMNOTFOUND;
}

}  // namespace

ComPtr<Accessible> Accessible::create(HWND window, AccessibleSubject& subject) noexcept {
  ComPtr<Accessible> object;
  try {
    // MinGW's Attach() would add a reference to the one that the object is born with.
    *object.GetAddressOf() = new Accessible(window, subject);
  } catch (const std::bad_alloc&) {
    // Null says so.
  }
  return object;
}

Accessible::Accessible(HWND window, AccessibleSubject& subject)
    : m_window(window), m_subject(&subject), m_announced(subject.accessibleValue()) {}

void Accessible::disconnect() noexcept {
  if (!m_subject) return;
  m_subject = nullptr;
  CoDisconnectObject(this, 0);
}

void Accessible::announceValue(DWORD nowMs, bool atOnce) noexcept {
  if (!m_subject || (!atOnce && nowMs - m_announcedMs < announcePeriodMs)) return;
  m_announcedMs = nowMs;
  try {
    std::wstring words = m_subject->accessibleValue();
    if (words == m_announced) return;
    m_announced.swap(words);
  } catch (const std::bad_alloc&) {
    return;  // the next look may find room
  }
  NotifyWinEvent(EVENT_OBJECT_VALUECHANGE, m_window, OBJID_CLIENT, CHILDID_SELF);
}

HRESULT Accessible::connected() const noexcept {
  if (GetCurrentThreadId() != m_threadId) return RPC_E_WRONG_THREAD;
  return m_subject ? S_OK : CO_E_OBJNOTCONNECTED;
}

HRESULT Accessible::isSelf(const VARIANT& child) const noexcept {
  const HRESULT result = connected();
  if (FAILED(result)) return result;
  const bool self = V_VT(&child) == VT_I4 && V_I4(&child) == CHILDID_SELF;
  return self || isOmitted(child) ? S_OK : E_INVALIDARG;
}

HRESULT Accessible::tell(const VARIANT& child, BSTR* text, std::wstring (AccessibleSubject::*ask)()) noexcept {
  const HRESULT nothing = tellNothing(child, text);
  if (FAILED(nothing)) return nothing;
  try {
    const std::wstring words = (m_subject->*ask)();
    if (words.empty()) return S_FALSE;
    *text = SysAllocStringLen(words.data(), static_cast<UINT>(words.size()));
    return *text ? S_OK : E_OUTOFMEMORY;
  } catch (const std::bad_alloc&) {
    return E_OUTOFMEMORY;
  }
}

HRESULT Accessible::tellNothing(const VARIANT& child, BSTR* text) const noexcept {
  if (!text) return E_POINTER;
  *text = nullptr;
  const HRESULT self = isSelf(child);
  return FAILED(self) ? self : S_FALSE;
}

ComPtr<IAccessible> Accessible::standardObject() const noexcept {
  ComPtr<IAccessible> object;
  void* made = nullptr;
  if (SUCCEEDED(standardAccessibleObject(m_window, OBJID_CLIENT, __uuidof(IAccessible), &made)))
    *object.GetAddressOf() = static_cast<IAccessible*>(made);  // counted already
  return object;
}

STDMETHODIMP Accessible::get_accParent(IDispatch** parent) {
  if (!parent) return E_POINTER;
  *parent = nullptr;
  const HRESULT result = connected();
  if (FAILED(result)) return result;
  const ComPtr<IAccessible> standard = standardObject();
  return standard ? standard->get_accParent(parent) : S_FALSE;
}

STDMETHODIMP Accessible::get_accChildCount(LONG* count) {
  if (!count) return E_POINTER;
  *count = 0;
  return connected();
}

STDMETHODIMP Accessible::get_accChild(VARIANT child, IDispatch** object) {
  if (!object) return E_POINTER;
  *object = nullptr;
  const HRESULT self = isSelf(child);
  if (FAILED(self)) return self;
  *object = this;
  AddRef();
  return S_OK;
}

STDMETHODIMP Accessible::get_accName(VARIANT child, BSTR* name) {
  return tell(child, name, &AccessibleSubject::accessibleName);
}

STDMETHODIMP Accessible::get_accValue(VARIANT child, BSTR* value) {
  return tell(child, value, &AccessibleSubject::accessibleValue);
}

STDMETHODIMP Accessible::get_accDescription(VARIANT child, BSTR* description) {
  return tell(child, description, &AccessibleSubject::accessibleDescription);
}

STDMETHODIMP Accessible::get_accRole(VARIANT child, VARIANT* role) {
  if (!role) return E_POINTER;
  VariantInit(role);
  const HRESULT self = isSelf(child);
  if (SUCCEEDED(self)) setLong(*role, m_subject->accessibleRole());
  return self;
}

STDMETHODIMP Accessible::get_accState(VARIANT child, VARIANT* state) {
  if (!state) return E_POINTER;
  VariantInit(state);
  const HRESULT self = isSelf(child);
  if (FAILED(self)) return self;
  LONG flags = STATE_SYSTEM_READONLY;
  const bool visible = IsWindowVisible(m_window) != FALSE, enabled = IsWindowEnabled(m_window) != FALSE;
  if (!visible) flags |= STATE_SYSTEM_INVISIBLE;
  if (!enabled) flags |= STATE_SYSTEM_UNAVAILABLE;
  if (visible && enabled) flags |= STATE_SYSTEM_FOCUSABLE;
  if (GetFocus() == m_window) flags |= STATE_SYSTEM_FOCUSED;
  setLong(*state, flags);
  return S_OK;
}

STDMETHODIMP Accessible::get_accHelp(VARIANT child, BSTR* help) { return tellNothing(child, help); }

STDMETHODIMP Accessible::get_accHelpTopic(BSTR* file, VARIANT child, LONG* topic) {
  if (file) *file = nullptr;
  if (topic) *topic = 0;
  return topic ? tellNothing(child, file) : E_POINTER;
}

STDMETHODIMP Accessible::get_accKeyboardShortcut(VARIANT child, BSTR* shortcut) { return tellNothing(child, shortcut); }

STDMETHODIMP Accessible::get_accFocus(VARIANT* child) {
  if (!child) return E_POINTER;
  VariantInit(child);
  const HRESULT result = connected();
  if (FAILED(result)) return result;
  if (GetFocus() != m_window) return S_FALSE;
  setLong(*child, CHILDID_SELF);
  return S_OK;
}

STDMETHODIMP Accessible::get_accSelection(VARIANT* children) {
  if (!children) return E_POINTER;
  VariantInit(children);
  const HRESULT result = connected();
  return FAILED(result) ? result : S_FALSE;
}

STDMETHODIMP Accessible::get_accDefaultAction(VARIANT child, BSTR* action) { return tellNothing(child, action); }

STDMETHODIMP Accessible::accSelect(LONG flags, VARIANT child) {
  const HRESULT self = isSelf(child);
  if (FAILED(self)) return self;
  if ((flags & ~allSelectFlags) != 0) return E_INVALIDARG;
  if (flags == SELFLAG_NONE) return S_FALSE;
  return flags == SELFLAG_TAKEFOCUS ? m_subject->accessibleTakeFocus() : DISP_E_MEMBERNOTFOUND;
}

STDMETHODIMP Accessible::accLocation(LONG* left, LONG* top, LONG* width, LONG* height, VARIANT child) {
  if (!left || !top || !width || !height) return E_POINTER;
  *left = *top = *width = *height = 0;
  const HRESULT self = isSelf(child);
  if (FAILED(self)) return self;
  RECT client{};
  if (!GetClientRect(m_window, &client)) return E_FAIL;
  MapWindowPoints(m_window, nullptr, reinterpret_cast<POINT*>(&client), 2);
  *left = client.left;
  *top = client.top;
  *width = client.right - client.left;
  *height = client.bottom - client.top;
  return S_OK;
}

STDMETHODIMP Accessible::accNavigate(LONG direction, VARIANT start, VARIANT* end) {
  if (!end) return E_POINTER;
  VariantInit(end);
  const HRESULT self = isSelf(start);
  if (FAILED(self)) return self;
  // The client area is all that the window has: no children, and no neighbours within it.
  return direction > NAVDIR_MIN && direction < NAVDIR_MAX ? S_FALSE : E_INVALIDARG;
}

STDMETHODIMP Accessible::accHitTest(LONG x, LONG y, VARIANT* child) {
  if (!child) return E_POINTER;
  VariantInit(child);
  const HRESULT result = connected();
  if (FAILED(result)) return result;
  POINT point{x, y};
  RECT client{};
  if (!ScreenToClient(m_window, &point) || !GetClientRect(m_window, &client)) return E_FAIL;
  if (!PtInRect(&client, point)) return S_FALSE;
  setLong(*child, CHILDID_SELF);
  return S_OK;
}

STDMETHODIMP Accessible::accDoDefaultAction(VARIANT child) {
  const HRESULT self = isSelf(child);
  return FAILED(self) ? self : DISP_E_MEMBERNOTFOUND;
}

// Name and value are the control's to give.

STDMETHODIMP Accessible::put_accName(VARIANT child, BSTR) { return accDoDefaultAction(child); }

STDMETHODIMP Accessible::put_accValue(VARIANT child, BSTR) { return accDoDefaultAction(child); }

}  // namespace av::ole
