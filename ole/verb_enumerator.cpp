#include "ole/verb_enumerator.h"

#include "ole/enumerator.h"

#include <cstring>
#include <cwchar>

namespace av::ole {

namespace {

struct VerbTraits {
  using Interface = IEnumOLEVERB;
  using Item = OLEVERB;
  struct Held {
    LONG verb;
    const wchar_t* name;
    DWORD attributes;
  };
  static HRESULT copy(const Held& held, OLEVERB* item) {
    const std::size_t bytes = (std::wcslen(held.name) + 1) * sizeof(wchar_t);
    item->lVerb = held.verb;
    item->fuFlags = MF_STRING;
    item->grfAttribs = held.attributes;
    item->lpszVerbName = static_cast<LPOLESTR>(CoTaskMemAlloc(bytes));
    if (!item->lpszVerbName) return E_OUTOFMEMORY;
    std::memcpy(item->lpszVerbName, held.name, bytes);
    return S_OK;
  }
  static void release(OLEVERB* item) { CoTaskMemFree(item->lpszVerbName); }
};

}  // namespace

HRESULT createVerbEnumerator(IEnumOLEVERB** verbs) {
  try {
    return Enumerator<VerbTraits>::create(
        {
            {OLEIVERB_PRIMARY, L"&Activate", OLEVERBATTRIB_NEVERDIRTIES | OLEVERBATTRIB_ONCONTAINERMENU},
            {OLEIVERB_SHOW, L"Show", OLEVERBATTRIB_NEVERDIRTIES},
            {OLEIVERB_HIDE, L"Hide", OLEVERBATTRIB_NEVERDIRTIES},
            {OLEIVERB_UIACTIVATE, L"UI activate", OLEVERBATTRIB_NEVERDIRTIES},
            {OLEIVERB_INPLACEACTIVATE, L"In-place activate", OLEVERBATTRIB_NEVERDIRTIES},
        },
        0, verbs);
  } catch (const std::bad_alloc&) {
    *verbs = nullptr;
    return E_OUTOFMEMORY;
  }
}

}  // namespace av::ole
