#pragma once

// What the type library has to hold: tables of the tests' own.

#include <windows.h>

#include <oaidl.h>

#include <algorithm>
#include <initializer_list>
#include <string>
#include <vector>

namespace av::test {

/// Of a value or parameter.
enum class Type { none, integer, colour, boolean, font, real, text, unknown, variant, variantPointer };
enum class Access { readWrite, readOnly, byReference, indexed };

/// A property of a control, in the order of the virtual table.
struct Property {
  const wchar_t* name;
  MEMBERID id;
  Type type;
  Access access = Access::readWrite;
};

extern const std::vector<Property> viewProperties;
extern const std::vector<Property> meterProperties;
extern const std::vector<Property> analyserProperties;

struct Parameter {
  const wchar_t* name;  // null: the type library stores none, as for the value of a put
  Type type;
  USHORT flags;
  bool pointer = false;
};

struct Function {
  std::wstring name;
  MEMBERID id;
  INVOKEKIND kind;
  std::vector<Parameter> parameters;
  WORD flags = 0;
};

/// The methods that all controls share.
extern const std::vector<Function> templateFunctions;

/// The accessors of properties: get before put, row by row.
std::vector<Function> accessorsOf(const std::vector<Property>& properties);

constexpr GUID guid(unsigned long a, unsigned short b, unsigned short c, std::initializer_list<unsigned char> d) {
  GUID value{a, b, c, {}};
  std::copy(d.begin(), d.end(), value.Data4);
  return value;
}

inline constexpr GUID libraryId = guid(0xA864F7F5, 0x89DD, 0x4A12, {0x9E, 0x3F, 0x61, 0xC3, 0x0E, 0xCC, 0x81, 0x80});
inline constexpr GUID templateId = guid(0x4AF266BD, 0x950A, 0x4620, {0xB3, 0x90, 0x00, 0x28, 0x87, 0x67, 0xA1, 0xF5});
inline constexpr GUID viewId = guid(0x1A1420DC, 0x77FE, 0x4BAE, {0x80, 0x3B, 0x6E, 0x29, 0x0B, 0x0B, 0xDE, 0xDB});
inline constexpr GUID meterId = guid(0xB394D7CB, 0x9236, 0x414C, {0xBC, 0x2E, 0x0D, 0xA8, 0x2F, 0xE7, 0x09, 0x1C});
inline constexpr GUID analyserId = guid(0xDC03496F, 0x5F30, 0x4F14, {0xBD, 0x89, 0x2F, 0x63, 0x28, 0x4A, 0x67, 0x1E});
inline constexpr GUID eventsId = guid(0xDEA14881, 0xD3D1, 0x4AE6, {0x85, 0x61, 0x9E, 0xC6, 0xD9, 0xEE, 0xBC, 0xF9});
inline constexpr GUID viewClassId = guid(0x62D89C1C, 0x1C5B, 0x467C, {0x94, 0x4F, 0xF8, 0x22, 0xCB, 0x0D, 0x62, 0x78});
inline constexpr GUID meterClassId = guid(0xE9992E04, 0x5743, 0x40C9, {0xAF, 0x9D, 0x82, 0x65, 0x30, 0xA4, 0x5F, 0x53});
inline constexpr GUID analyserClassId =
    guid(0x2F06E1AA, 0xC0F0, 0x488C, {0xA6, 0xDD, 0x79, 0x90, 0x53, 0xCA, 0x71, 0x40});
inline constexpr GUID oleColourId = guid(0x66504301, 0xBE0F, 0x101A, {0x8B, 0xBB, 0x00, 0xAA, 0x00, 0x30, 0x0C, 0xAB});
inline constexpr GUID fontDispId = guid(0xBEF6E003, 0xA874, 0x101A, {0x8B, 0xBA, 0x00, 0xAA, 0x00, 0x30, 0x0C, 0xAB});
inline constexpr GUID standardLibraryId =
    guid(0x00020430, 0x0000, 0x0000, {0xC0, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x46});

}  // namespace av::test
