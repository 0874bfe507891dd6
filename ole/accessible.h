#pragma once

#include "ole/accessible_subject.h"
#include "ole/module_lock.h"

#include <windows.h>

#include <oleacc.h>
#include <wrl/client.h>

#include <atomic>
#include <string>

namespace av::ole {

/// The client area of a window as screen readers see it: one element without children, with a name, a role, a description
/// and a value in words, all of which its subject tells.
///
/// Clients may hold it for longer than its window lives. From `disconnect` on every method answers CO_E_OBJNOTCONNECTED,
/// and until its last Release it keeps the module loaded. Other threads and processes reach it through the system's
/// marshalling; a direct call on another thread gets RPC_E_WRONG_THREAD.
///
/// Bad input: a null pointer gets E_POINTER; a child other than CHILDID_SELF, of whatever type, E_INVALIDARG. An argument
/// that a late-bound caller leaves out is CHILDID_SELF. What is answered through a pointer is empty after a failure.
class Accessible final : public IAccessible {
 public:
  /// `subject` is not counted: see `disconnect`. Null when memory is out. [control thread]
  static Microsoft::WRL::ComPtr<Accessible> create(HWND window, AccessibleSubject& subject) noexcept;

  /// Cuts the object off from window and subject, and clients of other processes and apartments from it.
  void disconnect() noexcept;  // [control thread]

  /// Tells clients that the value is another one, if its words have changed since that was last told. Looks at most once a
  /// second, unless `atOnce`. `nowMs`: the tick count. [control thread]
  void announceValue(DWORD nowMs, bool atOnce) noexcept;

  // IUnknown [any thread]
  STDMETHODIMP QueryInterface(REFIID iid, void** object) override;
  STDMETHODIMP_(ULONG) AddRef() override;
  STDMETHODIMP_(ULONG) Release() override;

  // IDispatch, through the system's type library; without one there are no names and no members. [control thread]
  STDMETHODIMP GetTypeInfoCount(UINT* count) override;
  STDMETHODIMP GetTypeInfo(UINT index, LCID, ITypeInfo** info) override;
  STDMETHODIMP GetIDsOfNames(REFIID reserved, LPOLESTR* names, UINT count, LCID, DISPID* ids) override;
  STDMETHODIMP Invoke(DISPID member, REFIID reserved, LCID, WORD flags, DISPPARAMS* arguments, VARIANT* result,
                      EXCEPINFO* exception, UINT* argumentError) override;

  // IAccessible [control thread]
  STDMETHODIMP get_accParent(IDispatch** parent) override;
  STDMETHODIMP get_accChildCount(LONG* count) override;
  STDMETHODIMP get_accChild(VARIANT child, IDispatch** object) override;
  STDMETHODIMP get_accName(VARIANT child, BSTR* name) override;
  STDMETHODIMP get_accValue(VARIANT child, BSTR* value) override;
  STDMETHODIMP get_accDescription(VARIANT child, BSTR* description) override;
  STDMETHODIMP get_accRole(VARIANT child, VARIANT* role) override;
  STDMETHODIMP get_accState(VARIANT child, VARIANT* state) override;
  STDMETHODIMP get_accHelp(VARIANT child, BSTR* help) override;
  STDMETHODIMP get_accHelpTopic(BSTR* file, VARIANT child, LONG* topic) override;
  STDMETHODIMP get_accKeyboardShortcut(VARIANT child, BSTR* shortcut) override;
  STDMETHODIMP get_accFocus(VARIANT* child) override;
  STDMETHODIMP get_accSelection(VARIANT* children) override;
  STDMETHODIMP get_accDefaultAction(VARIANT child, BSTR* action) override;
  STDMETHODIMP accSelect(LONG flags, VARIANT child) override;
  STDMETHODIMP accLocation(LONG* left, LONG* top, LONG* width, LONG* height, VARIANT child) override;
  STDMETHODIMP accNavigate(LONG direction, VARIANT start, VARIANT* end) override;
  STDMETHODIMP accHitTest(LONG x, LONG y, VARIANT* child) override;
  STDMETHODIMP accDoDefaultAction(VARIANT child) override;
  STDMETHODIMP put_accName(VARIANT child, BSTR name) override;
  STDMETHODIMP put_accValue(VARIANT child, BSTR value) override;

 private:
  Accessible(HWND window, AccessibleSubject& subject);
  ~Accessible() = default;

  /// S_OK while there is a window and this is its thread, else the answer of every method.
  HRESULT connected() const noexcept;
  /// The same, and whether the child is the element itself.
  HRESULT isSelf(const VARIANT& child) const noexcept;
  /// Answers with a text of the subject's; S_FALSE with none.
  HRESULT tell(const VARIANT& child, BSTR* text, std::wstring (AccessibleSubject::*ask)()) noexcept;
  /// Answers that there is no such text.
  HRESULT tellNothing(const VARIANT& child, BSTR* text) const noexcept;
  /// The standard object of the window's client area; null where there is none.
  Microsoft::WRL::ComPtr<IAccessible> standardObject() const noexcept;
  ITypeInfo* typeInfo() noexcept;

  ModuleReference m_module;  // first, so that it is given back last
  std::atomic<ULONG> m_references{1};
  const DWORD m_threadId = GetCurrentThreadId();
  const HWND m_window;
  AccessibleSubject* m_subject;  // null: disconnected
  std::wstring m_announced;      // the words that clients know of
  DWORD m_announcedMs = GetTickCount();
  Microsoft::WRL::ComPtr<ITypeInfo> m_typeInfo;
};

}  // namespace av::ole
