// The container against a recording stand-in for a control: the order of calls, rectangles, and reference counts.

#include "host/container.h"
#include "host/message_pump.h"

#include <gmock/gmock.h>

#include <string>
#include <vector>

namespace {

using Microsoft::WRL::ComPtr;
using testing::ElementsAre;

/// An OLE control that draws nothing and writes down what its container does to it.
class RecordingControl final : public IOleObject,
                               public IOleInPlaceObject,
                               public IViewObject,
                               public IPersistStreamInit {
 public:
  std::vector<std::string> calls;
  DWORD miscStatus = OLEMISC_SETCLIENTSITEFIRST;
  HRESULT verbResult = S_OK;
  HRESULT initResult = S_OK;
  SIZEL extent = {};
  RECT positionPx = {};
  ULONG references = 1;  // the test's own; the object lives on the test's stack
  ComPtr<IOleClientSite> site;
  ComPtr<IOleInPlaceSite> inPlaceSite;
  HWND window = nullptr;

  STDMETHODIMP QueryInterface(REFIID iid, void** object) override {
    *object = nullptr;
    if (iid == IID_IUnknown || iid == IID_IOleObject) *object = static_cast<IOleObject*>(this);
    else if (iid == IID_IOleInPlaceObject || iid == IID_IOleWindow) *object = static_cast<IOleInPlaceObject*>(this);
    else if (iid == IID_IViewObject) *object = static_cast<IViewObject*>(this);
    else if (iid == IID_IPersistStreamInit || iid == IID_IPersist) *object = static_cast<IPersistStreamInit*>(this);
    if (!*object) return E_NOINTERFACE;
    AddRef();
    return S_OK;
  }
  STDMETHODIMP_(ULONG) AddRef() override { return ++references; }
  STDMETHODIMP_(ULONG) Release() override { return --references; }

  // IOleObject
  STDMETHODIMP SetClientSite(IOleClientSite* clientSite) override {
    calls.push_back(clientSite ? "SetClientSite" : "SetClientSite null");
    site = clientSite;
    return S_OK;
  }
  STDMETHODIMP GetClientSite(IOleClientSite**) override { return unexpected("GetClientSite"); }
  STDMETHODIMP SetHostNames(LPCOLESTR, LPCOLESTR) override { return unexpected("SetHostNames"); }
  STDMETHODIMP Close(DWORD saveOption) override {
    calls.push_back(saveOption == OLECLOSE_NOSAVE ? "Close" : "Close and save");
    return S_OK;
  }
  STDMETHODIMP SetMoniker(DWORD, IMoniker*) override { return unexpected("SetMoniker"); }
  STDMETHODIMP GetMoniker(DWORD, DWORD, IMoniker**) override { return unexpected("GetMoniker"); }
  STDMETHODIMP InitFromData(IDataObject*, BOOL, DWORD) override { return unexpected("InitFromData"); }
  STDMETHODIMP GetClipboardData(DWORD, IDataObject**) override { return unexpected("GetClipboardData"); }
  STDMETHODIMP DoVerb(LONG verb, MSG*, IOleClientSite* clientSite, LONG, HWND parent, const RECT* position) override {
    calls.push_back("DoVerb " + std::to_string(verb));
    if (FAILED(verbResult)) return verbResult;
    positionPx = *position;
    clientSite->QueryInterface(IID_PPV_ARGS(inPlaceSite.ReleaseAndGetAddressOf()));
    inPlaceSite->CanInPlaceActivate();
    inPlaceSite->OnInPlaceActivate();
    ComPtr<IOleInPlaceFrame> frame;
    ComPtr<IOleInPlaceUIWindow> document;
    RECT rect, clip;
    OLEINPLACEFRAMEINFO info = {};
    info.cb = sizeof info;
    inPlaceSite->GetWindowContext(frame.GetAddressOf(), document.GetAddressOf(), &rect, &clip, &info);
    window = CreateWindowExW(0, L"STATIC", L"", WS_CHILD | WS_VISIBLE, rect.left, rect.top, rect.right - rect.left,
                             rect.bottom - rect.top, parent, nullptr, nullptr, nullptr);
    if (verb == OLEIVERB_UIACTIVATE) {
      inPlaceSite->OnUIActivate();
      site->ShowObject();
    }
    return S_OK;
  }
  STDMETHODIMP EnumVerbs(IEnumOLEVERB**) override { return unexpected("EnumVerbs"); }
  STDMETHODIMP Update() override { return unexpected("Update"); }
  STDMETHODIMP IsUpToDate() override { return unexpected("IsUpToDate"); }
  STDMETHODIMP GetUserClassID(CLSID*) override { return unexpected("GetUserClassID"); }
  STDMETHODIMP GetUserType(DWORD, LPOLESTR*) override { return unexpected("GetUserType"); }
  STDMETHODIMP SetExtent(DWORD, SIZEL* size) override {
    calls.push_back("SetExtent");
    extent = *size;
    return S_OK;
  }
  STDMETHODIMP GetExtent(DWORD, SIZEL*) override { return unexpected("GetExtent"); }
  STDMETHODIMP Advise(IAdviseSink*, DWORD* cookie) override {
    calls.push_back("Advise");
    *cookie = 7;
    return S_OK;
  }
  STDMETHODIMP Unadvise(DWORD cookie) override {
    calls.push_back("Unadvise " + std::to_string(cookie));
    return S_OK;
  }
  STDMETHODIMP EnumAdvise(IEnumSTATDATA**) override { return unexpected("EnumAdvise"); }
  STDMETHODIMP GetMiscStatus(DWORD, DWORD* status) override {
    *status = miscStatus;
    return S_OK;
  }
  STDMETHODIMP SetColorScheme(LOGPALETTE*) override { return unexpected("SetColorScheme"); }

  // IOleInPlaceObject
  STDMETHODIMP GetWindow(HWND* result) override {
    *result = window;
    return window ? S_OK : E_FAIL;
  }
  STDMETHODIMP ContextSensitiveHelp(BOOL) override { return unexpected("ContextSensitiveHelp"); }
  STDMETHODIMP InPlaceDeactivate() override {
    calls.push_back("InPlaceDeactivate");
    DestroyWindow(window);
    window = nullptr;
    inPlaceSite->OnInPlaceDeactivate();
    inPlaceSite.Reset();
    return S_OK;
  }
  STDMETHODIMP UIDeactivate() override {
    calls.push_back("UIDeactivate");
    inPlaceSite->OnUIDeactivate(FALSE);
    return S_OK;
  }
  STDMETHODIMP SetObjectRects(const RECT* position, const RECT*) override {
    calls.push_back("SetObjectRects");
    positionPx = *position;
    return S_OK;
  }
  STDMETHODIMP ReactivateAndUndo() override { return unexpected("ReactivateAndUndo"); }

  // IViewObject
  STDMETHODIMP Draw(DWORD, LONG, void*, DVTARGETDEVICE*, HDC, HDC, const RECTL*, const RECTL*,
                    BOOL(CALLBACK*)(ULONG_PTR), ULONG_PTR) override {
    calls.push_back("Draw");
    return S_OK;
  }
  STDMETHODIMP GetColorSet(DWORD, LONG, void*, DVTARGETDEVICE*, HDC, LOGPALETTE**) override {
    return unexpected("GetColorSet");
  }
  STDMETHODIMP Freeze(DWORD, LONG, void*, DWORD*) override { return unexpected("Freeze"); }
  STDMETHODIMP Unfreeze(DWORD) override { return unexpected("Unfreeze"); }
  STDMETHODIMP SetAdvise(DWORD, DWORD, IAdviseSink* sink) override {
    calls.push_back(sink ? "SetAdvise" : "SetAdvise null");
    return S_OK;
  }
  STDMETHODIMP GetAdvise(DWORD*, DWORD*, IAdviseSink**) override { return unexpected("GetAdvise"); }

  // IPersistStreamInit
  STDMETHODIMP GetClassID(CLSID*) override { return unexpected("GetClassID"); }
  STDMETHODIMP IsDirty() override { return unexpected("IsDirty"); }
  STDMETHODIMP Load(IStream*) override { return unexpected("Load"); }
  STDMETHODIMP Save(IStream*, BOOL) override { return unexpected("Save"); }
  STDMETHODIMP GetSizeMax(ULARGE_INTEGER*) override { return unexpected("GetSizeMax"); }
  STDMETHODIMP InitNew() override {
    calls.push_back("InitNew");
    return initResult;
  }

 private:
  HRESULT unexpected(const char* method) {
    ADD_FAILURE() << "unexpected call of " << method;
    return E_NOTIMPL;
  }
};

IUnknown* unknownOf(RecordingControl& control) { return static_cast<IOleObject*>(&control); }

class ContainerTest : public testing::Test {
 protected:
  void SetUp() override { ASSERT_EQ(S_OK, container.open({.clientSizePx = {320, 200}})); }

