// host/view_events.h and host/view_event_handlers.h on the finished DLL: the events as methods of a host's object and as
// functions.

#include "host/view_event_handlers.h"
#include "host/view_events.h"

#include "host/view_test.h"

#include <functional>
#include <memory>
#include <string>
#include <vector>

namespace av::test {
namespace {

struct Heard {
  const char* event;
  std::vector<LONG> arguments;
  friend bool operator==(const Heard&, const Heard&) = default;
};

class Listener : public avhost::ViewEvents {
 public:
  void mouseMove(LONG x, LONG y, LONG xValue, LONG yValue) override { note({"move", {x, y, xValue, yValue}}); }
  void mouseUp(LONG x, LONG y, LONG xValue, LONG yValue) override { note({"up", {x, y, xValue, yValue}}); }
  void mouseDown(LONG x, LONG y, LONG xValue, LONG yValue) override { note({"down", {x, y, xValue, yValue}}); }
  void mouseClick(LONG x, LONG y) override { note({"click", {x, y}}); }
  void mouseDblClick() override { note({"double click", {}}); }

  std::vector<Heard> heard;
  std::function<void()> meanwhile;

 private:
  void note(const Heard& what) {
    heard.push_back(what);
    if (const auto hook = meanwhile) hook();  // this object may be gone behind it
  }
};

class HostViewEvents : public ViewTest {
 protected:
  LRESULT send(UINT message, int x, int y) {
    return SendMessageW(m_container.controlWindow(), message, 0, MAKELPARAM(x, y));
  }
};

TEST_F(HostViewEvents, ArriveAsMethodsWithTheirArgumentsInOrder) {
  ASSERT_NO_FATAL_FAILURE(activate({400, 300}));
  ASSERT_EQ(S_OK, m_view->put_ScaleXVisible(VARIANT_FALSE));
  ASSERT_EQ(S_OK, m_view->put_ScaleYVisible(VARIANT_FALSE));
  Listener listener;
  ASSERT_EQ(S_OK, listener.connect(m_view.Get()));
  EXPECT_TRUE(listener.isConnected());
  EXPECT_EQ(E_UNEXPECTED, listener.connect(m_view.Get())) << "once is enough";
  send(WM_MOUSEMOVE, 100, 0);
  send(WM_LBUTTONDOWN, 200, 150);
  send(WM_LBUTTONUP, 300, 299);
  send(WM_LBUTTONDBLCLK, 1, 2);
  // 1024 samples over 400 pixels; 90.3 dB to the centre line at 150; 299: 0.6 dB below the edge.
  EXPECT_EQ((std::vector<Heard>{{"move", {100, 0, 256, 0}},
                                {"down", {200, 150, 512, -89}},
                                {"up", {300, 299, 768, 0}},
                                {"click", {300, 299}},
                                {"double click", {}}}),
            listener.heard);
  listener.heard.clear();
  listener.disconnect();
  EXPECT_FALSE(listener.isConnected());
  listener.disconnect();
  send(WM_LBUTTONDOWN, 200, 150);
  EXPECT_TRUE(listener.heard.empty());
  EXPECT_EQ(S_OK, listener.connect(m_view.Get()));
  send(WM_LBUTTONDOWN, 200, 150);
  EXPECT_EQ(1u, listener.heard.size());
}

TEST_F(HostViewEvents, TheListenerMayGoInsideItsOwnMethod) {
  ASSERT_NO_FATAL_FAILURE(activate({400, 300}));
  auto listener = std::make_unique<Listener>();
  Listener other;
  ASSERT_EQ(S_OK, listener->connect(m_view.Get()));
  ASSERT_EQ(S_OK, other.connect(m_view.Get()));
  listener->meanwhile = [&] { listener.reset(); };
  send(WM_LBUTTONUP, 10, 20);
  EXPECT_FALSE(listener);
  EXPECT_EQ(2u, other.heard.size());
}

TEST_F(HostViewEvents, TheViewMayBeClosedInsideAMethodAndIsHeldByItsListenerUntilThen) {
  ASSERT_NO_FATAL_FAILURE(activate({400, 300}));
  Listener listener;
  ASSERT_EQ(S_OK, listener.connect(m_view.Get()));
  listener.meanwhile = [&] {
    EXPECT_EQ(0u, m_container.close());
    EXPECT_LT(0u, m_view.Reset());
    listener.disconnect();
  };
  send(WM_LBUTTONUP, 10, 20);
  EXPECT_EQ(1u, listener.heard.size()) << "no click: the view is gone";
}

TEST_F(HostViewEvents, ConnectToTheViewOnly) {
  Listener listener;
  EXPECT_EQ(E_POINTER, listener.connect(nullptr));
  const auto meter = create<IUnknown>(CLSID_CAudioVisualization4Type2);
  EXPECT_EQ(CONNECT_E_NOCONNECTION, listener.connect(meter.Get()));
  EXPECT_FALSE(listener.isConnected());
  EXPECT_TRUE(IsEqualIID(DIID__IAudioVisualization4Type1Events, avhost::ViewEvents::interfaceId()));
}

TEST_F(HostViewEvents, CallsThatAreNoEventAreRefused) {
  Listener listener;
  ASSERT_EQ(S_OK, listener.connect(m_view.Get()));
  ComPtr<IConnectionPointContainer> points;
  ComPtr<IConnectionPoint> point;
  ComPtr<IEnumConnections> connections;
  ASSERT_EQ(S_OK, m_view.As(&points));
  ASSERT_EQ(S_OK, points->FindConnectionPoint(avhost::ViewEvents::interfaceId(), &point));
  ASSERT_EQ(S_OK, point->EnumConnections(&connections));
  CONNECTDATA connection{};
  ASSERT_EQ(S_OK, connections->Next(1, &connection, nullptr));
  ComPtr<IDispatch> sink;
  ASSERT_EQ(S_OK, connection.pUnk->QueryInterface(IID_PPV_ARGS(&sink)));
  connection.pUnk->Release();

  Value arguments[4] = {Value(VT_I4, 4), Value(VT_I4, 3), Value(VT_I4, 2), Value(VT_I4, 1)};
  const auto call = [&](DISPID event, WORD flags, UINT count) {
    DISPPARAMS parameters{arguments, nullptr, count, 0};
    return sink->Invoke(event, IID_NULL, 0, flags, &parameters, nullptr, nullptr, nullptr);
  };
  EXPECT_EQ(DISP_E_MEMBERNOTFOUND, call(0, DISPATCH_METHOD, 4));
  EXPECT_EQ(DISP_E_MEMBERNOTFOUND, call(6, DISPATCH_METHOD, 4));
  EXPECT_EQ(DISP_E_MEMBERNOTFOUND, call(1, DISPATCH_PROPERTYGET, 4));
  EXPECT_EQ(DISP_E_BADPARAMCOUNT, call(1, DISPATCH_METHOD, 3));
  EXPECT_EQ(DISP_E_BADPARAMCOUNT, call(4, DISPATCH_METHOD, 4));
  EXPECT_EQ(DISP_E_BADPARAMCOUNT, call(5, DISPATCH_METHOD, 1));
  EXPECT_EQ(E_POINTER, sink->Invoke(5, IID_NULL, 0, DISPATCH_METHOD, nullptr, nullptr, nullptr, nullptr));
  EXPECT_TRUE(listener.heard.empty());
  EXPECT_EQ(S_OK, call(3, DISPATCH_METHOD, 4));
  V_VT(&arguments[0]) = VT_UI1;
  EXPECT_EQ(DISP_E_TYPEMISMATCH, call(3, DISPATCH_METHOD, 4));
  EXPECT_EQ((std::vector<Heard>{{"down", {1, 2, 3, 4}}}), listener.heard);

  listener.disconnect();
  V_VT(&arguments[0]) = VT_I4;
  EXPECT_EQ(S_OK, call(3, DISPATCH_METHOD, 4)) << "nobody is behind it any more";
  EXPECT_EQ(1u, listener.heard.size());
}

class HostViewEventHandlers : public HostViewEvents {};

TEST_F(HostViewEventHandlers, AreCalledWithTheirArgumentsInOrder) {
  ASSERT_NO_FATAL_FAILURE(activate({400, 300}));
  ASSERT_EQ(S_OK, m_view->put_ScaleXVisible(VARIANT_FALSE));
  ASSERT_EQ(S_OK, m_view->put_ScaleYVisible(VARIANT_FALSE));
  std::vector<Heard> heard;
  avhost::ViewEventHandlers handlers;
  handlers.onMouseMove([&](LONG x, LONG y, LONG xv, LONG yv) { heard.push_back({"move", {x, y, xv, yv}}); });
  handlers.onMouseUp([&](LONG x, LONG y, LONG xv, LONG yv) { heard.push_back({"up", {x, y, xv, yv}}); });
  ASSERT_EQ(S_OK, handlers.connect(m_view.Get()));
  handlers.onMouseDown([&](LONG x, LONG y, LONG xv, LONG yv) { heard.push_back({"down", {x, y, xv, yv}}); });
  handlers.onMouseClick([&](LONG x, LONG y) { heard.push_back({"click", {x, y}}); });
  handlers.onMouseDblClick([&] { heard.push_back({"double click", {}}); });
  send(WM_MOUSEMOVE, 100, 0);
  send(WM_LBUTTONDOWN, 200, 150);
  send(WM_LBUTTONUP, 300, 299);
  send(WM_LBUTTONDBLCLK, 1, 2);
  // The values are those of HostViewEvents.ArriveAsMethodsWithTheirArgumentsInOrder.
  EXPECT_EQ((std::vector<Heard>{{"move", {100, 0, 256, 0}},
                                {"down", {200, 150, 512, -89}},
                                {"up", {300, 299, 768, 0}},
                                {"click", {300, 299}},
                                {"double click", {}}}),
            heard);
  handlers.disconnect();
  send(WM_LBUTTONDOWN, 200, 150);
  EXPECT_EQ(5u, heard.size());
}

TEST_F(HostViewEventHandlers, MayBeEmptyAndTakenAway) {
  ASSERT_NO_FATAL_FAILURE(activate({400, 300}));
  avhost::ViewEventHandlers handlers;
  ASSERT_EQ(S_OK, handlers.connect(m_view.Get()));
  int clicks = 0;
  handlers.onMouseClick([&](LONG, LONG) { ++clicks; });
  send(WM_MOUSEMOVE, 10, 10);
  send(WM_LBUTTONUP, 10, 10);
  handlers.onMouseClick(nullptr);
  send(WM_LBUTTONUP, 10, 10);
  EXPECT_EQ(1, clicks);
}

TEST_F(HostViewEventHandlers, MayGoInsideAFunctionWhoseCapturesStayUntilItReturns) {
  ASSERT_NO_FATAL_FAILURE(activate({400, 300}));
  auto handlers = std::make_unique<avhost::ViewEventHandlers>();
  ASSERT_EQ(S_OK, handlers->connect(m_view.Get()));
  const auto token = std::make_shared<int>(7);
  int seen = 0;
  handlers->onMouseUp([&, token](LONG, LONG, LONG, LONG) {
    handlers.reset();
    EXPECT_EQ(2, token.use_count()) << "the running function still has its own";
    seen = *token;
  });
  send(WM_LBUTTONUP, 10, 20);
  EXPECT_EQ(7, seen);
  EXPECT_EQ(1, token.use_count());
  send(WM_LBUTTONUP, 10, 20);
}

TEST_F(HostViewEventHandlers, MayBeReplacedByTheFunctionThatRuns) {
  ASSERT_NO_FATAL_FAILURE(activate({400, 300}));
  avhost::ViewEventHandlers handlers;
  ASSERT_EQ(S_OK, handlers.connect(m_view.Get()));
  const auto token = std::make_shared<std::string>("first");
  std::string heard;
  handlers.onMouseUp([&, token](LONG, LONG, LONG, LONG) {
    handlers.onMouseUp([&](LONG, LONG, LONG, LONG) { heard += ", second"; });
    EXPECT_EQ(2, token.use_count());
    heard += *token;
  });
  send(WM_LBUTTONUP, 10, 20);
  EXPECT_EQ(1, token.use_count());
  send(WM_LBUTTONUP, 10, 20);
  EXPECT_EQ("first, second", heard);
}

}  // namespace
}  // namespace av::test
