// What the hosting interfaces answer when they are asked wrongly, or for what a control has not.

#include "host/each_control_test.h"

#include <ocidl.h>
#include <olectl.h>

namespace av::test {
namespace {

class OleObjectAnswers : public EachControlTest {};

/// A client site with as little behind it as the test says.
class PoorSite final : public IOleClientSite, public IOleInPlaceSite {
 public:
  bool offersInPlaceSite = false;
  HRESULT canActivate = S_OK;
  HRESULT onActivate = S_OK;
  HRESULT onWindow = S_OK;
  HRESULT onContext = S_OK;
  HWND parent = nullptr;
  int activations = 0, deactivations = 0, saves = 0;

  STDMETHODIMP QueryInterface(REFIID iid, void** object) override {
    *object = nullptr;
    if (iid == IID_IUnknown || iid == IID_IOleClientSite) *object = static_cast<IOleClientSite*>(this);
    if (offersInPlaceSite && (iid == IID_IOleInPlaceSite || iid == IID_IOleWindow))
      *object = static_cast<IOleInPlaceSite*>(this);
    if (*object) ++references;
    return *object ? S_OK : E_NOINTERFACE;
  }
  STDMETHODIMP_(ULONG) AddRef() override { return ++references; }
  STDMETHODIMP_(ULONG) Release() override { return --references; }
  STDMETHODIMP SaveObject() override {
    ++saves;
    return S_OK;
  }
  STDMETHODIMP GetMoniker(DWORD, DWORD, IMoniker**) override { return E_NOTIMPL; }
  STDMETHODIMP GetContainer(IOleContainer**) override { return E_NOINTERFACE; }
  STDMETHODIMP ShowObject() override { return S_OK; }
  STDMETHODIMP OnShowWindow(BOOL) override { return S_OK; }
  STDMETHODIMP RequestNewObjectLayout() override { return E_NOTIMPL; }
  STDMETHODIMP GetWindow(HWND* window) override {
    *window = parent;
    return onWindow;
  }
  STDMETHODIMP ContextSensitiveHelp(BOOL) override { return S_OK; }
  STDMETHODIMP CanInPlaceActivate() override { return canActivate; }
  STDMETHODIMP OnInPlaceActivate() override {
    ++activations;
    return onActivate;
  }
  STDMETHODIMP OnUIActivate() override { return S_OK; }
  STDMETHODIMP GetWindowContext(IOleInPlaceFrame** frame, IOleInPlaceUIWindow** document, RECT* position, RECT* clip,
                                OLEINPLACEFRAMEINFO*) override {
    *frame = nullptr;
    *document = nullptr;
    *position = *clip = {0, 0, 100, 100};
    return onContext;
  }
  STDMETHODIMP Scroll(SIZE) override { return S_FALSE; }
  STDMETHODIMP OnUIDeactivate(BOOL) override { return S_OK; }
  STDMETHODIMP OnInPlaceDeactivate() override {
    ++deactivations;
    return S_OK;
  }
  STDMETHODIMP DiscardUndoState() override { return E_NOTIMPL; }
  STDMETHODIMP DeactivateAndUndo() override { return E_NOTIMPL; }
  STDMETHODIMP OnPosRectChange(const RECT*) override { return S_OK; }

