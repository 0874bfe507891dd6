#pragma once

#include "companion/failure.h"
#include "ole/dispatch.h"
#include "ole/error_text.h"
#include "ole/object.h"

#include <oaidl.h>

#include <exception>
#include <new>
#include <string>

namespace av::companion {

/// An object that hosts create by name: one dual interface, whose refusals carry texts. [control thread]
template <class Interface>
class AutomationObject : public ole::Object, public ole::Dual<Interface> {
 protected:
  /// `name`: the class as texts name it.
  AutomationObject(IUnknown* outer, const wchar_t* name) noexcept
      : Object(outer), ole::Dual<Interface>(static_cast<ole::Object&>(*this)), m_name(name) {}

  void* findInterface(REFIID iid) noexcept override {
    if (iid == IID_IDispatch || iid == __uuidof(Interface)) return static_cast<Interface*>(this);
    if (iid == IID_ISupportErrorInfo) return &m_errorSupport;
    return nullptr;
  }

  /// Does the work of `member`. A Failure, and a lack of memory, leaves "CLASS.MEMBER: TEXT" as the thread's error
  /// information.
  template <class Work>
  HRESULT guard(const wchar_t* member, Work&& work) noexcept {
    const ole::KeepAlive alive(*this);
    try {
      try {
        work();
        return S_OK;
      } catch (const Failure& failure) {
        return refuse(failure.result, member, failure.text);
      } catch (const std::bad_alloc&) {
        return refuse(E_OUTOFMEMORY, member, L"there is not enough memory.");
      }
    } catch (const std::bad_alloc&) {
      return E_OUTOFMEMORY;  // not even for the text
    } catch (const std::exception&) {
      return E_UNEXPECTED;
    }
  }

  /// As guard, for a member that hands out a value: E_POINTER for null.
  template <class Value, class Work>
  HRESULT answer(const wchar_t* member, Value* value, Work&& work) noexcept {
    if (!value) return E_POINTER;
    *value = {};
    return guard(member, [&] { *value = work(); });
  }

 private:
  /// ISupportErrorInfo: failures of the dual interface carry error information.
  class ErrorSupport final : public ole::Delegating<ISupportErrorInfo> {
   public:
    using ole::Delegating<ISupportErrorInfo>::Delegating;
    STDMETHODIMP InterfaceSupportsErrorInfo(REFIID iid) override { return iid == __uuidof(Interface) ? S_OK : S_FALSE; }
  };

  HRESULT refuse(HRESULT result, const wchar_t* member, const std::wstring& text) const {
    const std::wstring source = std::wstring(L"AudioBlocks.") + m_name;
    const std::wstring whole = std::wstring(m_name) + L"." + member + L": " + text;
    return ole::refuse(result, __uuidof(Interface), source.c_str(), whole.c_str());
  }

  const wchar_t* m_name;
  ErrorSupport m_errorSupport{*this};
};

}  // namespace av::companion
