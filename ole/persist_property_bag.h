#pragma once

#include "ole/part.h"

#include <ocidl.h>

namespace av::ole {

/// IPersistPropertyBag: the persisted extent as the values "_cx" and "_cy" (VT_UI4) of a bag. Values of other types are
/// coerced, since bags made from text hold strings. A missing or bad value refuses the bag and changes nothing.
/// [control thread]
class PersistPropertyBag final : public ControlPart<IPersistPropertyBag> {
 public:
  using ControlPart::ControlPart;

  STDMETHODIMP GetClassID(CLSID* classId) override;
  STDMETHODIMP InitNew() override;
  STDMETHODIMP Load(IPropertyBag* bag, IErrorLog* errors) override;
  STDMETHODIMP Save(IPropertyBag* bag, BOOL clearDirty, BOOL saveAll) override;
};

}  // namespace av::ole
