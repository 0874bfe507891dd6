#pragma once

#include <windows.h>

#include <oaidl.h>

#include <string>
#include <vector>

namespace avplayer {

/// How a property's value is edited and written down.
enum class ValueKind { boolean, whole, real, colour, font, text, other };

/// What the type library says of a property.
struct Property {
  std::wstring name;
  std::wstring help;
  DISPID id = DISPID_UNKNOWN;
  ValueKind kind = ValueKind::other;
  VARTYPE type = VT_EMPTY;  ///< of the value in a put
  bool readable = false;
  bool writable = false;
  bool byReference = false;  ///< an object that is put by reference
  bool indexed = false;      ///< get and put take a number before the value
};

/// All visible properties of an object, its bases' too, in the order of its type information: one for each pair of get
/// and put. Empty for an object without type information.
std::vector<Property> readProperties(IDispatch& object);

/// The help text of an object's interface.
std::wstring interfaceHelp(IDispatch& object);

}  // namespace avplayer