  RecordingControl control;
  avhost::Container container;
};

TEST_F(ContainerTest, OpensAWindowOfTheAskedClientSize) {
  RECT client;
  GetClientRect(container.window(), &client);
  EXPECT_EQ(320, client.right);
  EXPECT_EQ(200, client.bottom);
  EXPECT_EQ(E_UNEXPECTED, container.open({}));
}

TEST_F(ContainerTest, MayBeLargerThanTheScreen) {
  avhost::Container large;
  const SIZE size = {GetSystemMetrics(SM_CXSCREEN) + 200, GetSystemMetrics(SM_CYSCREEN) + 100};
  ASSERT_EQ(S_OK, large.open({.clientSizePx = size}));
  RECT client;
  GetClientRect(large.window(), &client);
  EXPECT_EQ(size.cx, client.right);
  EXPECT_EQ(size.cy, client.bottom);
}

TEST_F(ContainerTest, MayBeSmallerThanATitleBar) {
  ASSERT_EQ(S_OK, container.resize({60, 40}));
  RECT client;
  GetClientRect(container.window(), &client);
  EXPECT_EQ(60, client.right);
  EXPECT_EQ(40, client.bottom);
}

TEST_F(ContainerTest, SitesFirstWhenTheControlAsksForIt) {
  ASSERT_EQ(S_OK, container.host(unknownOf(control)));
  EXPECT_THAT(control.calls, ElementsAre("SetClientSite", "InitNew", "Advise", "SetAdvise", "SetExtent", "DoVerb -5"));
}

TEST_F(ContainerTest, SitesAfterInitialisationOtherwise) {
  control.miscStatus = 0;
  ASSERT_EQ(S_OK, container.host(unknownOf(control)));
  EXPECT_THAT(control.calls, ElementsAre("InitNew", "SetClientSite", "Advise", "SetAdvise", "SetExtent", "DoVerb -5"));
}

TEST(HimetricFromPixels, IsRoundedToTheNearestHundredthOfAMillimetre) {
  EXPECT_EQ(0, avhost::himetricFromPixels(0, 96));
  EXPECT_EQ(26, avhost::himetricFromPixels(1, 96));     // 26.46
  EXPECT_EQ(2540, avhost::himetricFromPixels(96, 96));  // an inch
  EXPECT_EQ(8467, avhost::himetricFromPixels(320, 96));
  EXPECT_EQ(7056, avhost::himetricFromPixels(400, 144));  // 7055.6
  EXPECT_EQ(4233, avhost::himetricFromPixels(320, 192));
}

TEST_F(ContainerTest, GivesTheControlTheClientAreaInPixelsAndHimetric) {
  ASSERT_EQ(S_OK, container.host(unknownOf(control)));
  EXPECT_EQ(320, control.positionPx.right);
  EXPECT_EQ(200, control.positionPx.bottom);
  const SIZE dpi = avhost::screenDpi();
  EXPECT_EQ(MulDiv(320, 2540, dpi.cx), control.extent.cx);
  EXPECT_EQ(MulDiv(200, 2540, dpi.cy), control.extent.cy);
  EXPECT_EQ(control.window, container.controlWindow());
  EXPECT_EQ(container.window(), GetParent(control.window));
}

TEST_F(ContainerTest, ResizingTheWindowMovesTheControl) {
  ASSERT_EQ(S_OK, container.host(unknownOf(control)));
  control.calls.clear();
  ASSERT_EQ(S_OK, container.resize({200, 100}));
  EXPECT_THAT(control.calls, ElementsAre("SetExtent", "SetObjectRects"));
  EXPECT_EQ(200, control.positionPx.right);
  EXPECT_EQ(100, control.positionPx.bottom);
}

TEST_F(ContainerTest, GrantsTheRectangleThatTheControlWishes) {
  ASSERT_EQ(S_OK, container.host(unknownOf(control)));
  const RECT wish = {0, 0, 80, 50};
  ASSERT_EQ(S_OK, control.inPlaceSite->OnPosRectChange(&wish));
  EXPECT_EQ("SetObjectRects", control.calls.back());
  EXPECT_EQ(80, control.positionPx.right);
  EXPECT_EQ(50, control.positionPx.bottom);
}

TEST_F(ContainerTest, TakesAnActiveControlDownInOrderAndGivesEveryReferenceBack) {
  ASSERT_EQ(S_OK, container.host(unknownOf(control), OLEIVERB_UIACTIVATE));
  EXPECT_TRUE(container.site()->isInPlaceActive());
  EXPECT_TRUE(container.site()->isUiActive());
  control.calls.clear();
  EXPECT_EQ(0u, container.releaseControl());
  EXPECT_THAT(control.calls, ElementsAre("UIDeactivate", "InPlaceDeactivate", "SetAdvise null", "Unadvise 7", "Close",
                                         "SetClientSite null"));
  EXPECT_EQ(1u, control.references);
  EXPECT_EQ(nullptr, container.site());
}

TEST_F(ContainerTest, ReportsASiteReferenceThatTheControlKept) {
  ASSERT_EQ(S_OK, container.host(unknownOf(control)));
  const ComPtr<IOleClientSite> kept = control.site;
  EXPECT_EQ(1u, container.releaseControl());
  HWND window = nullptr;
  ComPtr<IOleInPlaceSite> site;
  ASSERT_EQ(S_OK, kept.As(&site));
  EXPECT_EQ(E_FAIL, site->GetWindow(&window)) << "the site is cut loose";
}

TEST_F(ContainerTest, UndoesAHostingThatFails) {
  control.verbResult = E_FAIL;
  EXPECT_EQ(E_FAIL, container.host(unknownOf(control)));
  EXPECT_EQ(1u, control.references);
  EXPECT_EQ(nullptr, container.site());
  control.verbResult = S_OK;
  EXPECT_EQ(S_OK, container.host(unknownOf(control))) << "the container can be used again";
}

TEST_F(ContainerTest, ShowsAControlInAWindowOfItsOwnInOneCall) {
  avhost::Container another;
  ASSERT_EQ(S_OK, another.show(unknownOf(control), {.clientSizePx = {100, 50}}));
  EXPECT_THAT(control.calls, ElementsAre("SetClientSite", "InitNew", "Advise", "SetAdvise", "SetExtent", "DoVerb -5"));
  EXPECT_EQ(100, control.positionPx.right);
  EXPECT_EQ(E_UNEXPECTED, another.show(unknownOf(control), {}));
  EXPECT_NE(nullptr, another.window()) << "the first control stays";
}

TEST_F(ContainerTest, LeavesNoWindowOfAControlThatCannotBeShown) {
  control.verbResult = E_FAIL;
  avhost::Container another;
  EXPECT_EQ(E_FAIL, another.show(unknownOf(control), {}));
  EXPECT_EQ(nullptr, another.window());
  EXPECT_EQ(E_POINTER, another.show(nullptr, {}));
  EXPECT_EQ(nullptr, another.window());
}

TEST_F(ContainerTest, StopsWhenInitialisationFails) {
  control.initResult = E_OUTOFMEMORY;
  EXPECT_EQ(E_OUTOFMEMORY, container.host(unknownOf(control)));
  EXPECT_EQ(1u, control.references);
}

TEST_F(ContainerTest, DestroyingTheWindowReleasesTheControlBeforeItsWindowGoes) {
  ASSERT_EQ(S_OK, container.host(unknownOf(control)));
  const HWND controlWindow = control.window;
  control.calls.clear();
  DestroyWindow(container.window());
  EXPECT_EQ("InPlaceDeactivate", control.calls.front());
  EXPECT_FALSE(IsWindow(controlWindow));
  EXPECT_EQ(1u, control.references);
  EXPECT_EQ(nullptr, container.window());
}

TEST_F(ContainerTest, DrawsAnInactiveControlOnAViewChange) {
  ASSERT_EQ(S_OK, container.host(unknownOf(control)));
  ComPtr<IAdviseSink> sink;
  ASSERT_EQ(S_OK, control.site.As(&sink));
  control.InPlaceDeactivate();
  avhost::pumpMessages(0);
  control.calls.clear();
  sink->OnViewChange(DVASPECT_CONTENT, -1);
  UpdateWindow(container.window());
  EXPECT_THAT(control.calls, ElementsAre("Draw"));
  EXPECT_EQ(1u, container.site()->viewChanges());
}

TEST_F(ContainerTest, AnswersAmbientProperties) {
  ASSERT_EQ(S_OK, container.host(unknownOf(control)));
  ComPtr<IDispatch> ambients;
  ASSERT_EQ(S_OK, control.site.As(&ambients));
  DISPPARAMS none = {};
  VARIANT value;
  ASSERT_EQ(S_OK, ambients->Invoke(DISPID_AMBIENT_USERMODE, IID_NULL, 0, DISPATCH_PROPERTYGET, &none, &value, nullptr,
                                   nullptr));
  EXPECT_EQ(VT_BOOL, V_VT(&value));
  EXPECT_EQ(VARIANT_TRUE, V_BOOL(&value));
  EXPECT_EQ(DISP_E_MEMBERNOTFOUND, ambients->Invoke(DISPID_AMBIENT_SCALEUNITS, IID_NULL, 0, DISPATCH_PROPERTYGET, &none,
                                                    &value, nullptr, nullptr));
}

TEST_F(ContainerTest, OffersNoWindowlessSite) {
  ASSERT_EQ(S_OK, container.host(unknownOf(control)));
  ComPtr<IUnknown> windowless;
  EXPECT_EQ(E_NOINTERFACE, control.site->QueryInterface(IID_IOleInPlaceSiteWindowless,
                                                        reinterpret_cast<void**>(windowless.GetAddressOf())));
}

TEST(MessagePump, EndsWhenThePredicateHolds) {
  int asked = 0;
  EXPECT_TRUE(avhost::pumpUntil(5000, [&asked] { return ++asked == 3; }));
  EXPECT_EQ(3, asked);
}

TEST(MessagePump, TimesOut) {
  EXPECT_FALSE(avhost::pumpUntil(20, [] { return false; }));
}

TEST(MessagePump, LeavesTheQuitMessageForTheHost) {
  PostQuitMessage(3);
  avhost::pumpMessages(1000);
  MSG message;
  ASSERT_TRUE(PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE));
  EXPECT_EQ(static_cast<UINT>(WM_QUIT), message.message);
  EXPECT_EQ(3u, message.wParam);
}

}  // namespace
