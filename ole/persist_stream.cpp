#include "ole/persist_stream.h"

#include "ole/control.h"

#include <climits>
#include <cstdint>

namespace av::ole {

namespace {

struct PersistedExtent {
  std::uint32_t version;
  std::uint32_t cx;
  std::uint32_t cy;
};
static_assert(sizeof(PersistedExtent) == 12);

// Readers refuse what a later version wrote.
constexpr std::uint32_t streamVersion = 0x00000800;

}  // namespace

STDMETHODIMP PersistStream::GetClassID(CLSID* classId) {
  if (!classId) return E_POINTER;
  *classId = control().info().classId;
  return S_OK;
}

STDMETHODIMP PersistStream::IsDirty() { return control().isDirty() ? S_OK : S_FALSE; }

STDMETHODIMP PersistStream::Load(IStream* stream) {
  if (!stream) return E_POINTER;
  PersistedExtent data{};
  ULONG read = 0;
  // The version first and alone: what follows it in a foreign stream is not ours to consume.
  HRESULT result = stream->Read(&data.version, sizeof data.version, &read);
  if (FAILED(result)) return result;
  if (read != sizeof data.version || data.version > streamVersion) return E_FAIL;
  constexpr ULONG extentBytes = sizeof data - sizeof data.version;
  result = stream->Read(&data.cx, extentBytes, &read);
  if (FAILED(result)) return result;
  if (read != extentBytes || data.cx > LONG_MAX || data.cy > LONG_MAX) return E_FAIL;
  control().setExtent({static_cast<LONG>(data.cx), static_cast<LONG>(data.cy)});
  control().setDirty(false);
  return S_OK;
}

STDMETHODIMP PersistStream::Save(IStream* stream, BOOL clearDirty) {
  if (!stream) return E_POINTER;
  const SIZEL extent = control().extentHimetric();
  const PersistedExtent data{streamVersion, static_cast<std::uint32_t>(extent.cx),
                             static_cast<std::uint32_t>(extent.cy)};
  ULONG written = 0;
  const HRESULT result = stream->Write(&data, sizeof data, &written);
  if (FAILED(result)) return result;
  if (written != sizeof data) return STG_E_MEDIUMFULL;
  if (clearDirty) control().setDirty(false);
  return S_OK;
}

STDMETHODIMP PersistStream::GetSizeMax(ULARGE_INTEGER* bytes) {
  if (!bytes) return E_POINTER;
  bytes->QuadPart = sizeof(PersistedExtent);
  return S_OK;
}

STDMETHODIMP PersistStream::InitNew() {
  control().setDirty(true);
  return S_OK;
}

}  // namespace av::ole
