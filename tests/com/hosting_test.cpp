// What a plain container and its control say to each other, for all three classes.

#include "host/container.h"
#include "host/dll_test.h"

#include <ocidl.h>
#include <olectl.h>

#include <vector>

namespace av::test {
namespace {

struct ControlClass {
  const char* name;
  CLSID classId;
  IID dispatchId;
  const wchar_t* userType;
};

void PrintTo(const ControlClass& controlClass, std::ostream* out) { *out << controlClass.name; }

class Hosting : public DllTest, public testing::WithParamInterface<ControlClass> {
 protected:
  void SetUp() override {
    DllTest::SetUp();
    m_control = create<IOleObject>(GetParam().classId);
    ASSERT_TRUE(m_control);
  }

  void TearDown() override {
    m_container.close();
    EXPECT_EQ(0u, m_control ? m_control.Reset() : 0u) << "references were lost";
    DllTest::TearDown();
  }

  void host(LONG verb = OLEIVERB_INPLACEACTIVATE) {
    ASSERT_EQ(S_OK, m_container.open({.title = L"test", .clientSizePx = {320, 200}}));
    ASSERT_EQ(S_OK, m_container.host(m_control.Get(), verb));
  }

  static SIZE clientSize(HWND window) {
    RECT client{};
    GetClientRect(window, &client);
    return {client.right, client.bottom};
  }

