// What sinks hear of an event, and what they may do while they hear it.

#include "ole/connection_points.h"

#include "ole/control.h"
#include "support/own_module.h"
#include "support/win/event_sink.h"

#include <gtest/gtest.h>

#include <list>
#include <vector>

namespace av::ole {
namespace {

using Microsoft::WRL::ComPtr;
using test::EventSink;

constexpr IID eventsId{0x5E1B7A10, 0x21B4, 0x4F38, {0x9D, 0x53, 0x2B, 0x6C, 0x11, 0x90, 0x44, 0xA7}};

const ControlInfo controlInfo{CLSID_NULL, L"Test Object", 0, false, eventsId};

class PlainControl final : public Control {
 public:
  explicit PlainControl(bool* gone) noexcept : Control(nullptr, controlInfo), m_gone(gone) {}
  ~PlainControl() override { *m_gone = true; }

  void draw(HDC, const RECT&) override {}
  REFIID dispatchInterfaceId() const noexcept override { return IID_NULL; }
  void tearDown() noexcept override { leaveContainer(); }

 private:
  bool* m_gone;
};

class Firing : public testing::Test {
 protected:
  void SetUp() override {
    m_control = new PlainControl(&m_gone);
    *m_unknown.GetAddressOf() = m_control->innerUnknown();  // adopts the reference that a new object has
    m_point = m_control->events();
  }

  void TearDown() override {
    m_unknown.Reset();
    EXPECT_TRUE(m_gone);
    EXPECT_EQ(0, test::ownModuleLockCount());
  }

  EventSink& makeSink() { return m_sinks.emplace_back(eventsId); }

  DWORD connect(EventSink& sink) {
    DWORD cookie = 0;
    EXPECT_EQ(S_OK, m_point->Advise(&sink, &cookie));
    return cookie;
  }

