#pragma once

#include <windows.h>
#include <comdef.h>
#include <oaidl.h>

#include <exception>
#include <functional>

// The two doors of SendAudioData, shared by the three controls: what a caller gets when a host's buffer object answers
// with a failure. Everything else that happens to a block ends in S_OK.

namespace av {

/// Dispatch identifier of SendAudioData in every control.
inline constexpr DISPID dispidSendAudioData = 0xaae62;

/// How a host method's failure leaves SendAudioData through the virtual table.
enum class HostErrorExit {
  exception,  ///< as the `_com_error` itself
  result,     ///< as the failing HRESULT, with the thread's error information set
};

/// 64-bit code lets the exception pass to its caller. In 32-bit code the compiler's exceptions cannot cross the border
/// of a module (the process would end), so there the caller gets the result.
inline constexpr HostErrorExit vtableHostErrorExit =
    sizeof(void*) == 8 ? HostErrorExit::exception : HostErrorExit::result;

/// Puts the exception's error information on the thread (none clears what an older call left); returns its HRESULT.
HRESULT returnHostError(const _com_error& error) noexcept;

/// The whole of SendAudioData but its work: runs `push`, which holds mutex and interfaces in guards of its own, and
/// returns S_OK; a `_com_error` leaves as `exit` says. Memory that runs out (or any other failure of the library's own)
/// drops the block: S_OK.
template <class Push>
HRESULT guardSendAudioData(Push&& push, HostErrorExit exit = vtableHostErrorExit) {
  try {
    if (exit == HostErrorExit::exception) {
      push();
    } else {
      try {
        push();
      } catch (const _com_error& error) {
        return returnHostError(error);
      }
    }
  } catch (const std::exception&) {
    // _com_error is no std::exception: it passes here without being caught and thrown again.
  }
  return S_OK;
}

/// SendAudioData for IDispatch::Invoke, the door of late-bound hosts, which cannot catch a C++ exception. Arguments are
/// counted and coerced as the system's own dispatch of a method (IUnknown* AudioData) does.
///
/// `send` does what the method does; it may throw `_com_error` or return a failing HRESULT with the thread's error
/// information set. Both answer DISP_E_EXCEPTION with a filled `exception`, whose strings the caller frees.
/// `result`, `exception` and `argumentError` may be null; `result` becomes empty.
///
/// Returns S_OK, DISP_E_MEMBERNOTFOUND (`flags` without DISPATCH_METHOD), DISP_E_BADPARAMCOUNT, DISP_E_PARAMNOTFOUND
/// (another named argument), DISP_E_PARAMNOTOPTIONAL, DISP_E_TYPEMISMATCH (these three with `argumentError` set),
/// E_INVALIDARG (no parameters at all) or DISP_E_EXCEPTION.
HRESULT invokeSendAudioData(WORD flags, DISPPARAMS* parameters, VARIANT* result, EXCEPINFO* exception,
                            UINT* argumentError, const std::function<HRESULT(IUnknown*)>& send) noexcept;

}  // namespace av