  ComPtr<IOleObject> m_control;
  avhost::Container m_container;
};

TEST_P(Hosting, EveryInterfaceLeadsBackToOneIdentity) {
  ComPtr<IUnknown> identity;
  ASSERT_EQ(S_OK, m_control.As(&identity));
  const IID all[] = {IID_IDispatch,
                     IID_IAudioVisualizationTemplate,
                     GetParam().dispatchId,
                     IID_IOleObject,
                     IID_IOleControl,
                     IID_IOleWindow,
                     IID_IOleInPlaceObject,
                     IID_IOleInPlaceActiveObject,
                     IID_IViewObject,
                     IID_IViewObject2,
                     IID_IViewObjectEx,
                     IID_IPersist,
                     IID_IPersistStreamInit,
                     IID_IProvideClassInfo,
                     IID_IProvideClassInfo2,
                     IID_ISupportErrorInfo,
                     IID_IOleInPlaceObjectWindowless,
                     IID_IPersistStorage,
                     IID_IPersistPropertyBag,
                     IID_IQuickActivate,
                     IID_IConnectionPointContainer};
  for (const IID& iid : all) {
    ComPtr<IUnknown> face, back;
    ASSERT_EQ(S_OK, m_control->QueryInterface(iid, reinterpret_cast<void**>(face.GetAddressOf())));
    ASSERT_EQ(S_OK, face->QueryInterface(IID_PPV_ARGS(&back)));
    EXPECT_EQ(identity.Get(), back.Get());
    for (const IID& other : all) {
      ComPtr<IUnknown> reached;
      EXPECT_EQ(S_OK, face->QueryInterface(other, reinterpret_cast<void**>(reached.GetAddressOf())));
    }
  }
}

TEST_P(Hosting, UnknownInterfacesAndNullPointersAreRefused) {
  void* object = this;
  EXPECT_EQ(E_NOINTERFACE, m_control->QueryInterface(IID_IMarshal, &object));
  EXPECT_EQ(nullptr, object);
  EXPECT_EQ(E_POINTER, m_control->QueryInterface(IID_IUnknown, nullptr));
  // These controls do not promise to be safe for scripts that nobody trusts.
  static const IID objectSafety{0xCB5BDC81, 0x93C1, 0x11CF, {0x8F, 0x20, 0x00, 0x80, 0x5F, 0x2C, 0xD0, 0x64}};
  EXPECT_EQ(E_NOINTERFACE, m_control->QueryInterface(objectSafety, &object));
}

TEST_P(Hosting, AnAggregateHasOneIdentityAndItsInterfacesCountOnTheOuterObject) {
  struct Outer final : IUnknown {
    STDMETHODIMP QueryInterface(REFIID iid, void** object) override {
      if (iid == IID_IUnknown) {
        *object = static_cast<IUnknown*>(this);
        AddRef();
        return S_OK;
      }
      return inner ? inner->QueryInterface(iid, object) : E_NOINTERFACE;
    }
    STDMETHODIMP_(ULONG) AddRef() override { return ++references; }
    STDMETHODIMP_(ULONG) Release() override { return --references; }
    ULONG references = 1;
    IUnknown* inner = nullptr;
  } outer;

  using GetClassObject = HRESULT(STDAPICALLTYPE*)(REFCLSID, REFIID, void**);
  const auto getClassObject = reinterpret_cast<GetClassObject>(
      reinterpret_cast<void*>(GetProcAddress(m_library.module(), "DllGetClassObject")));
  ComPtr<IClassFactory> factory;
  ASSERT_EQ(S_OK, getClassObject(GetParam().classId, IID_PPV_ARGS(&factory)));
  void* refused = this;
  EXPECT_EQ(CLASS_E_NOAGGREGATION, factory->CreateInstance(&outer, IID_IOleObject, &refused));
  EXPECT_EQ(nullptr, refused);
  ASSERT_EQ(S_OK, factory->CreateInstance(&outer, IID_IUnknown, reinterpret_cast<void**>(&outer.inner)));
  EXPECT_EQ(1u, outer.references);
  {
    ComPtr<IOleObject> face;
    ASSERT_EQ(S_OK, outer.QueryInterface(IID_PPV_ARGS(&face)));
    EXPECT_EQ(2u, outer.references);
    ComPtr<IUnknown> identity;
    ASSERT_EQ(S_OK, face.As(&identity));
    EXPECT_EQ(static_cast<IUnknown*>(&outer), identity.Get());
    EXPECT_EQ(3u, outer.references);
  }
  EXPECT_EQ(1u, outer.references);
  EXPECT_EQ(0u, outer.inner->Release());
}

TEST_P(Hosting, ActivationMakesAWindowInsideTheContainersThatFillsIt) {
  host();
  const HWND window = m_container.controlWindow();
  ASSERT_TRUE(IsWindow(window));
  EXPECT_EQ(m_container.window(), GetParent(window));
  EXPECT_TRUE(IsWindowVisible(window));
  EXPECT_EQ(320, clientSize(window).cx);
  EXPECT_EQ(200, clientSize(window).cy);
  EXPECT_TRUE(m_container.site()->isInPlaceActive());
  EXPECT_FALSE(m_container.site()->isUiActive());
  EXPECT_EQ(0u, m_container.releaseControl());
  EXPECT_FALSE(IsWindow(window));
}

TEST_P(Hosting, TheWindowFollowsTheContainer) {
  host();
  ASSERT_EQ(S_OK, m_container.resize({500, 120}));
  EXPECT_EQ(500, clientSize(m_container.controlWindow()).cx);
  EXPECT_EQ(120, clientSize(m_container.controlWindow()).cy);
}

TEST_P(Hosting, HideAndShowKeepTheWindow) {
  host(OLEIVERB_SHOW);
  const HWND window = m_container.controlWindow();
  ASSERT_EQ(S_OK, m_container.doVerb(OLEIVERB_HIDE));
  EXPECT_FALSE(IsWindowVisible(window));
  EXPECT_TRUE(m_container.site()->isInPlaceActive());
  ASSERT_EQ(S_OK, m_container.doVerb(OLEIVERB_SHOW));
  EXPECT_TRUE(IsWindowVisible(window));
  EXPECT_EQ(window, m_container.controlWindow());
}

TEST_P(Hosting, UiActivationTakesFocusAndTheActiveObjectsPlace) {
  host(OLEIVERB_UIACTIVATE);
  EXPECT_TRUE(m_container.site()->isUiActive());
  EXPECT_TRUE(m_container.site()->activeObject());
  EXPECT_EQ(m_container.controlWindow(), GetFocus());
  ComPtr<IOleInPlaceObject> inPlace;
  ASSERT_EQ(S_OK, m_control.As(&inPlace));
  EXPECT_EQ(S_OK, inPlace->UIDeactivate());
  EXPECT_FALSE(m_container.site()->isUiActive());
  EXPECT_FALSE(m_container.site()->activeObject());
  EXPECT_TRUE(m_container.site()->isInPlaceActive());
}

TEST_P(Hosting, VerbsThatAreNotOursAreAnsweredAsTheProtocolAsks) {
  host();
  EXPECT_EQ(S_OK, m_container.doVerb(OLEIVERB_PRIMARY));
  EXPECT_EQ(E_NOTIMPL, m_container.doVerb(OLEIVERB_OPEN));
  EXPECT_EQ(E_NOTIMPL, m_container.doVerb(-100));
  EXPECT_EQ(OLEOBJ_S_INVALIDVERB, m_container.doVerb(77));
}

TEST_P(Hosting, WithoutASiteNothingIsActivated) {
  EXPECT_EQ(S_OK, m_control->DoVerb(OLEIVERB_SHOW, nullptr, nullptr, 0, nullptr, nullptr));
  ComPtr<IOleInPlaceObject> inPlace;
  ASSERT_EQ(S_OK, m_control.As(&inPlace));
  HWND window = nullptr;
  EXPECT_EQ(E_FAIL, inPlace->GetWindow(&window));
  const RECT empty{};
  EXPECT_EQ(E_UNEXPECTED, inPlace->SetObjectRects(&empty, &empty));
  EXPECT_EQ(E_INVALIDARG, inPlace->SetObjectRects(nullptr, &empty));
  EXPECT_EQ(S_OK, inPlace->InPlaceDeactivate());
  EXPECT_EQ(S_OK, m_control->Close(OLECLOSE_NOSAVE));
}

TEST_P(Hosting, AControlThatIsReleasedWhileActiveTakesItsWindowAlong) {
  host();
  const HWND window = m_container.controlWindow();
  m_control.Reset();
  avhost::pumpMessages(100);  // ticks, where there is a timer
  m_container.close();
  EXPECT_FALSE(IsWindow(window));
}

TEST_P(Hosting, TheExtentIsKeptForTheContentAspectOnly) {
  SIZEL extent{12345, 6789};
  EXPECT_EQ(S_OK, m_control->SetExtent(DVASPECT_CONTENT, &extent));
  SIZEL read{};
  EXPECT_EQ(S_OK, m_control->GetExtent(DVASPECT_CONTENT, &read));
  EXPECT_EQ(12345, read.cx);
  EXPECT_EQ(6789, read.cy);
  EXPECT_EQ(DV_E_DVASPECT, m_control->SetExtent(DVASPECT_ICON, &extent));
  EXPECT_EQ(DV_E_DVASPECT, m_control->GetExtent(DVASPECT_THUMBNAIL, &read));
  EXPECT_EQ(E_POINTER, m_control->GetExtent(DVASPECT_CONTENT, nullptr));
  EXPECT_EQ(E_POINTER, m_control->SetExtent(DVASPECT_CONTENT, nullptr));
}

TEST_P(Hosting, SaysWhoItIs) {
  CLSID classId{};
  EXPECT_EQ(S_OK, m_control->GetUserClassID(&classId));
  EXPECT_EQ(GetParam().classId, classId);
  LPOLESTR userType = nullptr;
  ASSERT_EQ(S_OK, m_control->GetUserType(USERCLASSTYPE_FULL, &userType));
  EXPECT_STREQ(GetParam().userType, userType);
  CoTaskMemFree(userType);
  DWORD status = 0;
  EXPECT_EQ(S_OK, m_control->GetMiscStatus(DVASPECT_CONTENT, &status));
  EXPECT_EQ(131473u, status);
  EXPECT_EQ(S_OK, m_control->GetMiscStatus(DVASPECT_ICON, &status));
  EXPECT_EQ(0u, status);
}

TEST_P(Hosting, ClassInformationNamesTheCoclass) {
  ComPtr<IProvideClassInfo2> provider;
  ASSERT_EQ(S_OK, m_control.As(&provider));
  ComPtr<ITypeInfo> info;
  ASSERT_EQ(S_OK, provider->GetClassInfo(&info));
  TYPEATTR* attributes = nullptr;
  ASSERT_EQ(S_OK, info->GetTypeAttr(&attributes));
  EXPECT_EQ(GetParam().classId, attributes->guid);
  EXPECT_EQ(TKIND_COCLASS, attributes->typekind);
  info->ReleaseTypeAttr(attributes);
  GUID events{};
  const bool hasEvents = GetParam().classId == CLSID_CAudioVisualization4Type1;
  EXPECT_EQ(hasEvents ? S_OK : E_FAIL, provider->GetGUID(GUIDKIND_DEFAULT_SOURCE_DISP_IID, &events));
  EXPECT_EQ(hasEvents ? DIID__IAudioVisualization4Type1Events : GUID_NULL, events);
  EXPECT_EQ(E_INVALIDARG, provider->GetGUID(77, &events));
}

TEST_P(Hosting, DrawsOutsideAWindowIntoTheGivenRectangleOnly) {
  SIZEL extent{5080, 2540};
  ASSERT_EQ(S_OK, m_control->SetExtent(DVASPECT_CONTENT, &extent));
  ComPtr<IViewObject> view;
  ASSERT_EQ(S_OK, m_control.As(&view));
  HDC screen = GetDC(nullptr);
  HDC memory = CreateCompatibleDC(screen);
  HBITMAP bitmap = CreateCompatibleBitmap(screen, 120, 80);
  HGDIOBJ old = SelectObject(memory, bitmap);
  const RECT all{0, 0, 120, 80};
  FillRect(memory, &all, static_cast<HBRUSH>(GetStockObject(WHITE_BRUSH)));
  const RECTL bounds{10, 20, 110, 70};
  EXPECT_EQ(S_OK, view->Draw(DVASPECT_CONTENT, -1, nullptr, nullptr, nullptr, memory, &bounds, nullptr, nullptr, 0));
  EXPECT_EQ(RGB(255, 255, 255), GetPixel(memory, 9, 40));
  EXPECT_EQ(RGB(255, 255, 255), GetPixel(memory, 40, 19));
  EXPECT_EQ(RGB(255, 255, 255), GetPixel(memory, 110, 40));
  EXPECT_EQ(RGB(255, 255, 255), GetPixel(memory, 40, 70));
  EXPECT_EQ(RGB(0, 0, 0), GetPixel(memory, 12, 22));
  EXPECT_EQ(DV_E_DVASPECT,
            view->Draw(DVASPECT_ICON, -1, nullptr, nullptr, nullptr, memory, &bounds, nullptr, nullptr, 0));
  EXPECT_EQ(E_INVALIDARG,
            view->Draw(DVASPECT_CONTENT, -1, nullptr, nullptr, nullptr, memory, nullptr, nullptr, nullptr, 0));
  SelectObject(memory, old);
  DeleteObject(bitmap);
  DeleteDC(memory);
  ReleaseDC(nullptr, screen);
}

const ControlClass allClasses[] = {
    {"Type1", CLSID_CAudioVisualization4Type1, IID_IAudioVisualization4Type1, L"CAudioVisualization4Type1 Object"},
    {"Type2", CLSID_CAudioVisualization4Type2, IID_IAudioVisualization4Type2, L"CAudioVisualization4Type2 Object"},
    {"Type3", CLSID_CAudioVisualization4Type3, IID_IAudioVisualization4Type3, L"CAudioVisualization4Type3 Object"},
};

INSTANTIATE_TEST_SUITE_P(, Hosting, testing::ValuesIn(allClasses),
                         [](const auto& parameter) { return std::string(parameter.param.name); });

}  // namespace
}  // namespace av::test
