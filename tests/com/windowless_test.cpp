// Controls without a window of their own: only where the site allows it, and never the level meter.

#include "com/persistence_fixture.h"
#include "host/container.h"
#include "host/message_pump.h"
#include "support/win/windowless_site.h"

#include <memory>

namespace av::test {
namespace {

class Windowless : public ControlOfEachClass {
 protected:
  void SetUp() override {
    ControlOfEachClass::SetUp();
    ASSERT_EQ(S_OK, m_frame.open({.title = L"windowless", .clientSizePx = {400, 300}}));
    m_site = std::make_unique<WindowlessSite>(m_frame.window());
    m_inPlace = face<IOleInPlaceObjectWindowless>();
    ASSERT_TRUE(m_inPlace);
    m_site->control = m_inPlace.Get();
    ASSERT_EQ(S_OK, m_object->SetClientSite(m_site.get()));
  }

  void TearDown() override {
    if (m_object) {
      EXPECT_EQ(S_OK, m_object->Close(OLECLOSE_NOSAVE));
      EXPECT_EQ(S_OK, m_object->SetClientSite(nullptr));
    }
    m_inPlace.Reset();
    EXPECT_EQ(1u, m_site->references);
    ControlOfEachClass::TearDown();
    m_frame.close();
  }

  HRESULT doVerb(LONG verb) {
    return m_object->DoVerb(verb, nullptr, m_site.get(), 0, m_frame.window(), &m_site->rect);
  }

  HWND ownWindow() {
    HWND window = nullptr;
    return SUCCEEDED(m_inPlace->GetWindow(&window)) ? window : nullptr;
  }

