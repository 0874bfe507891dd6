#pragma once

#include "ole/part.h"

#include <ocidl.h>

namespace av::ole {

/// IPersistStreamInit: the extent, and nothing else, as twelve bytes: a little-endian version word, then the width and
/// the height in HIMETRIC. A stream that is refused changes nothing. [control thread]
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
