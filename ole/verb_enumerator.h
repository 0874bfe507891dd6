#pragma once

#include <oleidl.h>

namespace av::ole {

/// An enumerator over the verbs that every control understands: the primary verb, show, hide, UI and in-place
/// activation. None changes what is persisted. The primary verb is the one for a container's menu.
HRESULT createVerbEnumerator(IEnumOLEVERB** verbs);

}  // namespace av::ole
