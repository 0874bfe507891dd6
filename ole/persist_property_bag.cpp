#include "ole/persist_property_bag.h"

#include "ole/control.h"
#include "ole/persisted_extent.h"

namespace av::ole {

namespace {

HRESULT readLength(IPropertyBag& bag, IErrorLog* errors, const wchar_t* name, LONG& length) {
  VARIANT value;
  VariantInit(&value);
  V_VT(&value) = VT_UI4;  // tells the bag what is wanted; it need not comply
  HRESULT result = bag.Read(name, &value, errors);
  if (FAILED(result)) return result;  // the bag has told the log itself
  result = VariantChangeType(&value, &value, 0, VT_UI4);
  const auto valid = SUCCEEDED(result) ? persistedLength(V_UI4(&value)) : std::nullopt;
  VariantClear(&value);
  if (valid) {
    length = *valid;
    return S_OK;
  }
  if (SUCCEEDED(result)) result = DISP_E_OVERFLOW;
  if (errors) {
    EXCEPINFO exception{};
    exception.scode = result;
    errors->AddError(name, &exception);
  }
  return result;
}

HRESULT writeLength(IPropertyBag& bag, const wchar_t* name, LONG length) {
  VARIANT value;
  VariantInit(&value);
  V_VT(&value) = VT_UI4;
  V_UI4(&value) = static_cast<ULONG>(length);
  return bag.Write(name, &value);
}

}  // namespace

STDMETHODIMP PersistPropertyBag::GetClassID(CLSID* classId) {
  if (!classId) return E_POINTER;
  *classId = control().info().classId;
  return S_OK;
}

STDMETHODIMP PersistPropertyBag::InitNew() {
  control().setDirty(true);
  return S_OK;
}

STDMETHODIMP PersistPropertyBag::Load(IPropertyBag* bag, IErrorLog* errors) {
  if (!bag) return E_POINTER;
  const KeepAlive alive(control());
  SIZEL extent{};
  HRESULT result = readLength(*bag, errors, persistedWidthName, extent.cx);
  if (SUCCEEDED(result)) result = readLength(*bag, errors, persistedHeightName, extent.cy);
  if (FAILED(result)) return result;
  control().extentLoaded(extent);
  return S_OK;
}

// Both values are always written: a reader refuses a bag that lacks one.
STDMETHODIMP PersistPropertyBag::Save(IPropertyBag* bag, BOOL clearDirty, BOOL) {
  if (!bag) return E_POINTER;
  const KeepAlive alive(control());
  const SIZEL extent = control().extentHimetric();
  HRESULT result = writeLength(*bag, persistedWidthName, extent.cx);
  if (SUCCEEDED(result)) result = writeLength(*bag, persistedHeightName, extent.cy);
  if (FAILED(result)) return result;
  if (clearDirty) control().saved();
  return S_OK;
}

}  // namespace av::ole
