#include "ole/persist_storage.h"

#include "ole/control.h"
#include "ole/persisted_extent.h"

#include <wrl/client.h>

namespace av::ole {

using Microsoft::WRL::ComPtr;

namespace {

constexpr wchar_t streamName[] = L"Contents";

/// Whether the stream goes on: "Contents" is the control's alone, so whatever follows the extent is another program's.
bool hasMore(IStream& stream) {
  BYTE next = 0;
  ULONG read = 0;
  return SUCCEEDED(stream.Read(&next, 1, &read)) && read != 0;
}

}  // namespace

STDMETHODIMP PersistStorage::GetClassID(CLSID* classId) {
  if (!classId) return E_POINTER;
  *classId = control().info().classId;
  return S_OK;
}

STDMETHODIMP PersistStorage::IsDirty() { return control().isDirty() ? S_OK : S_FALSE; }

STDMETHODIMP PersistStorage::InitNew(IStorage* storage) {
  if (!storage) return E_POINTER;
  if (m_state != State::newlyMade) return CO_E_ALREADYINITIALIZED;
  m_state = State::normal;
  control().setDirty(true);
  return S_OK;
}

STDMETHODIMP PersistStorage::Load(IStorage* storage) {
  if (!storage) return E_POINTER;
  if (m_state != State::newlyMade) return CO_E_ALREADYINITIALIZED;
  const KeepAlive alive(control());
  ComPtr<IStream> stream;
  HRESULT result = storage->OpenStream(streamName, nullptr, STGM_READ | STGM_SHARE_EXCLUSIVE, 0, &stream);
  if (FAILED(result)) return result;
  SIZEL extent{};
  result = readExtent(*stream.Get(), extent);
  if (FAILED(result)) return result;
  if (hasMore(*stream.Get())) return E_FAIL;
  m_state = State::normal;
  control().extentLoaded(extent);
  return S_OK;
}

STDMETHODIMP PersistStorage::Save(IStorage* storage, BOOL sameAsLoad) {
  if (!storage) return E_POINTER;
  if (m_state == State::handsOff) return E_UNEXPECTED;
  const KeepAlive alive(control());
  ComPtr<IStream> stream;
  HRESULT result =
      storage->CreateStream(streamName, STGM_CREATE | STGM_READWRITE | STGM_SHARE_EXCLUSIVE, 0, 0, &stream);
  if (FAILED(result)) return result;
  result = writeExtent(*stream.Get(), control().extentHimetric());
  if (FAILED(result)) return result;
  m_state = State::saving;
  m_savePending = true;
  m_savedOwnStorage = sameAsLoad != FALSE;
  return S_OK;
}

STDMETHODIMP PersistStorage::SaveCompleted(IStorage* storage) {
  if (m_state != State::saving && m_state != State::handsOff) return E_UNEXPECTED;
  // Once the old storage was given up, the control needs another one to live in.
  if (m_state == State::handsOff && !storage) return E_INVALIDARG;
  const KeepAlive alive(control());
  // A copy that was saved elsewhere leaves the control as dirty as it was; becoming the copy does not.
  const bool nowSaved = m_savePending && (m_savedOwnStorage || storage);
  m_state = State::normal;
  m_savePending = false;
  m_savedOwnStorage = false;
  if (nowSaved) control().saved();
  return S_OK;
}

STDMETHODIMP PersistStorage::HandsOffStorage() {
  if (m_state != State::normal && m_state != State::saving) return E_UNEXPECTED;
  m_state = State::handsOff;
  return S_OK;
}

}  // namespace av::ole
