#pragma once

#include "ole/part.h"

#include <ocidl.h>

namespace av::ole {

/// IPersistStreamInit: the extent, and nothing else. A stream that is refused changes nothing. Containers that undo or
/// revert load a living control again, so a second Load or InitNew is as good as the first. A control that was told
/// InitNew is dirty, since nothing has been saved of it yet; a control that was told nothing is not. [control thread]
class PersistStream final : public ControlPart<IPersistStreamInit> {
 public:
  using ControlPart::ControlPart;

  STDMETHODIMP GetClassID(CLSID* classId) override;
  STDMETHODIMP IsDirty() override;
  STDMETHODIMP Load(IStream* stream) override;
  STDMETHODIMP Save(IStream* stream, BOOL clearDirty) override;
  STDMETHODIMP GetSizeMax(ULARGE_INTEGER* bytes) override;
  STDMETHODIMP InitNew() override;
};

}  // namespace av::ole
