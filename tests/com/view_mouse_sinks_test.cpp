// Who hears of the view's mouse events, and what sinks may do while they hear of them: anything.

#include "host/talk_test.h"
#include "host/view_mouse.h"
#include "host/view_sound.h"

#include <array>
#include <atomic>
#include <cstddef>
#include <functional>
#include <ostream>
#include <string>
#include <thread>
#include <tuple>
#include <utility>
#include <vector>

namespace av::test {
namespace {

using Site = RecordingContainer::Site;

/// Sends the active control a mouse message at (30, 40), through its window or, where it has none, its container.
void send(RecordingContainer& container, UINT message) {
  constexpr int x = 30, y = 40;
  const WPARAM keys = message == WM_LBUTTONDOWN || message == WM_LBUTTONDBLCLK ? MK_LBUTTON : 0;
  if (const HWND window = container.controlWindow()) {
    SendMessageW(window, message, keys, MAKELPARAM(x, y));
    return;
  }
  // Not counted: the test is about calls in whose middle the last reference goes.
  IOleInPlaceObjectWindowless* object = nullptr;
  ASSERT_EQ(S_OK, container.control()->QueryInterface(IID_PPV_ARGS(&object)));
  object->Release();
  LRESULT result = 1;
  const POINT corner{container.controlRect().left, container.controlRect().top};
  EXPECT_EQ(S_OK, object->OnWindowMessage(message, keys, MAKELPARAM(corner.x + x, corner.y + y), &result));
  EXPECT_EQ(0, result);
}

class ViewMouseSinks : public TalkTest {
 protected:
  void SetUp() override {
    TalkTest::SetUp();
    ASSERT_NO_FATAL_FAILURE(giveAndSite(m_container, CLSID_CAudioVisualization4Type1));
    ASSERT_EQ(S_OK, m_container.doVerb(OLEIVERB_SHOW));
  }
  void TearDown() override {
    EXPECT_EQ(0u, m_container.releaseControl());
    EXPECT_TRUE(isLeftAlone(m_container));
    for (const ViewSink& sink : m_sinks) EXPECT_EQ(1u, sink.references);
    TalkTest::TearDown();
  }

  DWORD connect(EventSink& sink) { return test::connect(m_container.control(), sink); }

