// The finished type library against tables of its own. The compiler of the type library accepts mistakes silently
// (two members of one DISPID, a name that takes over the spelling of another), and hosts are compiled against the result.

#include <windows.h>

#include <gtest/gtest.h>
#include <oleauto.h>
#include <wrl/client.h>

#include <algorithm>
#include <map>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include "support/win/dll.h"

namespace av::test {
namespace {

using Microsoft::WRL::ComPtr;

enum class Type { none, integer, colour, boolean, font, real, text, unknown, variant, variantPointer };
enum class Access { readWrite, readOnly, byReference, indexed };

struct Property {
  const wchar_t* name;
  MEMBERID id;
  Type type;
  Access access = Access::readWrite;
};

constexpr auto I4 = Type::integer;
constexpr auto OLE = Type::colour;
constexpr auto BOOLEAN_ = Type::boolean;

const std::vector<Property> viewProperties = {
    {L"VisualizationType", 5, I4},
    {L"VisualizationSmooth", 6, BOOLEAN_},
    {L"BackColor", 10, OLE},
    {L"GridColor", 11, OLE},
    {L"ScaleColor", 12, OLE},
    {L"TextColor", 13, OLE},
    {L"BorderColor", 14, OLE},
    {L"LineColor", 15, OLE, Access::indexed},
    {L"ScaleXVisible", 20, BOOLEAN_},
    {L"ScaleYVisible", 21, BOOLEAN_},
    {L"ScaleFont", 22, Type::font, Access::byReference},
    {L"ScaleYMin", 23, I4},
    {L"ScaleYMax", 24, I4},
    {L"GridVisible", 25, BOOLEAN_},
    {L"DynamicRange", 30, I4},
    {L"BorderType", 31, I4},
    {L"FFTWindowSize", 40, I4},
    {L"FFTWindowType", 41, I4},
    {L"FFTViewType", 42, I4},
};

const std::vector<Property> meterProperties = {
    {L"LineType", 7, I4},           {L"LineInterval", 8, I4},        {L"LineCount", 9, I4},
    {L"BackColor", 11, OLE},        {L"BorderColor", 13, OLE},       {L"LineLowColor", 14, OLE},
    {L"LineMidColor", 15, OLE},     {L"LineHighColor", 16, OLE},     {L"BackLineLowColor", 17, OLE},
    {L"BackLineMidColor", 18, OLE}, {L"BackLineHighColor", 19, OLE}, {L"TickDelayTime", 30, I4},
    {L"TickReleaseTime", 31, I4},   {L"TickVisible", 32, BOOLEAN_},  {L"SpotHeight", 33, I4},
    {L"SpotInterval", 34, I4},      {L"MidPoint", 35, I4},           {L"HighPoint", 36, I4},
    {L"AlignmentY", 40, I4},        {L"AlignmentX", 41, I4},         {L"BorderType", 45, I4},
    {L"BorderWidth", 46, I4},       {L"AutoRepaint", 50, BOOLEAN_},  {L"AutoSize", 51, BOOLEAN_},
    {L"FFTWindowSize", 60, I4},     {L"FFTWindowType", 61, I4},      {L"FFTViewType", 62, I4},
};

const std::vector<Property> analyserProperties = {
    {L"ScaleXVisible", 6, BOOLEAN_},
    {L"ScaleYVisible", 7, BOOLEAN_},
    {L"ScaleYMax", 8, I4},
    {L"ScaleYMin", 9, I4},
    {L"FFTLength", 10, I4},
    {L"BackColor", 11, OLE},
    {L"BackLineHighColor", 12, OLE},
    {L"BackLineMidColor", 13, OLE},
    {L"BackLineLowColor", 14, OLE},
    {L"LineHighColor", 15, OLE},
    {L"LineMidColor", 16, OLE},
    {L"LineLowColor", 17, OLE},
    {L"MidPoint", 18, I4},
    {L"HighPoint", 19, I4},
    {L"LineInterval", 20, I4},
    {L"SpotInterval", 21, I4},
    {L"SpotHeight", 22, I4},
    {L"LineCount", 23, I4},
    {L"TickVisible", 24, BOOLEAN_},
    {L"DynamicRange", 25, I4},
    {L"ScaleFont", 26, Type::font, Access::byReference},
    {L"ScaleColor", 27, OLE},
    {L"BorderColor", 28, OLE},
    {L"BorderType", 29, I4},
    {L"FFTWindowType", 30, I4},
    {L"FFTWindowCount", 31, I4, Access::readOnly},
    {L"FFTWindowName", 32, Type::text, Access::readOnly},
    {L"HasWindowParam", 33, BOOLEAN_, Access::readOnly},
    {L"FFTWindowParam", 34, Type::real},
    {L"AutoRepaint", 35, BOOLEAN_},
    {L"XScaleType", 36, I4},
    {L"TickColor", 37, OLE},
    {L"AlignmentX", 38, I4},
    {L"AlignmentY", 39, I4},
    {L"ViewType", 40, I4},
    {L"AutoSize", 41, BOOLEAN_},
};

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

constexpr USHORT in = PARAMFLAG_FIN;
constexpr USHORT result = PARAMFLAG_FOUT | PARAMFLAG_FRETVAL;

const std::vector<Function> templateFunctions = {
    {L"_OnTimer", 0xaae61, INVOKE_FUNC, {}, FUNCFLAG_FHIDDEN},
    {L"SendAudioData", 0xaae62, INVOKE_FUNC, {{L"AudioData", Type::unknown, in}}},
    {L"Repaint", 0xaae63, INVOKE_FUNC, {}},
    {L"SetAdditionalParam", 0xaae64, INVOKE_FUNC, {{L"ParamName", Type::text, in}, {L"ParamValue", Type::variant, in}}},
    {L"GetAdditionalParam",
     0xaae65,
     INVOKE_FUNC,
     {{L"ParamName", Type::text, in}, {L"ParamValue", Type::variantPointer, PARAMFLAG_FIN | PARAMFLAG_FOUT}}},
};

/// Get before put, row by row.
std::vector<Function> accessorsOf(const std::vector<Property>& properties) {
  std::vector<Function> functions;
  for (const Property& row : properties) {
    std::vector<Parameter> index;
    if (row.access == Access::indexed) index = {{L"Channel", Type::integer, in}};
    auto get = index;
    get.push_back({L"pVal", row.type, result, true});
    functions.push_back({row.name, row.id, INVOKE_PROPERTYGET, get});
    if (row.access == Access::readOnly) continue;
    auto put = index;
    put.push_back({nullptr, row.type, in});
    functions.push_back(
        {row.name, row.id, row.access == Access::byReference ? INVOKE_PROPERTYPUTREF : INVOKE_PROPERTYPUT, put});
  }
  return functions;
}

constexpr GUID guid(unsigned long a, unsigned short b, unsigned short c, std::initializer_list<unsigned char> d) {
  GUID value{a, b, c, {}};
  std::copy(d.begin(), d.end(), value.Data4);
  return value;
}

constexpr GUID libraryId = guid(0xA864F7F5, 0x89DD, 0x4A12, {0x9E, 0x3F, 0x61, 0xC3, 0x0E, 0xCC, 0x81, 0x80});
constexpr GUID templateId = guid(0x4AF266BD, 0x950A, 0x4620, {0xB3, 0x90, 0x00, 0x28, 0x87, 0x67, 0xA1, 0xF5});
constexpr GUID viewId = guid(0x1A1420DC, 0x77FE, 0x4BAE, {0x80, 0x3B, 0x6E, 0x29, 0x0B, 0x0B, 0xDE, 0xDB});
constexpr GUID meterId = guid(0xB394D7CB, 0x9236, 0x414C, {0xBC, 0x2E, 0x0D, 0xA8, 0x2F, 0xE7, 0x09, 0x1C});
constexpr GUID analyserId = guid(0xDC03496F, 0x5F30, 0x4F14, {0xBD, 0x89, 0x2F, 0x63, 0x28, 0x4A, 0x67, 0x1E});
constexpr GUID eventsId = guid(0xDEA14881, 0xD3D1, 0x4AE6, {0x85, 0x61, 0x9E, 0xC6, 0xD9, 0xEE, 0xBC, 0xF9});
constexpr GUID viewClassId = guid(0x62D89C1C, 0x1C5B, 0x467C, {0x94, 0x4F, 0xF8, 0x22, 0xCB, 0x0D, 0x62, 0x78});
constexpr GUID meterClassId = guid(0xE9992E04, 0x5743, 0x40C9, {0xAF, 0x9D, 0x82, 0x65, 0x30, 0xA4, 0x5F, 0x53});
constexpr GUID analyserClassId = guid(0x2F06E1AA, 0xC0F0, 0x488C, {0xA6, 0xDD, 0x79, 0x90, 0x53, 0xCA, 0x71, 0x40});
constexpr GUID oleColourId = guid(0x66504301, 0xBE0F, 0x101A, {0x8B, 0xBB, 0x00, 0xAA, 0x00, 0x30, 0x0C, 0xAB});
constexpr GUID fontDispId = guid(0xBEF6E003, 0xA874, 0x101A, {0x8B, 0xBA, 0x00, 0xAA, 0x00, 0x30, 0x0C, 0xAB});
constexpr GUID standardLibraryId = guid(0x00020430, 0x0000, 0x0000, {0xC0, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x46});

std::wstring take(BSTR text) {
  std::wstring copy = text == nullptr ? L"" : std::wstring(text, SysStringLen(text));
  SysFreeString(text);
  return copy;
}

auto attributesOf(ITypeInfo* info) {
  TYPEATTR* attributes = nullptr;
  EXPECT_EQ(S_OK, info->GetTypeAttr(&attributes));
  const auto release = [info = ComPtr<ITypeInfo>(info)](TYPEATTR* a) { info->ReleaseTypeAttr(a); };
  return std::unique_ptr<TYPEATTR, decltype(release)>(attributes, release);
}

auto functionOf(ITypeInfo* info, UINT index) {
  FUNCDESC* function = nullptr;
  EXPECT_EQ(S_OK, info->GetFuncDesc(index, &function));
  const auto release = [info = ComPtr<ITypeInfo>(info)](FUNCDESC* f) { info->ReleaseFuncDesc(f); };
  return std::unique_ptr<FUNCDESC, decltype(release)>(function, release);
}

std::wstring nameOf(ITypeInfo* info, MEMBERID id = MEMBERID_NIL) {
  BSTR name = nullptr;
  EXPECT_EQ(S_OK, info->GetDocumentation(id, &name, nullptr, nullptr, nullptr));
  return take(name);
}

std::wstring helpOf(ITypeInfo* info, MEMBERID id = MEMBERID_NIL) {
  BSTR help = nullptr;
  EXPECT_EQ(S_OK, info->GetDocumentation(id, nullptr, &help, nullptr, nullptr));
  return take(help);
}

ComPtr<ITypeInfo> implemented(ITypeInfo* info, UINT index) {
  HREFTYPE reference = 0;
  EXPECT_EQ(S_OK, info->GetRefTypeOfImplType(index, &reference));
  ComPtr<ITypeInfo> other;
  EXPECT_EQ(S_OK, info->GetRefTypeInfo(reference, &other));
  return other;
}

/// The vtable side of a dual interface, which the type library hands out as its dispatch side.
ComPtr<ITypeInfo> vtableSide(ITypeInfo* dispatchSide) { return implemented(dispatchSide, static_cast<UINT>(-1)); }

/// The identifier of the type that a reference leads to, and whether that type lives in the system's stdole2.tlb.
GUID referred(ITypeInfo* info, HREFTYPE reference, bool& standard) {
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
std::optional<Type> typeOf(ITypeInfo* info, const TYPEDESC& type) {
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

void expectFunction(ITypeInfo* info, UINT index, const Function& expected, int slot) {
  const auto function = functionOf(info, index);
  EXPECT_EQ(expected.id, function->memid);
  EXPECT_EQ(expected.kind, function->invkind);
  EXPECT_EQ(FUNC_PUREVIRTUAL, function->funckind);
  EXPECT_EQ(CC_STDCALL, function->callconv);
  EXPECT_EQ(expected.flags, function->wFuncFlags);
  EXPECT_EQ(slot * static_cast<int>(sizeof(void*)), function->oVft);
  EXPECT_EQ(VT_HRESULT, function->elemdescFunc.tdesc.vt);
  EXPECT_EQ(0, function->cParamsOpt);
  EXPECT_FALSE(helpOf(info, function->memid).empty());

  BSTR names[8] = {};
  UINT nameCount = 0;
  EXPECT_EQ(S_OK, info->GetNames(function->memid, names, 8, &nameCount));
  // GetNames of an identifier answers for its first function, so accessor names are compared through the get.
  EXPECT_EQ(expected.name, nameCount > 0 ? std::wstring(names[0]) : L"");
  if (expected.kind == INVOKE_PROPERTYGET || expected.kind == INVOKE_FUNC) {
    EXPECT_EQ(expected.parameters.size() + 1, nameCount);
    for (UINT i = 0; i + 1 < nameCount; ++i) EXPECT_STREQ(expected.parameters[i].name, names[i + 1]);
  }
  for (UINT i = 0; i < nameCount; ++i) SysFreeString(names[i]);

  ASSERT_EQ(static_cast<SHORT>(expected.parameters.size()), function->cParams);
  for (std::size_t i = 0; i < expected.parameters.size(); ++i) {
    const ELEMDESC& actual = function->lprgelemdescParam[i];
    const Parameter& wanted = expected.parameters[i];
    EXPECT_EQ(wanted.flags, actual.paramdesc.wParamFlags) << "parameter " << i;
    const TYPEDESC* type = &actual.tdesc;
    if (wanted.pointer) {
      ASSERT_EQ(VT_PTR, type->vt) << "parameter " << i;
      type = type->lptdesc;
    }
    EXPECT_EQ(wanted.type, typeOf(info, *type)) << "parameter " << i << ", type " << type->vt;
  }
}

std::string narrow(const std::wstring& text) { return {text.begin(), text.end()}; }

/// Runs once over the file that lies beside the DLL and once over the DLL's own resource.
class TypeLibrary : public testing::TestWithParam<const wchar_t*> {
 protected:
  void SetUp() override {
    const std::wstring path = besideProgram(GetParam());
    ASSERT_EQ(S_OK, LoadTypeLibEx(path.c_str(), REGKIND_NONE, &m_library)) << narrow(path);
  }

  ComPtr<ITypeInfo> typeInfo(const GUID& id) {
    ComPtr<ITypeInfo> info;
    EXPECT_EQ(S_OK, m_library->GetTypeInfoOfGuid(id, &info));
    return info;
  }

  void expectDualInterface(const GUID& id, const wchar_t* name, const GUID& base, int firstSlot,
                           const std::vector<Function>& functions) {
    const ComPtr<ITypeInfo> dispatchSide = typeInfo(id);
    ASSERT_TRUE(dispatchSide);
    const auto dispatchAttributes = attributesOf(dispatchSide.Get());
    EXPECT_EQ(TKIND_DISPATCH, dispatchAttributes->typekind);

    const ComPtr<ITypeInfo> info = vtableSide(dispatchSide.Get());
    ASSERT_TRUE(info);
    const auto attributes = attributesOf(info.Get());
    EXPECT_EQ(id, attributes->guid);
    EXPECT_EQ(name, nameOf(info.Get()));
    EXPECT_FALSE(helpOf(info.Get()).empty());
    EXPECT_EQ(TKIND_INTERFACE, attributes->typekind);
    constexpr WORD flags = TYPEFLAG_FDUAL | TYPEFLAG_FOLEAUTOMATION | TYPEFLAG_FNONEXTENSIBLE | TYPEFLAG_FDISPATCHABLE;
    EXPECT_EQ(flags, attributes->wTypeFlags);
    EXPECT_EQ((firstSlot + static_cast<int>(functions.size())) * static_cast<int>(sizeof(void*)),
              attributes->cbSizeVft);
    EXPECT_EQ(0, attributes->cVars);
    ASSERT_EQ(1, attributes->cImplTypes);
    EXPECT_EQ(base, attributesOf(implemented(info.Get(), 0).Get())->guid);

    ASSERT_EQ(functions.size(), attributes->cFuncs);
    for (UINT i = 0; i < attributes->cFuncs; ++i) {
      SCOPED_TRACE(narrow(name) + "." + narrow(functions[i].name) + ", invkind " + std::to_string(functions[i].kind));
      expectFunction(info.Get(), i, functions[i], firstSlot + static_cast<int>(i));
    }
  }

  ComPtr<ITypeLib> m_library;
};

TEST_P(TypeLibrary, IsNamedAndVersioned) {
  TLIBATTR* attributes = nullptr;
  ASSERT_EQ(S_OK, m_library->GetLibAttr(&attributes));
  EXPECT_EQ(libraryId, attributes->guid);
  EXPECT_EQ(1, attributes->wMajorVerNum);
  EXPECT_EQ(0, attributes->wMinorVerNum);
  EXPECT_EQ(LCID{0}, attributes->lcid);
  EXPECT_EQ(sizeof(void*) == 8 ? SYS_WIN64 : SYS_WIN32, attributes->syskind);
  m_library->ReleaseTLibAttr(attributes);
  BSTR name = nullptr;
  BSTR help = nullptr;
  ASSERT_EQ(S_OK, m_library->GetDocumentation(-1, &name, &help, nullptr, nullptr));
  EXPECT_EQ(L"QELAudioVisualization4", take(name));
  EXPECT_EQ(L"QELAudioVisualization4 1.0 Type Library", take(help));
}

TEST_P(TypeLibrary, HoldsFourDualInterfacesOneEventInterfaceAndThreeClasses) {
  std::map<std::wstring, TYPEKIND> found;
  for (UINT i = 0; i < m_library->GetTypeInfoCount(); ++i) {
    BSTR name = nullptr;
    TYPEKIND kind{};
    ASSERT_EQ(S_OK, m_library->GetDocumentation(static_cast<INT>(i), &name, nullptr, nullptr, nullptr));
    ASSERT_EQ(S_OK, m_library->GetTypeInfoType(i, &kind));
    found[take(name)] = kind;
  }
  const std::map<std::wstring, TYPEKIND> expected = {
      {L"IAudioVisualizationTemplate", TKIND_DISPATCH},      {L"IAudioVisualization4Type1", TKIND_DISPATCH},
      {L"IAudioVisualization4Type2", TKIND_DISPATCH},        {L"IAudioVisualization4Type3", TKIND_DISPATCH},
      {L"_IAudioVisualization4Type1Events", TKIND_DISPATCH}, {L"CAudioVisualization4Type1", TKIND_COCLASS},
      {L"CAudioVisualization4Type2", TKIND_COCLASS},         {L"CAudioVisualization4Type3", TKIND_COCLASS},
  };
  EXPECT_EQ(expected, found);
}

TEST_P(TypeLibrary, PutsTheSharedMethodsIntoSlots7To11) {
  expectDualInterface(templateId, L"IAudioVisualizationTemplate", IID_IDispatch, 7, templateFunctions);
}

TEST_P(TypeLibrary, PutsTheViewsAccessorsFromSlot12On) {
  expectDualInterface(viewId, L"IAudioVisualization4Type1", templateId, 12, accessorsOf(viewProperties));
}

TEST_P(TypeLibrary, PutsTheMetersAccessorsFromSlot12On) {
  expectDualInterface(meterId, L"IAudioVisualization4Type2", templateId, 12, accessorsOf(meterProperties));
}

TEST_P(TypeLibrary, PutsTheAnalysersAccessorsFromSlot12On) {
  expectDualInterface(analyserId, L"IAudioVisualization4Type3", templateId, 12, accessorsOf(analyserProperties));
}

TEST_P(TypeLibrary, GivesNoTwoMembersOfAnInterfaceOneDispid) {
  for (const GUID& id : {viewId, meterId, analyserId}) {
    std::map<MEMBERID, std::wstring> names;
    std::set<std::pair<MEMBERID, INVOKEKIND>> seen;
    // The control's own interface and then the one that it derives from, which late-bound hosts see as one.
    ComPtr<ITypeInfo> info = vtableSide(typeInfo(id).Get());
    for (int level = 0; level < 2; ++level) {
      const auto attributes = attributesOf(info.Get());
      for (UINT i = 0; i < attributes->cFuncs; ++i) {
        const auto function = functionOf(info.Get(), i);
        EXPECT_TRUE(seen.insert({function->memid, function->invkind}).second) << function->memid;
        const std::wstring name = nameOf(info.Get(), function->memid);
        const auto [at, fresh] = names.insert({function->memid, name});
        EXPECT_TRUE(fresh || at->second == name) << function->memid;
      }
      info = implemented(info.Get(), 0);
    }
  }
}

TEST_P(TypeLibrary, ResolvesEveryNameInAnyLetterCase) {
  const std::pair<GUID, const std::vector<Property>*> all[] = {
      {viewId, &viewProperties}, {meterId, &meterProperties}, {analyserId, &analyserProperties}};
  for (const auto& [id, properties] : all) {
    const ComPtr<ITypeInfo> info = typeInfo(id);
    std::vector<std::pair<std::wstring, MEMBERID>> names;
    for (const Property& row : *properties) names.emplace_back(row.name, row.id);
    for (const Function& row : templateFunctions) names.emplace_back(row.name, row.id);
    for (auto [name, memberId] : names) {
      SCOPED_TRACE(narrow(name));
      EXPECT_EQ(name, nameOf(info.Get(), memberId));
      std::transform(name.begin(), name.end(), name.begin(),
                     [](wchar_t c) { return static_cast<wchar_t>(towupper(c)); });
      LPOLESTR asked = name.data();
      MEMBERID found = MEMBERID_NIL;
      EXPECT_EQ(S_OK, info->GetIDsOfNames(&asked, 1, &found));
      EXPECT_EQ(memberId, found);
    }
  }
}

TEST_P(TypeLibrary, DescribesTheFiveEvents) {
  struct Event {
    const wchar_t* name;
    std::vector<const wchar_t*> parameters;
  };
  const Event events[] = {
      {L"MouseMove", {L"X", L"Y", L"XValue", L"YValue"}},
      {L"MouseUp", {L"X", L"Y", L"XValue", L"YValue"}},
      {L"MouseDown", {L"X", L"Y", L"XValue", L"YValue"}},
      {L"MouseClick", {L"X", L"Y"}},
      {L"MouseDblClick", {}},
  };
  const ComPtr<ITypeInfo> info = typeInfo(eventsId);
  ASSERT_TRUE(info);
  const auto attributes = attributesOf(info.Get());
  EXPECT_EQ(L"_IAudioVisualization4Type1Events", nameOf(info.Get()));
  EXPECT_EQ(TKIND_DISPATCH, attributes->typekind);
  EXPECT_EQ(0, attributes->wTypeFlags & TYPEFLAG_FDUAL);
  EXPECT_EQ(0, attributes->cVars);
  ASSERT_EQ(1, attributes->cImplTypes);
  EXPECT_EQ(IID_IDispatch, attributesOf(implemented(info.Get(), 0).Get())->guid);
  ASSERT_EQ(std::size(events), attributes->cFuncs);
  for (UINT i = 0; i < attributes->cFuncs; ++i) {
    const auto function = functionOf(info.Get(), i);
    SCOPED_TRACE(narrow(events[i].name));
    EXPECT_EQ(static_cast<MEMBERID>(i + 1), function->memid);
    EXPECT_EQ(events[i].name, nameOf(info.Get(), function->memid));
    EXPECT_FALSE(helpOf(info.Get(), function->memid).empty());
    EXPECT_EQ(FUNC_DISPATCH, function->funckind);
    EXPECT_EQ(INVOKE_FUNC, function->invkind);
    EXPECT_EQ(VT_HRESULT, function->elemdescFunc.tdesc.vt);
    ASSERT_EQ(static_cast<SHORT>(events[i].parameters.size()), function->cParams);
    BSTR names[5] = {};
    UINT count = 0;
    EXPECT_EQ(S_OK, info->GetNames(function->memid, names, 5, &count));
    EXPECT_EQ(events[i].parameters.size() + 1, count);
    for (UINT p = 0; p + 1 < count; ++p) {
      EXPECT_STREQ(events[i].parameters[p], names[p + 1]);
      EXPECT_EQ(VT_I4, function->lprgelemdescParam[p].tdesc.vt);
      EXPECT_EQ(PARAMFLAG_FIN, function->lprgelemdescParam[p].paramdesc.wParamFlags);
    }
    for (UINT p = 0; p < count; ++p) SysFreeString(names[p]);
  }
}

TEST_P(TypeLibrary, NamesEachClassItsInterfaces) {
  struct Class {
    GUID id;
    const wchar_t* name;
    std::vector<std::pair<GUID, INT>> interfaces;
  };
  const Class classes[] = {
      {viewClassId,
       L"CAudioVisualization4Type1",
       {{viewId, IMPLTYPEFLAG_FDEFAULT}, {eventsId, IMPLTYPEFLAG_FDEFAULT | IMPLTYPEFLAG_FSOURCE}}},
      {meterClassId, L"CAudioVisualization4Type2", {{meterId, IMPLTYPEFLAG_FDEFAULT}}},
      {analyserClassId, L"CAudioVisualization4Type3", {{analyserId, IMPLTYPEFLAG_FDEFAULT}}},
  };
  for (const Class& expected : classes) {
    SCOPED_TRACE(narrow(expected.name));
    const ComPtr<ITypeInfo> info = typeInfo(expected.id);
    ASSERT_TRUE(info);
    const auto attributes = attributesOf(info.Get());
    EXPECT_EQ(TKIND_COCLASS, attributes->typekind);
    EXPECT_EQ(expected.name, nameOf(info.Get()));
    EXPECT_FALSE(helpOf(info.Get()).empty());
    EXPECT_EQ(TYPEFLAG_FCANCREATE | TYPEFLAG_FCONTROL, attributes->wTypeFlags);
    ASSERT_EQ(expected.interfaces.size(), attributes->cImplTypes);
    for (UINT i = 0; i < attributes->cImplTypes; ++i) {
      INT flags = 0;
      EXPECT_EQ(S_OK, info->GetImplTypeFlags(i, &flags));
      EXPECT_EQ(expected.interfaces[i].second, flags);
      EXPECT_EQ(expected.interfaces[i].first, attributesOf(implemented(info.Get(), i).Get())->guid);
    }
  }
}

INSTANTIATE_TEST_SUITE_P(BesideTheDll, TypeLibrary, testing::Values(L"QELAudioVisualization4.tlb"),
                         [](const auto&) { return "File"; });
INSTANTIATE_TEST_SUITE_P(InTheDll, TypeLibrary, testing::Values(L"QELAudioVisualization4.dll"),
                         [](const auto&) { return "Resource"; });

}  // namespace
}  // namespace av::test
