#pragma once

// Reads type information for tests.

#include "com/type_library_tables.h"

#include <windows.h>

#include <gtest/gtest.h>
#include <oleauto.h>
#include <wrl/client.h>

#include <memory>
#include <optional>
#include <string>

namespace av::test {

using Microsoft::WRL::ComPtr;

inline std::wstring take(BSTR text) {
  std::wstring copy = text == nullptr ? L"" : std::wstring(text, SysStringLen(text));
  SysFreeString(text);
  return copy;
}

inline auto attributesOf(ITypeInfo* info) {
  TYPEATTR* attributes = nullptr;
  EXPECT_EQ(S_OK, info->GetTypeAttr(&attributes));
  const auto release = [info = ComPtr<ITypeInfo>(info)](TYPEATTR* a) { info->ReleaseTypeAttr(a); };
  return std::unique_ptr<TYPEATTR, decltype(release)>(attributes, release);
}

inline auto functionOf(ITypeInfo* info, UINT index) {
  FUNCDESC* function = nullptr;
  EXPECT_EQ(S_OK, info->GetFuncDesc(index, &function));
  const auto release = [info = ComPtr<ITypeInfo>(info)](FUNCDESC* f) { info->ReleaseFuncDesc(f); };
  return std::unique_ptr<FUNCDESC, decltype(release)>(function, release);
}

inline std::wstring nameOf(ITypeInfo* info, MEMBERID id = MEMBERID_NIL) {
  BSTR name = nullptr;
  EXPECT_EQ(S_OK, info->GetDocumentation(id, &name, nullptr, nullptr, nullptr));
  return take(name);
}

inline std::wstring helpOf(ITypeInfo* info, MEMBERID id = MEMBERID_NIL) {
  BSTR help = nullptr;
  EXPECT_EQ(S_OK, info->GetDocumentation(id, nullptr, &help, nullptr, nullptr));
  return take(help);
}

inline ComPtr<ITypeInfo> implemented(ITypeInfo* info, UINT index) {
  HREFTYPE reference = 0;
  EXPECT_EQ(S_OK, info->GetRefTypeOfImplType(index, &reference));
  ComPtr<ITypeInfo> other;
  EXPECT_EQ(S_OK, info->GetRefTypeInfo(reference, &other));
  return other;
}

/// The vtable side of a dual interface, which the type library hands out as its dispatch side.
inline ComPtr<ITypeInfo> vtableSide(ITypeInfo* dispatchSide) {
  return implemented(dispatchSide, static_cast<UINT>(-1));
}

/// The identifier of the type that a reference leads to, and whether that type lives in the system's stdole2.tlb.
inline GUID referred(ITypeInfo* info, HREFTYPE reference, bool& standard) {
  ComPtr<ITypeInfo> other;
  EXPECT_EQ(S_OK, info->GetRefTypeInfo(reference, &other));
  if (!other) return {};
  ComPtr<ITypeLib> library;
  UINT index = 0;
  EXPECT_EQ(S_OK, other->GetContainingTypeLib(&library, &index));
  TLIBATTR* attributes = nullptr;
  EXPECT_EQ(S_OK, library->GetLibAttr(&attributes));
  standard = attributes->guid == standardLibraryId;
  library->ReleaseTLibAttr(attributes);
  return attributesOf(other.Get())->guid;
}

/// What a type descriptor means; nothing when it is none of the types that the library uses.
inline std::optional<Type> typeOf(ITypeInfo* info, const TYPEDESC& type) {
  bool standard = false;
  switch (type.vt) {
    case VT_VOID: return Type::none;
    case VT_I4: return Type::integer;
    case VT_BOOL: return Type::boolean;
    case VT_R4: return Type::real;
    case VT_BSTR: return Type::text;
    case VT_UNKNOWN: return Type::unknown;
    case VT_VARIANT: return Type::variant;
    case VT_USERDEFINED:
      if (referred(info, type.hreftype, standard) == oleColourId && standard) return Type::colour;
      return std::nullopt;
    case VT_PTR:
      if (type.lptdesc->vt == VT_VARIANT) return Type::variantPointer;
      if (type.lptdesc->vt == VT_USERDEFINED && referred(info, type.lptdesc->hreftype, standard) == fontDispId &&
          standard)
        return Type::font;
      return std::nullopt;
    default: return std::nullopt;
  }
}

}  // namespace av::test