  ULONG references = 1;
};

TEST_P(OleObjectAnswers, NullOutPointersAreRefused) {
  EXPECT_EQ(E_POINTER, m_control->GetClientSite(nullptr));
  EXPECT_EQ(E_POINTER, m_control->GetUserClassID(nullptr));
  EXPECT_EQ(E_POINTER, m_control->GetUserType(USERCLASSTYPE_FULL, nullptr));
  EXPECT_EQ(E_POINTER, m_control->GetMiscStatus(DVASPECT_CONTENT, nullptr));
  EXPECT_EQ(E_POINTER, m_control->EnumVerbs(nullptr));
  EXPECT_EQ(E_POINTER, m_control->EnumAdvise(nullptr));
  EXPECT_EQ(E_POINTER, m_control->Advise(nullptr, nullptr));
}

TEST_P(OleObjectAnswers, WhatAControlHasNotIsNotImplementedAndOutPointersAreEmptied) {
  IMoniker* moniker = reinterpret_cast<IMoniker*>(this);
  EXPECT_EQ(E_NOTIMPL, m_control->GetMoniker(OLEGETMONIKER_ONLYIFTHERE, OLEWHICHMK_OBJFULL, &moniker));
  EXPECT_EQ(nullptr, moniker);
  EXPECT_EQ(E_NOTIMPL, m_control->GetMoniker(OLEGETMONIKER_ONLYIFTHERE, OLEWHICHMK_OBJFULL, nullptr));
  EXPECT_EQ(E_NOTIMPL, m_control->SetMoniker(OLEWHICHMK_OBJFULL, nullptr));
  EXPECT_EQ(E_NOTIMPL, m_control->InitFromData(nullptr, TRUE, 0));
  IDataObject* data = reinterpret_cast<IDataObject*>(this);
  EXPECT_EQ(E_NOTIMPL, m_control->GetClipboardData(0, &data));
  EXPECT_EQ(nullptr, data);
  EXPECT_EQ(E_NOTIMPL, m_control->SetColorScheme(nullptr));
}

TEST_P(OleObjectAnswers, ConnectionsThatDoNotExistCannotBeEnded) {
  EXPECT_EQ(OLE_E_NOCONNECTION, m_control->Unadvise(1));
  DWORD connection = 77;
  EXPECT_EQ(E_INVALIDARG, m_control->Advise(nullptr, &connection));
  EXPECT_EQ(0u, connection);
  EXPECT_EQ(OLE_E_NOCONNECTION, m_control->Unadvise(99));
}

TEST_P(OleObjectAnswers, HostNamesMayBeNull) { EXPECT_EQ(S_OK, m_control->SetHostNames(nullptr, nullptr)); }

TEST_P(OleObjectAnswers, ClosingAndUnsitingTwiceSucceeds) {
  for (int i = 0; i < 2; ++i) {
    EXPECT_EQ(S_OK, m_control->Close(OLECLOSE_NOSAVE));
    EXPECT_EQ(S_OK, m_control->SetClientSite(nullptr));
  }
}

TEST_P(OleObjectAnswers, WithoutASinkThereIsNothingToEnumerate) {
  auto* connections = reinterpret_cast<IEnumSTATDATA*>(this);
  EXPECT_EQ(S_OK, m_control->EnumAdvise(&connections));
  EXPECT_EQ(nullptr, connections);
}

TEST_P(OleObjectAnswers, AspectsAndFormsOfNamesThatDoNotExistHaveAnswersToo) {
  DWORD status = 77;
  EXPECT_EQ(S_OK, m_control->GetMiscStatus(99, &status));
  EXPECT_EQ(0u, status);
  LPOLESTR full = nullptr, other = nullptr;
  EXPECT_EQ(S_OK, m_control->GetUserType(USERCLASSTYPE_FULL, &full));
  EXPECT_EQ(S_OK, m_control->GetUserType(99, &other));
  EXPECT_STREQ(full, other);
  CoTaskMemFree(full);
  CoTaskMemFree(other);
}

TEST_P(OleObjectAnswers, AnUnknownSaveOptionSavesWhatIsDirty) {
  PoorSite site;
  ASSERT_EQ(S_OK, m_control->SetClientSite(&site));
  EXPECT_EQ(S_OK, m_control->Close(99));
  EXPECT_EQ(0, site.saves);
  SIZEL size{1234, 2345};
  ASSERT_EQ(S_OK, m_control->SetExtent(DVASPECT_CONTENT, &size));
  EXPECT_EQ(S_OK, m_control->Close(99));
  EXPECT_EQ(1, site.saves);
  EXPECT_EQ(S_OK, m_control->SetClientSite(nullptr));
  EXPECT_EQ(1u, site.references);
}

TEST_P(OleObjectAnswers, VerbsAskTheirOwnSiteAndLookAtNoOtherArgument) {
  ASSERT_EQ(S_OK, m_container.open({.title = L"test", .clientSizePx = {200, 100}}));
  ASSERT_EQ(S_OK, m_container.host(m_control.Get()));
  ASSERT_EQ(S_OK, as<IOleInPlaceObject>()->InPlaceDeactivate());
  PoorSite other;
  const RECT elsewhere{300, 300, 301, 301};
  EXPECT_EQ(S_OK, m_control->DoVerb(OLEIVERB_SHOW, nullptr, &other, 77, GetDesktopWindow(), &elsewhere));
  EXPECT_EQ(1u, other.references);
  const HWND window = m_container.controlWindow();
  ASSERT_TRUE(window);
  EXPECT_EQ(m_container.window(), GetParent(window));
  RECT client{};
  GetClientRect(window, &client);
  EXPECT_EQ(200, client.right);
  EXPECT_EQ(100, client.bottom);
}

TEST_P(OleObjectAnswers, AnInactiveControlIsHiddenAlready) {
  PoorSite site;
  site.offersInPlaceSite = true;
  ASSERT_EQ(S_OK, m_control->SetClientSite(&site));
  for (const LONG verb : {OLEIVERB_HIDE, OLEIVERB_DISCARDUNDOSTATE})
    EXPECT_EQ(S_OK, m_control->DoVerb(verb, nullptr, &site, 0, nullptr, nullptr));
  EXPECT_EQ(0, site.activations);
  EXPECT_EQ(S_OK, m_control->SetClientSite(nullptr));
  EXPECT_EQ(1u, site.references);
}

TEST_P(OleObjectAnswers, RectanglesWithoutAreaLeaveAWindowWithoutArea) {
  ASSERT_EQ(S_OK, m_container.open({.title = L"test", .clientSizePx = {200, 100}}));
  ASSERT_EQ(S_OK, m_container.host(m_control.Get()));
  const auto inPlace = as<IOleInPlaceObject>();
  const RECT whole{0, 0, 200, 100};
  RECT client{};
  for (const RECT& rect : {RECT{20, 10, 20, 10}, RECT{50, 60, 40, 20}}) {
    EXPECT_EQ(S_OK, inPlace->SetObjectRects(&rect, &whole));
    GetClientRect(m_container.controlWindow(), &client);
    // The view asks for the smallest size that it can use, and this container grants it.
    EXPECT_EQ(GetParam() == 1 ? 80 : 0, client.right);
    EXPECT_EQ(GetParam() == 1 ? 50 : 0, client.bottom);
  }
  EXPECT_EQ(S_OK, inPlace->SetObjectRects(&whole, &whole));
  GetClientRect(m_container.controlWindow(), &client);
  EXPECT_EQ(200, client.right);
}

TEST_P(OleObjectAnswers, SitesThatRefuseInPlaceActivationLeaveTheControlInactive) {
  ASSERT_EQ(S_OK, m_container.open({.title = L"test", .clientSizePx = {200, 200}}));
  const struct {
    bool inPlace;
    HRESULT can, on, window, context, answer;
    int activations, deactivations;
  } cases[] = {
      {false, S_OK, S_OK, S_OK, S_OK, E_NOINTERFACE, 0, 0},
      {true, S_FALSE, S_OK, S_OK, S_OK, E_FAIL, 0, 0},
      {true, E_ACCESSDENIED, S_OK, S_OK, S_OK, E_ACCESSDENIED, 0, 0},
      {true, S_OK, E_ACCESSDENIED, S_OK, S_OK, E_ACCESSDENIED, 1, 0},
      {true, S_OK, S_OK, E_ACCESSDENIED, S_OK, E_ACCESSDENIED, 1, 1},
      {true, S_OK, S_OK, S_OK, E_ACCESSDENIED, E_ACCESSDENIED, 1, 1},
  };
  for (const auto& one : cases) {
    PoorSite site;
    site.offersInPlaceSite = one.inPlace;
    site.canActivate = one.can;
    site.onActivate = one.on;
    site.onWindow = one.window;
    site.onContext = one.context;
    site.parent = m_container.window();
    ASSERT_EQ(S_OK, m_control->SetClientSite(&site));
    EXPECT_EQ(one.answer, m_control->DoVerb(OLEIVERB_INPLACEACTIVATE, nullptr, &site, 0, nullptr, nullptr));
    EXPECT_EQ(one.activations, site.activations);
    EXPECT_EQ(one.deactivations, site.deactivations);
    HWND window = nullptr;
    EXPECT_EQ(E_FAIL, as<IOleInPlaceObject>()->GetWindow(&window));
    EXPECT_EQ(S_OK, m_control->SetClientSite(nullptr));
    EXPECT_EQ(1u, site.references);
  }
}

TEST_P(OleObjectAnswers, AParentThatIsNoWindowFailsTheActivation) {
  PoorSite site;
  site.offersInPlaceSite = true;
  ASSERT_EQ(S_OK, m_control->SetClientSite(&site));
  EXPECT_EQ(E_FAIL, m_control->DoVerb(OLEIVERB_INPLACEACTIVATE, nullptr, &site, 0, nullptr, nullptr));
  EXPECT_EQ(site.activations, site.deactivations);
  EXPECT_EQ(S_OK, m_control->SetClientSite(nullptr));
  EXPECT_EQ(1u, site.references);
}

TEST_P(OleObjectAnswers, TheInPlaceInterfacesRefuseNullsAndKnowNoUndo) {
  const auto inPlace = as<IOleInPlaceObject>();
  const auto active = as<IOleInPlaceActiveObject>();
  EXPECT_EQ(E_POINTER, inPlace->GetWindow(nullptr));
  EXPECT_EQ(E_POINTER, active->GetWindow(nullptr));
  const RECT rect{0, 0, 10, 10};
  EXPECT_EQ(E_INVALIDARG, inPlace->SetObjectRects(&rect, nullptr));
  EXPECT_EQ(E_INVALIDARG, inPlace->SetObjectRects(nullptr, &rect));
  EXPECT_EQ(INPLACE_E_NOTUNDOABLE, inPlace->ReactivateAndUndo());
  EXPECT_EQ(S_OK, inPlace->UIDeactivate());
  EXPECT_EQ(S_FALSE, active->TranslateAccelerator(nullptr));
  EXPECT_EQ(S_OK, active->OnDocWindowActivate(FALSE));
  EXPECT_EQ(S_OK, active->ResizeBorder(nullptr, nullptr, TRUE));
}

TEST_P(OleObjectAnswers, TheControlInterfaceRefusesNullsAndBearsStrayCalls) {
  const auto control = as<IOleControl>();
  EXPECT_EQ(E_POINTER, control->GetControlInfo(nullptr));
  EXPECT_EQ(S_OK, control->OnMnemonic(nullptr));
  EXPECT_EQ(S_OK, control->OnAmbientPropertyChange(DISPID_UNKNOWN));
  EXPECT_EQ(S_OK, control->OnAmbientPropertyChange(4711));
  EXPECT_EQ(S_OK, control->FreezeEvents(FALSE));  // never frozen
}

TEST_P(OleObjectAnswers, ClassAndErrorInformationRefuseNullsAndOtherKinds) {
  const auto info = as<IProvideClassInfo2>();
  EXPECT_EQ(E_POINTER, info->GetClassInfo(nullptr));
  EXPECT_EQ(E_POINTER, info->GetGUID(GUIDKIND_DEFAULT_SOURCE_DISP_IID, nullptr));
  GUID guid = IID_IUnknown;
  EXPECT_EQ(E_INVALIDARG, info->GetGUID(0, &guid));
  EXPECT_EQ(GUID_NULL, guid);
  EXPECT_EQ(S_FALSE, as<ISupportErrorInfo>()->InterfaceSupportsErrorInfo(IID_IOleObject));
}

INSTANTIATE_TEST_SUITE_P(, OleObjectAnswers, eachControl);

}  // namespace
}  // namespace av::test