  avhost::Container m_frame;
  std::unique_ptr<WindowlessSite> m_site;
  ComPtr<IOleInPlaceObjectWindowless> m_inPlace;
};

class AWindowlessControl : public Windowless {};

TEST_P(AWindowlessControl, HasNoWindowAndSaysSo) {
  ASSERT_EQ(S_OK, doVerb(OLEIVERB_SHOW));
  EXPECT_EQ(DWORD{ACTIVATE_WINDOWLESS}, m_site->activationFlags);
  HWND window = m_frame.window();
  EXPECT_EQ(E_FAIL, m_inPlace->GetWindow(&window));
  EXPECT_EQ(nullptr, window);
  EXPECT_EQ(E_POINTER, m_inPlace->GetWindow(nullptr));
  EXPECT_EQ(E_FAIL, face<IOleInPlaceActiveObject>()->GetWindow(&window));
  EXPECT_EQ(nullptr, GetWindow(m_frame.window(), GW_CHILD));
  EXPECT_EQ(S_OK, m_inPlace->InPlaceDeactivate());
  EXPECT_EQ(1, m_site->deactivations);
}

TEST_P(AWindowlessControl, TakesAWindowWhereTheSiteSaysNo) {
  for (const HRESULT no : {S_FALSE, E_FAIL}) {
    m_site->windowlessAnswer = no;
    ASSERT_EQ(S_OK, doVerb(OLEIVERB_SHOW));
    EXPECT_EQ(0u, m_site->activationFlags);
    EXPECT_TRUE(IsWindow(ownWindow()));
    EXPECT_EQ(S_FALSE, [&] {
      LRESULT result = 1;
      return m_inPlace->OnWindowMessage(WM_MOUSEMOVE, 0, 0, &result);
    }()) << "its window has its own messages";
    ASSERT_EQ(S_OK, m_inPlace->InPlaceDeactivate());
  }
  EXPECT_EQ(2, m_site->deactivations);
}

TEST_P(AWindowlessControl, TakesAWindowWhereTheSiteCannotBeToldOtherwise) {
  m_site->hidesExtended = true;
  ASSERT_EQ(S_OK, doVerb(OLEIVERB_SHOW));
  EXPECT_TRUE(IsWindow(ownWindow()));
  ASSERT_EQ(S_OK, m_inPlace->InPlaceDeactivate());
}

TEST_P(AWindowlessControl, IsNotUiActiveIfTheSiteFailsTheNotice) {
  m_site->uiActivationAnswer = E_ACCESSDENIED;
  EXPECT_EQ(E_ACCESSDENIED, doVerb(OLEIVERB_UIACTIVATE));
  EXPECT_FALSE(m_site->focus);
  m_site->uiActivationAnswer = S_OK;
  EXPECT_EQ(S_OK, doVerb(OLEIVERB_UIACTIVATE));
  EXPECT_EQ(2, m_site->uiActivations);
  EXPECT_TRUE(m_site->focus);
}

TEST_P(AWindowlessControl, IsDrawnByTheContainerAtItsPlace) {
  m_site->rect = {10, 20, 110, 80};
  ComPtr<IViewObject> view = face<IViewObject>();
  HDC screen = GetDC(nullptr);
  HDC memory = CreateCompatibleDC(screen);
  HBITMAP bitmap = CreateCompatibleBitmap(screen, 150, 120);
  HGDIOBJ old = SelectObject(memory, bitmap);
  const RECT all{0, 0, 150, 120};
  FillRect(memory, &all, static_cast<HBRUSH>(GetStockObject(WHITE_BRUSH)));
  const auto draw = [&] {
    return view->Draw(DVASPECT_CONTENT, -1, nullptr, nullptr, nullptr, memory, nullptr, nullptr, nullptr, 0);
  };
  EXPECT_EQ(E_INVALIDARG, draw()) << "inactive, it has no place";
  ASSERT_EQ(S_OK, doVerb(OLEIVERB_SHOW));
  EXPECT_EQ(S_OK, draw());
  EXPECT_EQ(RGB(255, 255, 255), GetPixel(memory, 9, 40));
  EXPECT_EQ(RGB(255, 255, 255), GetPixel(memory, 40, 19));
  EXPECT_EQ(RGB(255, 255, 255), GetPixel(memory, 110, 40));
  EXPECT_EQ(RGB(255, 255, 255), GetPixel(memory, 40, 80));
  EXPECT_EQ(RGB(0, 0, 0), GetPixel(memory, 12, 22));
  const RECT moved{20, 30, 120, 90};
  ASSERT_EQ(S_OK, m_inPlace->SetObjectRects(&moved, &moved));
  FillRect(memory, &all, static_cast<HBRUSH>(GetStockObject(WHITE_BRUSH)));
  EXPECT_EQ(S_OK, draw());
  EXPECT_EQ(RGB(255, 255, 255), GetPixel(memory, 12, 32));
  EXPECT_EQ(RGB(0, 0, 0), GetPixel(memory, 22, 32));
  SelectObject(memory, old);
  DeleteObject(bitmap);
  DeleteDC(memory);
  ReleaseDC(nullptr, screen);
}

TEST_P(AWindowlessControl, GetsTheFocusThroughItsSite) {
  ASSERT_EQ(S_OK, doVerb(OLEIVERB_UIACTIVATE));
  EXPECT_TRUE(m_site->focus);
  EXPECT_EQ(1, m_site->uiActivations);
  EXPECT_EQ(0, m_site->captures);
}

TEST_P(AWindowlessControl, APressActivatesItsUserInterface) {
  ASSERT_EQ(S_OK, doVerb(OLEIVERB_SHOW));
  LRESULT result = 1;
  m_inPlace->OnWindowMessage(WM_MOUSEMOVE, 0, MAKELPARAM(15, 25), &result);
  EXPECT_EQ(0, m_site->uiActivations);
  m_inPlace->OnWindowMessage(WM_LBUTTONDOWN, MK_LBUTTON, MAKELPARAM(15, 25), &result);
  EXPECT_EQ(1, m_site->uiActivations);
}

TEST_P(AWindowlessControl, LeavesToTheContainerWhatItDoesNotHandle) {
  LRESULT result = 1;
  EXPECT_EQ(S_FALSE, m_inPlace->OnWindowMessage(WM_SETFOCUS, 0, 0, &result)) << "inactive";
  ASSERT_EQ(S_OK, doVerb(OLEIVERB_SHOW));
  EXPECT_EQ(S_OK, m_inPlace->OnWindowMessage(WM_SETFOCUS, 0, 0, &result));
  EXPECT_EQ(S_OK, m_inPlace->OnWindowMessage(WM_KILLFOCUS, 0, 0, &result));
  EXPECT_EQ(S_FALSE, m_inPlace->OnWindowMessage(WM_KEYDOWN, VK_F1, 0, &result));
  EXPECT_EQ(0, result);
  EXPECT_EQ(E_POINTER, m_inPlace->OnWindowMessage(WM_KEYDOWN, VK_F1, 0, nullptr));
}

TEST_P(AWindowlessControl, TakesNoDrops) {
  auto* target = reinterpret_cast<IDropTarget*>(this);
  EXPECT_EQ(E_NOTIMPL, m_inPlace->GetDropTarget(&target));
  EXPECT_EQ(nullptr, target);
  EXPECT_EQ(E_POINTER, m_inPlace->GetDropTarget(nullptr));
}

TEST_P(AWindowlessControl, IsNotActiveIfTheSiteRefusesTheNotice) {
  m_site->activationAnswer = E_ACCESSDENIED;
  EXPECT_EQ(E_ACCESSDENIED, doVerb(OLEIVERB_SHOW));
  const RECT rect{};
  EXPECT_EQ(E_UNEXPECTED, m_inPlace->SetObjectRects(&rect, &rect));
  EXPECT_EQ(0, m_site->deactivations);
  m_site->activationAnswer = S_OK;
  EXPECT_EQ(S_OK, doVerb(OLEIVERB_SHOW));
}

TEST_P(AWindowlessControl, ARefusedUserInterfaceIsNotActive) {
  ASSERT_EQ(S_OK, doVerb(OLEIVERB_SHOW));
  m_site->uiAnswer = S_FALSE;
  EXPECT_EQ(OLEOBJ_S_CANNOT_DOVERB_NOW, doVerb(OLEIVERB_UIACTIVATE));
  EXPECT_EQ(0, m_site->uiActivations);
  EXPECT_FALSE(m_site->focus);
  m_site->uiAnswer = S_OK;
  EXPECT_EQ(S_OK, doVerb(OLEIVERB_UIACTIVATE));
  EXPECT_TRUE(m_site->focus);
}

TEST_P(AWindowlessControl, ASiteThatCannotBeAskedDoesNotDenyTheUserInterface) {
  m_site->uiAnswer = E_NOTIMPL;
  EXPECT_EQ(S_OK, doVerb(OLEIVERB_UIACTIVATE));
  EXPECT_EQ(1, m_site->uiActivations);
  EXPECT_TRUE(m_site->focus);
}

TEST_P(AWindowlessControl, AnotherSiteEndsItsActivity) {
  ASSERT_EQ(S_OK, doVerb(OLEIVERB_SHOW));
  ASSERT_EQ(S_OK, m_object->SetClientSite(m_site.get()));
  EXPECT_EQ(0, m_site->deactivations) << "this is the site it has";
  WindowlessSite other(m_frame.window());
  ASSERT_EQ(S_OK, m_object->SetClientSite(&other));
  EXPECT_EQ(1, m_site->deactivations);
  EXPECT_EQ(1u, m_site->references);
  ASSERT_EQ(S_OK, doVerb(OLEIVERB_SHOW));
  EXPECT_EQ(DWORD{ACTIVATE_WINDOWLESS}, other.activationFlags);
  ASSERT_EQ(S_OK, m_object->SetClientSite(nullptr));
  EXPECT_EQ(1, other.deactivations);
  EXPECT_EQ(1u, other.references);
}

TEST_P(AWindowlessControl, MayBeReleasedWhileActive) {
  ASSERT_EQ(S_OK, doVerb(OLEIVERB_UIACTIVATE));
  m_site->control = nullptr;
  m_inPlace.Reset();
  EXPECT_EQ(0u, m_object.Reset());
  avhost::pumpMessages(50);
}

INSTANTIATE_TEST_SUITE_P(Type, AWindowlessControl, testing::Values(1, 3));

/// The same sites, which this time say no.
class AWindowedControl : public Windowless {
 protected:
  void SetUp() override {
    Windowless::SetUp();
    m_site->windowlessAnswer = S_FALSE;
  }
};

TEST_P(AWindowedControl, IsClippedFromItsActivationOn) {
  m_site->rect = {10, 20, 210, 140};
  m_site->visible = {60, 40, 160, 100};
  ASSERT_EQ(S_OK, doVerb(OLEIVERB_SHOW));
  const HRGN region = CreateRectRgn(0, 0, 0, 0);
  EXPECT_EQ(SIMPLEREGION, GetWindowRgn(ownWindow(), region));
  RECT box{};
  GetRgnBox(region, &box);
  const RECT expected{50, 20, 150, 80};
  EXPECT_TRUE(EqualRect(&expected, &box));
  // The whole of it again, as when a container scrolls.
  ASSERT_EQ(S_OK, m_inPlace->SetObjectRects(&m_site->rect, &m_site->rect));
  EXPECT_EQ(ERROR, GetWindowRgn(ownWindow(), region));
  DeleteObject(region);
}

TEST_P(AWindowedControl, IsNotDrawnAnewWhereTheContainerShowsItsPicture) {
  for (const BOOL shown : {TRUE, FALSE}) {
    m_site->showsPicture = shown;
    ASSERT_EQ(S_OK, doVerb(OLEIVERB_SHOW));
    EXPECT_EQ(!shown, GetUpdateRect(ownWindow(), nullptr, FALSE));
    ASSERT_EQ(S_OK, m_inPlace->InPlaceDeactivate());
  }
}

TEST_P(AWindowedControl, AsksOnceForMoreRoomWhenItIsActivated) {
  m_site->rect = {10, 20, 70, 60};
  ASSERT_EQ(S_OK, doVerb(OLEIVERB_SHOW));
  EXPECT_EQ(GetParam() == 1 ? 1 : 0, m_site->positionRequests);
}

INSTANTIATE_TEST_SUITE_P(Type, AWindowedControl, testing::Values(1, 2, 3));

class TheLevelMeter : public Windowless {};

TEST_P(TheLevelMeter, AlwaysHasAWindow) {
  ASSERT_EQ(S_OK, doVerb(OLEIVERB_SHOW));
  EXPECT_EQ(0u, m_site->activationFlags);
  EXPECT_EQ(m_frame.window(), GetParent(ownWindow()));
}

INSTANTIATE_TEST_SUITE_P(Type, TheLevelMeter, testing::Values(2));

class TheView : public Windowless {};

TEST_P(TheView, AsksTheContainerToRedrawItWhenAPropertyIsPut) {
  ASSERT_EQ(S_OK, doVerb(OLEIVERB_SHOW));
  const int before = m_site->invalidations;
  ASSERT_EQ(S_OK, face<IAudioVisualization4Type1>()->put_BackColor(RGB(1, 2, 3)));
  EXPECT_EQ(before + 1, m_site->invalidations);
}

TEST_P(TheView, GrowsToItsSmallestSizeWithoutAWindowToo) {
  ASSERT_EQ(S_OK, doVerb(OLEIVERB_SHOW));
  EXPECT_EQ(0, m_site->positionRequests);
  const RECT small{10, 20, 70, 60};
  ASSERT_EQ(S_OK, m_inPlace->SetObjectRects(&small, &small));
  EXPECT_EQ(1, m_site->positionRequests);
  const RECT grown{10, 20, 90, 70};
  EXPECT_TRUE(EqualRect(&grown, &m_site->rect));
}

TEST_P(TheView, AcceptsASiteThatDoesNotLetItGrow) {
  m_site->grantsPositions = false;
  m_site->rect = {0, 0, 60, 40};
  ASSERT_EQ(S_OK, doVerb(OLEIVERB_SHOW));
  EXPECT_EQ(1, m_site->positionRequests);
  const RECT again{5, 5, 65, 45};  // moved, not resized
  ASSERT_EQ(S_OK, m_inPlace->SetObjectRects(&again, &again));
  EXPECT_EQ(1, m_site->positionRequests);
}

INSTANTIATE_TEST_SUITE_P(Type, TheView, testing::Values(1));

}  // namespace
}  // namespace av::test
