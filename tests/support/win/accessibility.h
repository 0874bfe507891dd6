#pragma once

// Accessible objects as a screen reader gets and asks them.

#include <windows.h>

#include <oleacc.h>
#include <wrl/client.h>

#include <string>
#include <vector>

namespace av::test {

/// A function of the system's accessibility library, which a test program must not import: whether it has been loaded is
/// itself tested.
template <class Function>
Function oleaccFunction(const char* name) {
  const HMODULE module = LoadLibraryW(L"oleacc.dll");
  return module ? reinterpret_cast<Function>(reinterpret_cast<void*>(GetProcAddress(module, name))) : nullptr;
}

/// The object of a window's part; null where there is none. [any thread with an apartment]
inline Microsoft::WRL::ComPtr<IAccessible> accessibleOf(HWND window, LONG part = OBJID_CLIENT) {
  Microsoft::WRL::ComPtr<IAccessible> object;
  const auto ask = oleaccFunction<LPFNACCESSIBLEOBJECTFROMWINDOW>("AccessibleObjectFromWindow");
  void* found = nullptr;
  if (ask && ask(window, static_cast<DWORD>(part), __uuidof(IAccessible), &found) == S_OK)
    *object.GetAddressOf() = static_cast<IAccessible*>(found);  // counted already
  return object;
}

inline VARIANT childId(LONG id = CHILDID_SELF) {
  VARIANT child;
  VariantInit(&child);
  V_VT(&child) = VT_I4;
  V_I4(&child) = id;
  return child;
}

/// The text that a method answers with, "(none)" for S_FALSE, "(failed)" for a failure.
template <class Method>
std::wstring textOf(IAccessible& object, Method method) {
  BSTR text = nullptr;
  const HRESULT result = (object.*method)(childId(), &text);
  if (result != S_OK) return SUCCEEDED(result) && !text ? L"(none)" : L"(failed)";
  const std::wstring copy(text, SysStringLen(text));
  SysFreeString(text);
  return copy;
}

inline std::wstring nameOf(IAccessible& object) { return textOf(object, &IAccessible::get_accName); }
inline std::wstring valueOf(IAccessible& object) { return textOf(object, &IAccessible::get_accValue); }
inline std::wstring descriptionOf(IAccessible& object) { return textOf(object, &IAccessible::get_accDescription); }

/// The number that a method answers with; −1 where it does not.
template <class Method>
LONG numberOf(IAccessible& object, Method method) {
  VARIANT value;
  VariantInit(&value);
  return (object.*method)(childId(), &value) == S_OK && V_VT(&value) == VT_I4 ? V_I4(&value) : -1;
}

inline LONG roleOf(IAccessible& object) { return numberOf(object, &IAccessible::get_accRole); }
inline LONG stateOf(IAccessible& object) { return numberOf(object, &IAccessible::get_accState); }

/// Hears of changed values in this process, for as long as it lives: the windows, in order. They arrive while messages are
/// dispatched. One at a time.
class ValueChanges {
 public:
  ValueChanges() {
    heard().clear();
    m_hook = SetWinEventHook(EVENT_OBJECT_VALUECHANGE, EVENT_OBJECT_VALUECHANGE, nullptr, note, GetCurrentProcessId(),
                             0, WINEVENT_OUTOFCONTEXT);
  }
  ~ValueChanges() { UnhookWinEvent(m_hook); }
  ValueChanges(const ValueChanges&) = delete;
  ValueChanges& operator=(const ValueChanges&) = delete;

  [[nodiscard]] bool listens() const { return m_hook != nullptr; }
  /// How many came for the client area of `window`.
  [[nodiscard]] long of(HWND window) const {
    long count = 0;
    for (const HWND each : heard()) count += each == window;
    return count;
  }

 private:
  static std::vector<HWND>& heard() {
    static std::vector<HWND> windows;
    return windows;
  }
  static void CALLBACK note(HWINEVENTHOOK, DWORD, HWND window, LONG object, LONG child, DWORD, DWORD) {
    if (object == OBJID_CLIENT && child == CHILDID_SELF) heard().push_back(window);
  }

  HWINEVENTHOOK m_hook;
};

}  // namespace av::test
