// The finished type library against tables of its own. The compiler of the type library accepts mistakes silently
// (two members of one DISPID, a name that takes over the spelling of another), and hosts are compiled against the result.

#include <windows.h>

#include <gtest/gtest.h>
#include <oleauto.h>

#include <algorithm>
#include <map>
#include <set>
#include <string>
#include <vector>

#include "com/type_library_reader.h"
#include "com/type_library_tables.h"
#include "support/win/dll.h"

namespace av::test {
namespace {

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
