#pragma once

#include "ole/part.h"

#include <ocidl.h>

namespace av::ole {

/// IProvideClassInfo2: the coclass and its default event interface, read from the type library. [control thread]
class ClassInfo final : public ControlPart<IProvideClassInfo2> {
 public:
  using ControlPart::ControlPart;

  STDMETHODIMP GetClassInfo(ITypeInfo** info) override;
  STDMETHODIMP GetGUID(DWORD kind, GUID* guid) override;
};

/// ISupportErrorInfo: failures of the dual interface carry error information. [control thread]
class ErrorInfoSupport final : public ControlPart<ISupportErrorInfo> {
 public:
  using ControlPart::ControlPart;

  STDMETHODIMP InterfaceSupportsErrorInfo(REFIID iid) override;
};

}  // namespace av::ole