  std::list<EventSink> m_sinks;  // outlive the control, which holds them
  bool m_gone = false;
  PlainControl* m_control = nullptr;
  ComPtr<IUnknown> m_unknown;
  ConnectionPoint* m_point = nullptr;
};

TEST_F(Firing, ArgumentsArriveReversedAsDispatchParametersAre) {
  EventSink& sink = makeSink();
  connect(sink);
  EXPECT_EQ(S_OK, m_control->fireEvent(3, {10, 20, -30, 40}));
  EXPECT_EQ(S_OK, m_control->fireEvent(5, {}));
  ASSERT_EQ(2u, sink.events.size());
  EXPECT_EQ((EventSink::Event{3, {10, 20, -30, 40}}), sink.events[0]);
  EXPECT_EQ((EventSink::Event{5, {}}), sink.events[1]);
}

TEST_F(Firing, WithoutSinksNothingIsSentAndNothingIsWrong) { EXPECT_EQ(S_OK, m_control->fireEvent(1, {1, 2, 3, 4})); }

TEST_F(Firing, SinksAreCalledInTheOrderOfTheirConnection) {
  EventSink* const sinks[] = {&makeSink(), &makeSink(), &makeSink()};
  std::vector<int> order;
  for (int i : {0, 1, 2}) sinks[i]->onEvent = [&order, i] { order.push_back(i); };
  connect(*sinks[1]);
  const DWORD second = connect(*sinks[0]);
  connect(*sinks[2]);
  m_control->fireEvent(5, {});
  EXPECT_EQ((std::vector<int>{1, 0, 2}), order);
  m_point->Unadvise(second);
  connect(*sinks[0]);
  order.clear();
  m_control->fireEvent(5, {});
  EXPECT_EQ((std::vector<int>{1, 2, 0}), order);
}

TEST_F(Firing, AFailingSinkDoesNotStopTheOthersAndTheLastFailureIsTheAnswer) {
  EventSink& first = makeSink();
  EventSink& second = makeSink();
  EventSink& third = makeSink();
  first.answer = E_FAIL;
  second.answer = E_ACCESSDENIED;
  connect(first);
  connect(second);
  connect(third);
  EXPECT_EQ(E_ACCESSDENIED, m_control->fireEvent(5, {}));
  EXPECT_EQ(1u, third.events.size());
}

/// By the rules arguments belong to the caller; not every sink keeps to them.
TEST_F(Firing, ASinkThatOverwritesItsArgumentsDoesNotChangeThoseOfTheOthers) {
  struct Scribbler final : IDispatch {
    STDMETHODIMP QueryInterface(REFIID, void** object) override {
      *object = this;
      return S_OK;
    }
    STDMETHODIMP_(ULONG) AddRef() override { return 1; }
    STDMETHODIMP_(ULONG) Release() override { return 1; }
    STDMETHODIMP GetTypeInfoCount(UINT*) override { return E_NOTIMPL; }
    STDMETHODIMP GetTypeInfo(UINT, LCID, ITypeInfo**) override { return E_NOTIMPL; }
    STDMETHODIMP GetIDsOfNames(REFIID, LPOLESTR*, UINT, LCID, DISPID*) override { return E_NOTIMPL; }
    STDMETHODIMP Invoke(DISPID, REFIID, LCID, WORD, DISPPARAMS* parameters, VARIANT* result, EXCEPINFO*,
                        UINT*) override {
      for (UINT i = 0; i < parameters->cArgs; ++i) V_VT(&parameters->rgvarg[i]) = VT_EMPTY;
      parameters->cArgs = 0;
      V_VT(result) = VT_BSTR;
      V_BSTR(result) = SysAllocString(L"whatever");
      return S_OK;
    }
  } scribbler;
  DWORD cookie = 0;
  ASSERT_EQ(S_OK, m_point->Advise(&scribbler, &cookie));
  EventSink& sink = makeSink();
  connect(sink);
  EXPECT_EQ(S_OK, m_control->fireEvent(2, {10, 20, -30, 40}));
  ASSERT_EQ(1u, sink.events.size());
  EXPECT_EQ((EventSink::Event{2, {10, 20, -30, 40}}), sink.events[0]);
  EXPECT_EQ(S_OK, m_point->Unadvise(cookie));  // the control outlives this function
}

TEST_F(Firing, MoreThanEightArgumentsAreRefused) {
  EventSink& sink = makeSink();
  connect(sink);
  EXPECT_EQ(S_OK, m_control->fireEvent(1, {1, 2, 3, 4, 5, 6, 7, 8}));
  EXPECT_EQ(E_INVALIDARG, m_control->fireEvent(1, {1, 2, 3, 4, 5, 6, 7, 8, 9}));
  EXPECT_EQ(1u, sink.events.size());
}

TEST_F(Firing, ASinkMayDisconnectItselfAndOthers) {
  EventSink& first = makeSink();
  EventSink& second = makeSink();
  EventSink& third = makeSink();
  const DWORD firstCookie = connect(first);
  const DWORD secondCookie = connect(second);
  connect(third);
  first.onEvent = [&] {
    EXPECT_EQ(S_OK, m_point->Unadvise(firstCookie));
    EXPECT_EQ(S_OK, m_point->Unadvise(secondCookie));
  };
  EXPECT_EQ(S_OK, m_control->fireEvent(5, {}));
  EXPECT_EQ(1u, first.events.size());
  EXPECT_EQ(0u, second.events.size()) << "who has disconnected hears nothing more";
  EXPECT_EQ(1u, third.events.size());
  EXPECT_EQ(1u, first.references);
  EXPECT_EQ(1u, second.references);
}

TEST_F(Firing, ASinkThatIsConnectedDuringAnEventWaitsForTheNext) {
  EventSink& first = makeSink();
  EventSink& late = makeSink();
  connect(first);
  first.onEvent = [&] {
    if (first.events.size() == 1) connect(late);
  };
  m_control->fireEvent(5, {});
  EXPECT_EQ(0u, late.events.size());
  m_control->fireEvent(5, {});
  EXPECT_EQ(1u, late.events.size());
}

TEST_F(Firing, TheControlMayBeReleasedInsideAnEvent) {
  EventSink& first = makeSink();
  EventSink& second = makeSink();
  connect(first);
  connect(second);
  first.onEvent = [&] {
    m_unknown.Reset();
    EXPECT_FALSE(m_gone);
  };
  EXPECT_EQ(S_OK, m_control->fireEvent(5, {}));
  EXPECT_TRUE(m_gone);
  EXPECT_EQ(1u, second.events.size());
  EXPECT_EQ(1u, first.references);
  EXPECT_EQ(1u, second.references);
}

TEST_F(Firing, FrozenEventsAreDroppedUntilTheLastThaw) {
  EventSink& sink = makeSink();
  connect(sink);
  ComPtr<IOleControl> control;
  ASSERT_EQ(S_OK, m_unknown.As(&control));
  EXPECT_EQ(S_OK, control->FreezeEvents(TRUE));
  EXPECT_EQ(S_OK, control->FreezeEvents(TRUE));
  EXPECT_EQ(S_OK, m_control->fireEvent(1, {1, 2, 3, 4}));
  EXPECT_EQ(S_OK, control->FreezeEvents(FALSE));
  EXPECT_EQ(S_OK, m_control->fireEvent(2, {1, 2, 3, 4}));
  EXPECT_EQ(S_OK, control->FreezeEvents(FALSE));
  EXPECT_EQ(S_OK, control->FreezeEvents(FALSE)) << "one thaw too many is not remembered";
  EXPECT_TRUE(sink.events.empty());
  EXPECT_EQ(S_OK, m_control->fireEvent(3, {1, 2, 3, 4}));
  ASSERT_EQ(1u, sink.events.size());
  EXPECT_EQ(3, sink.events[0].id);
}

}  // namespace
}  // namespace av::ole
