// Site, sinks and answers in one call.

#include "com/persistence_fixture.h"
#include "host/container.h"
#include "support/win/event_sink.h"

#include <olectl.h>

namespace av::test {
namespace {

class QuickActivation : public ControlOfEachClass {
 protected:
  static QACONTAINER offer() {
    QACONTAINER container{};
    container.cbSize = sizeof container;
    return container;
  }
  static QACONTROL answers() {
    QACONTROL control;
    FillMemory(&control, sizeof control, 0xCC);
    control.cbSize = sizeof control;
    return control;
  }
};

TEST_P(QuickActivation, TakesSiteAndSinksAndSaysWhatContainersAsk) {
  auto* const site = new avhost::ControlSite(nullptr, {});
  AdviseCounter view;
  EventSink events(DIID__IAudioVisualization4Type1Events), properties(IID_IPropertyNotifySink);
  QACONTAINER container = offer();
  container.pClientSite = site;
  container.pAdviseSink = reinterpret_cast<decltype(container.pAdviseSink)>(static_cast<IAdviseSink*>(&view));
  container.pUnkEventSink = &events;
  container.pPropertyNotifySink = reinterpret_cast<IPropertyNotifySink*>(static_cast<IUnknown*>(&properties));
  QACONTROL control = answers();
  ASSERT_EQ(S_OK, face<IQuickActivate>()->QuickActivate(&container, &control));

  EXPECT_EQ(sizeof control, control.cbSize);
  EXPECT_EQ(131473u, control.dwMiscStatus);
  EXPECT_EQ(DWORD{VIEWSTATUS_OPAQUE}, control.dwViewStatus);
  EXPECT_EQ(0u, control.dwPropNotifyCookie);
  EXPECT_EQ(0u, control.dwPointerActivationPolicy);
  EXPECT_EQ(1u, properties.references);
  const bool hasEvents = GetParam() == 1;
  EXPECT_EQ(hasEvents, control.dwEventCookie != 0);
  EXPECT_EQ(hasEvents ? 2u : 1u, events.references);

  ComPtr<IOleClientSite> sited;
  EXPECT_EQ(S_OK, m_object->GetClientSite(&sited));
  EXPECT_EQ(static_cast<IOleClientSite*>(site), sited.Get());
  sited.Reset();
  setExtent(1234, 567);
  EXPECT_EQ(1, view.viewChanges);

  if (hasEvents) {
    ComPtr<IConnectionPoint> point;
    ASSERT_EQ(S_OK,
              face<IConnectionPointContainer>()->FindConnectionPoint(DIID__IAudioVisualization4Type1Events, &point));
    EXPECT_EQ(S_OK, point->Unadvise(control.dwEventCookie));
  }
  EXPECT_EQ(S_OK, face<IViewObject>()->SetAdvise(DVASPECT_CONTENT, 0, nullptr));
  EXPECT_EQ(1u, view.references);
  EXPECT_EQ(S_OK, m_object->SetClientSite(nullptr));
  EXPECT_EQ(0u, site->Release());
}

TEST_P(QuickActivation, AnEmptyOfferChangesNothingButIsAnswered) {
  QACONTAINER container = offer();
  QACONTROL control = answers();
  ASSERT_EQ(S_OK, face<IQuickActivate>()->QuickActivate(&container, &control));
  EXPECT_EQ(131473u, control.dwMiscStatus);
  EXPECT_EQ(0u, control.dwEventCookie);
  ComPtr<IOleClientSite> site;
  EXPECT_EQ(S_OK, m_object->GetClientSite(&site));
  EXPECT_EQ(nullptr, site.Get());
}

TEST_P(QuickActivation, NullPointersAndShortStructuresAreRefused) {
  QACONTAINER container = offer();
  QACONTROL control = answers();
  const auto quick = face<IQuickActivate>();
  EXPECT_EQ(E_POINTER, quick->QuickActivate(nullptr, &control));
  EXPECT_EQ(E_POINTER, quick->QuickActivate(&container, nullptr));
  container.cbSize = sizeof container - 1;
  EXPECT_EQ(E_INVALIDARG, quick->QuickActivate(&container, &control));
  container.cbSize = sizeof container;
  control.cbSize = 0;
  EXPECT_EQ(E_INVALIDARG, quick->QuickActivate(&container, &control));
  EXPECT_EQ(0xCCCCCCCCu, control.dwMiscStatus) << "nothing may be written then";
}

TEST_P(QuickActivation, TheContentExtentIsTheObjectsExtent) {
  const auto quick = face<IQuickActivate>();
  SIZEL size{1500, 2500};
  EXPECT_EQ(S_OK, quick->SetContentExtent(&size));
  expectExtent(1500, 2500);
  SIZEL read{};
  EXPECT_EQ(S_OK, quick->GetContentExtent(&read));
  EXPECT_EQ(1500, read.cx);
  EXPECT_EQ(2500, read.cy);
  EXPECT_EQ(E_POINTER, quick->SetContentExtent(nullptr));
  EXPECT_EQ(E_POINTER, quick->GetContentExtent(nullptr));
}

TEST_P(QuickActivation, NegativeExtentsAreRefusedAndZeroIsNot) {
  setExtent(100, 200);
  for (SIZEL bad : {SIZEL{-1, 10}, SIZEL{10, -1}}) {
    EXPECT_EQ(E_INVALIDARG, m_object->SetExtent(DVASPECT_CONTENT, &bad));
    EXPECT_EQ(E_INVALIDARG, face<IQuickActivate>()->SetContentExtent(&bad));
  }
  expectExtent(100, 200);
  setExtent(0, 0);
  expectExtent(0, 0);
}

INSTANTIATE_TEST_SUITE_P(Type, QuickActivation, testing::Values(1, 2, 3));

}  // namespace
}  // namespace av::test