  std::array<ViewSink, 3> m_sinks;
  RecordingContainer m_container;
};

TEST_F(ViewMouseSinks, HearOfEachEventInTheOrderOfTheirConnection) {
  std::vector<std::pair<int, DISPID>> heard;
  for (const int i : {2, 0, 1}) {
    connect(m_sinks[i]);
    m_sinks[i].onEvent = [&, i] { heard.emplace_back(i, m_sinks[i].events.back().id); };
  }
  send(m_container, WM_LBUTTONUP);
  const std::vector<std::pair<int, DISPID>> expected{{2, mouseUp},    {0, mouseUp},    {1, mouseUp},
                                                     {2, mouseClick}, {0, mouseClick}, {1, mouseClick}};
  EXPECT_EQ(expected, heard);
}

TEST_F(ViewMouseSinks, AFailingSinkStopsNeitherTheOthersNorTheNextEvent) {
  for (ViewSink& sink : m_sinks) connect(sink);
  m_sinks[0].answer = E_FAIL;
  m_sinks[1].answer = DISP_E_EXCEPTION;
  send(m_container, WM_LBUTTONUP);
  for (const ViewSink& sink : m_sinks) EXPECT_EQ((std::vector<DISPID>{mouseUp, mouseClick}), idsOf(sink.events));
}

TEST_F(ViewMouseSinks, MayBePlainDispatchObjectsAsScriptsHaveThem) {
  EventSink script(GUID_NULL);
  script.hidesEventInterface = true;
  const DWORD cookie = connect(script);
  ASSERT_NE(0u, cookie);
  send(m_container, WM_LBUTTONDOWN);
  ASSERT_EQ(1u, script.events.size());
  EXPECT_EQ(mouseDown, script.events[0].id);
  EXPECT_EQ(4u, script.events[0].arguments.size());
  EXPECT_EQ(S_OK, eventsOf(m_container.control())->Unadvise(cookie));
  EXPECT_EQ(1u, script.references);
}

TEST_F(ViewMouseSinks, HearNothingAfterTheyHaveDisconnectedNorBeforeTheNextEventOnceConnected) {
  const DWORD first = connect(m_sinks[0]), second = connect(m_sinks[1]);
  m_sinks[0].onEvent = [&] {
    m_sinks[0].onEvent = nullptr;
    const auto events = eventsOf(m_container.control());
    EXPECT_EQ(S_OK, events->Unadvise(first));
    EXPECT_EQ(S_OK, events->Unadvise(second));
    connect(m_sinks[2]);
  };
  send(m_container, WM_LBUTTONUP);
  EXPECT_EQ((std::vector<DISPID>{mouseUp}), idsOf(m_sinks[0].events));
  EXPECT_TRUE(m_sinks[1].events.empty());
  EXPECT_EQ((std::vector<DISPID>{mouseClick}), idsOf(m_sinks[2].events));
}

/// Blocks with smoothing off draw on the audio thread, under both locks; the sinks put properties that take both. Were a
/// lock held while an event is sent, the two threads would wait for each other.
TEST_F(ViewMouseSinks, DoAsTheyLikeWhileBlocksArriveOnTheAudioThread) {
  ComPtr<IAudioVisualization4Type1> view;
  ASSERT_EQ(S_OK, m_container.control()->QueryInterface(IID_PPV_ARGS(&view)));
  ASSERT_EQ(S_OK, view->put_VisualizationSmooth(VARIANT_FALSE));
  connect(m_sinks[0]);
  std::atomic<int> blocks{0};
  std::atomic<bool> stop{false};
  int round = 0;
  m_sinks[0].onEvent = [&] {
    // Until a block has come and gone, which it does only if this thread holds nothing.
    const int before = blocks;
    for (int i = 0; i < 2000 && blocks < before + 2; ++i) Sleep(1);
    EXPECT_LE(before + 2, blocks);
    EXPECT_EQ(S_OK, view->put_VisualizationType(1 + round % 2));
    EXPECT_EQ(S_OK, view->put_FFTWindowSize(round % 2 ? 512 : 2048));
    ++round;
  };
  IAudioVisualization4Type1* const raw = view.Get();
  std::thread audio([&] {
    while (!stop) {
      if (sendSquareWave(raw, 2048) != S_OK) stop = true;  // no expectations on this thread
      ++blocks;
    }
  });
  for (int i = 0; i < 5; ++i)
    for (const UINT message : {WM_MOUSEMOVE, WM_LBUTTONDOWN, WM_LBUTTONUP, WM_LBUTTONDBLCLK})
      send(m_container, message);
  EXPECT_FALSE(stop);
  stop = true;
  audio.join();
  EXPECT_EQ(25u, m_sinks[0].events.size());
  m_sinks[0].onEvent = nullptr;
}

// --- what a sink does in the middle of an event --------------------------------------------------------------------

/// The view, which nobody but the container holds; not counted.
IAudioVisualization4Type1* viewIn(RecordingContainer& container) {
  IAudioVisualization4Type1* view = nullptr;
  container.control()->QueryInterface(IID_PPV_ARGS(&view));
  view->Release();
  return view;
}

struct Deed {
  const char* name;
  bool clickFollows;  ///< whether MouseClick still comes if this is done in MouseUp
  bool othersHear;    ///< whether the other sinks get the event in whose middle this is done
  std::function<void(RecordingContainer&)> done;
};

void PrintTo(const Deed& deed, std::ostream* out) { *out << deed.name; }

const Deed deeds[] = {
    {"PutsProperties", true, true,
     [](RecordingContainer& container) {
       EXPECT_EQ(S_OK, viewIn(container)->put_VisualizationType(2));
       EXPECT_EQ(S_OK, viewIn(container)->put_FFTWindowSize(64));
       EXPECT_EQ(S_OK, viewIn(container)->put_ScaleYVisible(VARIANT_FALSE));
     }},
    {"PushesABlock", true, true,
     [](RecordingContainer& container) { EXPECT_EQ(S_OK, sendSquareWave(viewIn(container))); }},
    {"Resizes", true, true,
     [](RecordingContainer& container) {
       EXPECT_EQ(S_OK, container.resize({320, 150}));
     }},
    {"MakesItTooSmall", true, true,
     [](RecordingContainer& container) {
       EXPECT_EQ(S_OK, container.resize({20, 10}));
       EXPECT_EQ(container.controlRect().left + 80, container.controlRect().right);
     }},
    {"Hides", true, true, [](RecordingContainer& container) { EXPECT_EQ(S_OK, container.doVerb(OLEIVERB_HIDE)); }},
    {"PumpsMessages", true, true, [](RecordingContainer&) { avhost::pumpMessages(80); }},
    {"SendsAnotherMessage", true, true, [](RecordingContainer& container) { send(container, WM_LBUTTONDBLCLK); }},
    {"FreezesEvents", false, true,
     [](RecordingContainer& container) {
       ComPtr<IOleControl> control;
       ASSERT_EQ(S_OK, container.control()->QueryInterface(IID_PPV_ARGS(&control)));
       EXPECT_EQ(S_OK, control->FreezeEvents(TRUE));
     }},
    {"DisconnectsEverybody", false, false,
     [](RecordingContainer& container) {
       const auto events = eventsOf(container.control());
       for (const DWORD cookie : {1, 2}) EXPECT_EQ(S_OK, events->Unadvise(cookie));
     }},
    {"Deactivates", false, true, [](RecordingContainer& container) { EXPECT_EQ(S_OK, container.inPlaceDeactivate()); }},
    {"Closes", false, true, [](RecordingContainer& container) { EXPECT_EQ(S_OK, container.close()); }},
    {"TakesItsSiteAway", false, true, [](RecordingContainer& container) { EXPECT_EQ(S_OK, container.unsite()); }},
    {"ClosesAndShowsItAgain", true, true,
     [](RecordingContainer& container) {
       EXPECT_EQ(S_OK, container.close());
       EXPECT_EQ(S_OK, container.doVerb(OLEIVERB_SHOW));
     }},
    {"Releases", true, true, [](RecordingContainer& container) { EXPECT_LT(0u, container.releaseControl()); }},
    {"ClosesAndReleases", false, true,
     [](RecordingContainer& container) {
       EXPECT_EQ(S_OK, container.close());
       EXPECT_EQ(S_OK, container.unsite());
       EXPECT_LT(0u, container.releaseControl());
     }},
};

/// These need a window of the control's own, for a windowless one has nothing to lose by them.
const Deed deedsToWindows[] = {
    {"DestroysItsWindow", false, true,
     [](RecordingContainer& container) { EXPECT_TRUE(DestroyWindow(container.controlWindow())); }},
    {"DestroysTheContainersWindow", false, true, [](RecordingContainer& container) { container.destroyWindow(); }},
    {"DestroysAllAndReleases", false, true,
     [](RecordingContainer& container) {
       container.destroyWindow();
       EXPECT_LT(0u, container.releaseControl());
     }},
};

using DeedAtSite = std::tuple<Deed, Site>;

class ViewMouseSinkThat : public TalkTest, public testing::WithParamInterface<DeedAtSite> {
 protected:
  /// A life in which the first of two sinks does the deed when it hears of `events[at]`, of the events that `message`
  /// sends.
  void live(UINT message, const std::vector<DISPID>& events, std::size_t at) {
    const Deed& deed = std::get<Deed>(GetParam());
    std::array<ViewSink, 2> sinks;
    RecordingContainer container({.site = std::get<Site>(GetParam())});
    ASSERT_NO_FATAL_FAILURE(giveAndSite(container, CLSID_CAudioVisualization4Type1));
    ASSERT_EQ(S_OK, container.doVerb(OLEIVERB_UIACTIVATE));
    ASSERT_EQ(S_OK, sendSquareWave(viewIn(container)));
    avhost::pumpMessages(0);
    for (ViewSink& sink : sinks) ASSERT_NE(0u, connect(container.control(), sink));
    sinks[0].onEvent = [&] {
      if (sinks[0].events.back().id != events[at]) return;
      sinks[0].onEvent = nullptr;
      const std::size_t heard[] = {sinks[0].events.size(), sinks[1].events.size()};
      deed.done(container);
      // What the deed itself leads to, such as a message that it sends, is not counted.
      for (std::size_t i : {0, 1}) sinks[i].events.resize(heard[i]);
    };
    send(container, message);
    EXPECT_FALSE(sinks[0].onEvent) << "never called: nothing was tested";

    const bool goesOn = at > 0 || deed.clickFollows;  // nothing follows a click
    const std::vector<DISPID> until(events.begin(), events.begin() + static_cast<std::ptrdiff_t>(at));
    std::vector<DISPID> first = events, second = events;
    if (!goesOn) first.resize(1), second.resize(1);
    if (!deed.othersHear) second = until;
    EXPECT_EQ(first, idsOf(sinks[0].events));
    EXPECT_EQ(second, idsOf(sinks[1].events));

    avhost::pumpMessages(0);
    EXPECT_EQ(0u, container.releaseControl());
    EXPECT_TRUE(isLeftAlone(container));
    for (const ViewSink& sink : sinks) EXPECT_EQ(1u, sink.references);
    EXPECT_EQ(S_OK, m_library.canUnloadNow());
  }
};

TEST_P(ViewMouseSinkThat, DoesThisInAnEventHarmsNobody) {
  const std::vector<DISPID> release{mouseUp, mouseClick};
  const struct {
    UINT message;
    std::vector<DISPID> events;
    std::size_t at;
  } lives[] = {{WM_MOUSEMOVE, {mouseMove}, 0},
               {WM_LBUTTONDOWN, {mouseDown}, 0},
               {WM_LBUTTONUP, release, 0},
               {WM_LBUTTONUP, release, 1},
               {WM_LBUTTONDBLCLK, {mouseDblClick}, 0}};
  for (const auto& [message, events, at] : lives) {
    SCOPED_TRACE(testing::Message() << "event " << events[at]);
    ASSERT_NO_FATAL_FAILURE(live(message, events, at));
  }
}

std::string deedName(const testing::TestParamInfo<DeedAtSite>& info) {
  return std::get<Deed>(info.param).name + std::string(std::get<Site>(info.param) == Site::plain ? "" : "Windowless");
}

INSTANTIATE_TEST_SUITE_P(, ViewMouseSinkThat,
                         testing::Combine(testing::ValuesIn(deeds), testing::Values(Site::plain, Site::windowless)),
                         deedName);
INSTANTIATE_TEST_SUITE_P(Windows, ViewMouseSinkThat,
                         testing::Combine(testing::ValuesIn(deedsToWindows), testing::Values(Site::plain)), deedName);

}  // namespace
}  // namespace av::test
