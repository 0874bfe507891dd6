#pragma once

#include "tests/soak/random_source.h"

#include <windows.h>

#include <oaidl.h>

#include <string>
#include <vector>

namespace av::soak {

/// The properties of one control that a host can put, as its type information tells them.
class PropertySet {
 public:
  explicit PropertySet(IDispatch& control);

  /// Puts one of them through IDispatch: a value as hosts use it, at an edge, or anything at all. Returns what Invoke
  /// answered; a refusal is DISP_E_EXCEPTION.
  HRESULT putAny(IDispatch& control, RandomSource& random) const;

  std::size_t size() const { return m_properties.size(); }

 private:
  struct Property {
    std::wstring name;
    DISPID id = 0;
    VARTYPE type = VT_EMPTY;
    bool indexed = false;
    bool reference = false;
  };
  std::vector<Property> m_properties;
};

}  // namespace av::soak
