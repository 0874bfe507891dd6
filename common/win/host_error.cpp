#include "common/win/host_error.h"

#include <comdef.h>
#include <oaidl.h>
#include <wrl/client.h>

#include <algorithm>

namespace av {

namespace {

using Microsoft::WRL::ComPtr;

bool declaresErrorInfo(IUnknown* object, std::initializer_list<IID> interfaces) {
  ComPtr<ISupportErrorInfo> support;
  if (object == nullptr || FAILED(object->QueryInterface(IID_PPV_ARGS(&support))) || support == nullptr) return false;
  return std::any_of(interfaces.begin(), interfaces.end(),
                     [&](const IID& iid) { return support->InterfaceSupportsErrorInfo(iid) == S_OK; });
}

}  // namespace

[[noreturn]] void raiseHostError(HRESULT result, IUnknown* object, std::initializer_list<IID> interfaces) {
  ComPtr<IErrorInfo> info;
  if (declaresErrorInfo(object, interfaces)) GetErrorInfo(0, &info);
  throw _com_error(result, info.Get(), true);
}

}  // namespace av
