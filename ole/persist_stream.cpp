#include "ole/persist_stream.h"

#include "ole/control.h"
#include "ole/persisted_extent.h"

namespace av::ole {

STDMETHODIMP PersistStream::GetClassID(CLSID* classId) {
  if (!classId) return E_POINTER;
  *classId = control().info().classId;
  return S_OK;
}

STDMETHODIMP PersistStream::IsDirty() { return control().isDirty() ? S_OK : S_FALSE; }

STDMETHODIMP PersistStream::Load(IStream* stream) {
  if (!stream) return E_POINTER;
  const KeepAlive alive(control());
  SIZEL extent{};
  const HRESULT result = readExtent(*stream, extent);
  if (SUCCEEDED(result)) control().extentLoaded(extent);
  return result;
}

STDMETHODIMP PersistStream::Save(IStream* stream, BOOL clearDirty) {
  if (!stream) return E_POINTER;
  const KeepAlive alive(control());
  const HRESULT result = writeExtent(*stream, control().extentHimetric());
  if (SUCCEEDED(result) && clearDirty) control().saved();
  return result;
}

STDMETHODIMP PersistStream::GetSizeMax(ULARGE_INTEGER* bytes) {
  if (!bytes) return E_POINTER;
  bytes->QuadPart = persistedExtentBytes;
  return S_OK;
}

STDMETHODIMP PersistStream::InitNew() {
  control().setDirty(true);
  return S_OK;
}

}  // namespace av::ole
