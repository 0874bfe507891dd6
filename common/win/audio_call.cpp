#include "common/win/audio_call.h"

#include <wrl/client.h>

namespace av {

namespace {

using Microsoft::WRL::ComPtr;

// The reference that _com_error hands out, adopted. (MinGW's ComPtr::Attach() would add one more.)
ComPtr<IErrorInfo> errorInfoOf(const _com_error& error) noexcept {
  ComPtr<IErrorInfo> info;
  *info.GetAddressOf() = error.ErrorInfo();
  return info;
}

class ScopedVariant {
 public:
  ScopedVariant() noexcept { VariantInit(&value); }
  ~ScopedVariant() { VariantClear(&value); }
  ScopedVariant(const ScopedVariant&) = delete;
  ScopedVariant& operator=(const ScopedVariant&) = delete;

  VARIANT value;
};

// Fetches the one argument, by position or by its name. The system coerces it; what that takes on trust is checked
// first.
HRESULT audioDataArgument(DISPPARAMS& parameters, VARIANT& argument, UINT& argumentError) noexcept {
  if (parameters.cArgs != 1 || parameters.cNamedArgs > parameters.cArgs) return DISP_E_BADPARAMCOUNT;
  if (parameters.rgvarg == nullptr) return E_INVALIDARG;
  if (parameters.cNamedArgs > 0 && parameters.rgdispidNamedArgs == nullptr) return E_INVALIDARG;
  argumentError = 0;
  if (parameters.cNamedArgs == 1 && parameters.rgdispidNamedArgs[0] != 0) return DISP_E_PARAMNOTFOUND;
  VARIANT& given = parameters.rgvarg[0];
  if (V_VT(&given) == VT_ERROR && V_ERROR(&given) == DISP_E_PARAMNOTFOUND) return DISP_E_PARAMNOTOPTIONAL;
  if (V_ISBYREF(&given) && V_BYREF(&given) == nullptr) return DISP_E_TYPEMISMATCH;
  const HRESULT coerced = VariantChangeType(&argument, &given, 0, VT_UNKNOWN);
  // An interface that cannot be had from an object is a type mismatch to a script, as anything else that is no object.
  return coerced == E_NOINTERFACE ? DISP_E_TYPEMISMATCH : coerced;
}

BSTR systemText(const _com_error& error) noexcept {
  const TCHAR* const text = error.ErrorMessage();
  return text != nullptr ? SysAllocString(text) : nullptr;
}

HRESULT describe(const _com_error& error, EXCEPINFO* exception) noexcept {
  if (exception == nullptr) return DISP_E_EXCEPTION;
  *exception = {};
  exception->scode = error.Error();
  const ComPtr<IErrorInfo> info = errorInfoOf(error);
  if (info != nullptr) {
    info->GetDescription(&exception->bstrDescription);
    info->GetSource(&exception->bstrSource);
    info->GetHelpFile(&exception->bstrHelpFile);
    info->GetHelpContext(&exception->dwHelpContext);
  }
  // A script shows the description to its user: the system's words for the code are better than none.
  if (exception->bstrDescription == nullptr) exception->bstrDescription = systemText(error);
  return DISP_E_EXCEPTION;
}

}  // namespace

HRESULT returnHostError(const _com_error& error) noexcept {
  SetErrorInfo(0, errorInfoOf(error).Get());
  return error.Error();
}

HRESULT invokeSendAudioData(WORD flags, DISPPARAMS* parameters, VARIANT* result, EXCEPINFO* exception,
                            UINT* argumentError, const std::function<HRESULT(IUnknown*)>& send) noexcept {
  if ((flags & DISPATCH_METHOD) == 0) return DISP_E_MEMBERNOTFOUND;
  if (parameters == nullptr) return E_INVALIDARG;
  ScopedVariant argument;
  UINT wrongArgument = UINT(-1);
  const HRESULT found = audioDataArgument(*parameters, argument.value, wrongArgument);
  if (FAILED(found)) {
    if (argumentError != nullptr && wrongArgument != UINT(-1)) *argumentError = wrongArgument;
    return found;
  }
  if (result != nullptr) VariantInit(result);
  try {
    const HRESULT sent = send(V_UNKNOWN(&argument.value));
    if (SUCCEEDED(sent)) return S_OK;
    ComPtr<IErrorInfo> info;
    GetErrorInfo(0, &info);
    return describe(_com_error(sent, info.Get(), true), exception);
  } catch (const _com_error& error) {
    return describe(error, exception);
  } catch (const std::exception&) {
    return S_OK;  // a block that does not fit into memory is dropped
  } catch (...) {
    return S_OK;
  }
}

}  // namespace av
