#include "ole/error_text.h"

#include <oaidl.h>
#include <oleauto.h>
#include <wrl/client.h>

namespace av::ole {

using Microsoft::WRL::ComPtr;

HRESULT refuse(HRESULT result, REFIID interfaceId, const wchar_t* source, const wchar_t* text) noexcept {
  ComPtr<ICreateErrorInfo> writer;
  ComPtr<IErrorInfo> info;
  if (SUCCEEDED(CreateErrorInfo(writer.GetAddressOf())) && SUCCEEDED(writer->SetGUID(interfaceId)) &&
      SUCCEEDED(writer->SetSource(const_cast<LPOLESTR>(source))) &&
      SUCCEEDED(writer->SetDescription(const_cast<LPOLESTR>(text)))) {
    writer.As(&info);
  }
  // Without a text of its own the failure must not go out with that of an older one.
  SetErrorInfo(0, info.Get());
  return result;
}

}  // namespace av::ole
