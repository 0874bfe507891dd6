#pragma once

#include <windows.h>
#include <oleauto.h>
#include <wrl/client.h>

namespace av::support {

/// An error object as a host would set it, with a help file and context.
inline Microsoft::WRL::ComPtr<IErrorInfo> makeErrorInfo(const wchar_t* description, const wchar_t* source) {
  Microsoft::WRL::ComPtr<ICreateErrorInfo> create;
  Microsoft::WRL::ComPtr<IErrorInfo> info;
  if (FAILED(CreateErrorInfo(&create))) return info;
  create->SetDescription(const_cast<wchar_t*>(description));
  create->SetSource(const_cast<wchar_t*>(source));
  create->SetHelpFile(const_cast<wchar_t*>(L"host.chm"));
  create->SetHelpContext(4711);
  create.As(&info);
  return info;
}

/// Takes the thread's error object off the thread; null when there is none.
inline Microsoft::WRL::ComPtr<IErrorInfo> takeErrorInfo() {
  Microsoft::WRL::ComPtr<IErrorInfo> info;
  GetErrorInfo(0, &info);
  return info;
}

}  // namespace av::support
