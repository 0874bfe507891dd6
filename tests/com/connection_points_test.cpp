// Which events a control offers, and who may connect to them.

#include "com/persistence_fixture.h"
#include "support/win/event_sink.h"

#include <olectl.h>

namespace av::test {
namespace {

class ConnectionPoints : public ControlOfEachClass {
 protected:
  ComPtr<IConnectionPointContainer> container() { return face<IConnectionPointContainer>(); }
};

TEST_P(ConnectionPoints, PropertyChangesAreNotAnnounced) {
  ComPtr<IConnectionPoint> point;
  EXPECT_EQ(CONNECT_E_NOCONNECTION, container()->FindConnectionPoint(IID_IPropertyNotifySink, &point));
  EXPECT_EQ(nullptr, point.Get());
}

TEST_P(ConnectionPoints, NullPointersAreRefused) {
  EXPECT_EQ(E_POINTER, container()->FindConnectionPoint(DIID__IAudioVisualization4Type1Events, nullptr));
  EXPECT_EQ(E_POINTER, container()->EnumConnectionPoints(nullptr));
}

INSTANTIATE_TEST_SUITE_P(Type, ConnectionPoints, testing::Values(1, 2, 3));

class NoEvents : public ConnectionPoints {};

TEST_P(NoEvents, ThereIsNothingToEnumerateOrFind) {
  ComPtr<IEnumConnectionPoints> points;
  ASSERT_EQ(S_OK, container()->EnumConnectionPoints(&points));
  IConnectionPoint* point = nullptr;
  ULONG fetched = 7;
  EXPECT_EQ(S_FALSE, points->Next(1, &point, &fetched));
  EXPECT_EQ(0u, fetched);
  EXPECT_EQ(CONNECT_E_NOCONNECTION, container()->FindConnectionPoint(DIID__IAudioVisualization4Type1Events, &point));
  EXPECT_EQ(CONNECT_E_NOCONNECTION, container()->FindConnectionPoint(GUID_NULL, &point));
  EXPECT_EQ(CONNECT_E_NOCONNECTION, container()->FindConnectionPoint(IID_IDispatch, &point));
}

INSTANTIATE_TEST_SUITE_P(Type, NoEvents, testing::Values(2, 3));

class Events : public ConnectionPoints {
 protected:
  void SetUp() override {
    ConnectionPoints::SetUp();
    ASSERT_EQ(S_OK, container()->FindConnectionPoint(DIID__IAudioVisualization4Type1Events, &m_point));
  }
  void TearDown() override {
    m_point.Reset();
    ConnectionPoints::TearDown();
  }
  ComPtr<IConnectionPoint> m_point;
};

TEST_P(Events, ThePointIsAnObjectOfItsOwnThatKnowsItsContainer) {
  IID iid{};
  EXPECT_EQ(S_OK, m_point->GetConnectionInterface(&iid));
  EXPECT_EQ(DIID__IAudioVisualization4Type1Events, iid);
  EXPECT_EQ(E_POINTER, m_point->GetConnectionInterface(nullptr));
  ComPtr<IConnectionPointContainer> back;
  EXPECT_EQ(S_OK, m_point->GetConnectionPointContainer(&back));
  EXPECT_EQ(container().Get(), back.Get());
  EXPECT_EQ(E_POINTER, m_point->GetConnectionPointContainer(nullptr));
  ComPtr<IUnknown> own, controls;
  ASSERT_EQ(S_OK, m_point.As(&own));
  ASSERT_EQ(S_OK, m_object.As(&controls));
  EXPECT_NE(own.Get(), controls.Get());
  ComPtr<IOleObject> none;
  EXPECT_EQ(E_NOINTERFACE, m_point.As(&none));
  ComPtr<IConnectionPoint> noFace;
  EXPECT_EQ(E_NOINTERFACE, m_object.As(&noFace));
}

TEST_P(Events, TheEventInterfaceIsTheOnlyPoint) {
  ComPtr<IEnumConnectionPoints> points;
  ASSERT_EQ(S_OK, container()->EnumConnectionPoints(&points));
  ComPtr<IConnectionPoint> first, second;
  ULONG fetched = 0;
  EXPECT_EQ(S_OK, points->Next(1, &first, &fetched));
  EXPECT_EQ(1u, fetched);
  EXPECT_EQ(m_point.Get(), first.Get());
  EXPECT_EQ(S_FALSE, points->Next(1, &second, nullptr));
  EXPECT_EQ(S_OK, points->Reset());
  EXPECT_EQ(S_OK, points->Skip(1));
  EXPECT_EQ(S_FALSE, points->Skip(1));
}

TEST_P(Events, TakesTypedAndPlainDispatchSinksAndNoOthers) {
  EventSink typed(DIID__IAudioVisualization4Type1Events), plain(GUID_NULL);
  plain.hidesEventInterface = true;
  DWORD first = 0, second = 0, third = 99;
  EXPECT_EQ(S_OK, m_point->Advise(&typed, &first));
  EXPECT_EQ(S_OK, m_point->Advise(&plain, &second));
  EXPECT_NE(0u, first);
  EXPECT_NE(0u, second);
  EXPECT_NE(first, second);
  EventSink deaf(GUID_NULL);
  deaf.hidesEventInterface = deaf.hidesDispatch = true;
  EXPECT_EQ(CONNECT_E_CANNOTCONNECT, m_point->Advise(&deaf, &third));
  EXPECT_EQ(0u, third);
  EXPECT_EQ(E_POINTER, m_point->Advise(nullptr, &third));
  EXPECT_EQ(E_POINTER, m_point->Advise(&typed, nullptr));
  EXPECT_EQ(S_OK, m_point->Unadvise(first));
  EXPECT_EQ(CONNECT_E_NOCONNECTION, m_point->Unadvise(first));
  EXPECT_EQ(CONNECT_E_NOCONNECTION, m_point->Unadvise(0));
  EXPECT_EQ(1u, typed.references);
  EXPECT_EQ(2u, plain.references);
  EXPECT_EQ(S_OK, m_point->Unadvise(second));
  EXPECT_EQ(1u, plain.references);
  EXPECT_EQ(1u, deaf.references);
}

TEST_P(Events, EnumeratesConnectionsInTheirOrder) {
  EventSink sinks[3] = {EventSink(GUID_NULL), EventSink(GUID_NULL), EventSink(GUID_NULL)};
  DWORD cookies[3] = {};
  for (int i = 0; i < 3; ++i) ASSERT_EQ(S_OK, m_point->Advise(&sinks[i], &cookies[i]));
  ComPtr<IEnumConnections> connections;
  ASSERT_EQ(S_OK, m_point->EnumConnections(&connections));
  EXPECT_EQ(E_POINTER, m_point->EnumConnections(nullptr));
  CONNECTDATA data[4] = {};
  ULONG fetched = 0;
  EXPECT_EQ(E_POINTER, connections->Next(4, data, nullptr));
  EXPECT_EQ(S_FALSE, connections->Next(4, data, &fetched));
  ASSERT_EQ(3u, fetched);
  for (int i = 0; i < 3; ++i) {
    EXPECT_EQ(cookies[i], data[i].dwCookie);
    ComPtr<IUnknown> identity;
    data[i].pUnk->QueryInterface(IID_PPV_ARGS(&identity));
    EXPECT_EQ(static_cast<IUnknown*>(&sinks[i]), identity.Get());
    data[i].pUnk->Release();
  }
  ASSERT_EQ(S_OK, connections->Reset());
  ASSERT_EQ(S_OK, connections->Skip(2));
  ComPtr<IEnumConnections> clone;
  ASSERT_EQ(S_OK, connections->Clone(&clone));
  EXPECT_EQ(E_POINTER, connections->Clone(nullptr));
  EXPECT_EQ(S_OK, clone->Next(1, data, nullptr));
  EXPECT_EQ(cookies[2], data[0].dwCookie);
  data[0].pUnk->Release();
  connections.Reset();
  clone.Reset();
  for (const DWORD cookie : cookies) EXPECT_EQ(S_OK, m_point->Unadvise(cookie));
  for (const EventSink& sink : sinks) EXPECT_EQ(1u, sink.references);
}

TEST_P(Events, SinksThatNobodyDisconnectedAreReleasedWithTheControl) {
  EventSink sink(DIID__IAudioVisualization4Type1Events);
  DWORD cookie = 0;
  ASSERT_EQ(S_OK, m_point->Advise(&sink, &cookie));
  EXPECT_EQ(2u, sink.references);
  m_point.Reset();
  EXPECT_EQ(0u, m_object.Reset());
  EXPECT_EQ(1u, sink.references);
}

TEST_P(Events, ThePointKeepsTheControlAlive) {
  m_object.Reset();
  IID iid{};
  EXPECT_EQ(S_OK, m_point->GetConnectionInterface(&iid));
  EXPECT_EQ(0u, m_point.Reset());
}

INSTANTIATE_TEST_SUITE_P(Type, Events, testing::Values(1));

}  // namespace
}  // namespace av::test
