// The spectrum analyser without a window of its own: it asks its site for redraws and is drawn at its place.

#include "host/analyser_test.h"
#include "host/message_pump.h"
#include "support/win/windowless_site.h"

#include <memory>

namespace av::test {
namespace {

class WindowlessAnalyser : public AnalyserTest {
 protected:
  void SetUp() override {
    AnalyserTest::SetUp();
    ASSERT_EQ(S_OK, m_sitesWindow.open({.title = L"windowless", .clientSizePx = {400, 300}}));
    m_site = std::make_unique<WindowlessSite>(m_sitesWindow.window());
    ASSERT_EQ(S_OK, m_analyser.As(&m_object));
    ComPtr<IOleInPlaceObjectWindowless> inPlace;
    ASSERT_EQ(S_OK, m_analyser.As(&inPlace));
    m_site->control = inPlace.Get();
    m_site->rect = {37, 21, 37 + 300, 21 + 150};
    ASSERT_EQ(S_OK, m_object->SetClientSite(m_site.get()));
    ASSERT_EQ(S_OK, m_object->DoVerb(OLEIVERB_SHOW, nullptr, m_site.get(), 0, m_sitesWindow.window(), &m_site->rect));
  }

  void TearDown() override {
    EXPECT_EQ(S_OK, m_object->Close(OLECLOSE_NOSAVE));
    EXPECT_EQ(S_OK, m_object->SetClientSite(nullptr));
    m_object.Reset();
    AnalyserTest::TearDown();
    m_sitesWindow.close();
  }

  /// What the site's window shows of it when the site has it drawn.
  WindowPicture drawn() {
    ComPtr<IViewObject> view;
    EXPECT_EQ(S_OK, m_analyser.As(&view));
    const WindowPicture all = pictureDrawnBy({400, 300}, [&](HDC target) {
      EXPECT_EQ(S_OK,
                view->Draw(DVASPECT_CONTENT, -1, nullptr, nullptr, nullptr, target, nullptr, nullptr, nullptr, 0));
    });
    return cutOut(all, m_site->rect);
  }

  avhost::Container m_sitesWindow;
  std::unique_ptr<WindowlessSite> m_site;
  ComPtr<IOleObject> m_object;
};

TEST_F(WindowlessAnalyser, ShowsWhatAWindowOfThatSizeShows) {
  ASSERT_EQ(S_OK, m_analyser->put_TickVisible(VARIANT_FALSE));
  ASSERT_EQ(S_OK, send(noiseBlock()));
  const WindowPicture here = drawn();

  const auto windowed = create<IAudioVisualization4Type3>(CLSID_CAudioVisualization4Type3);
  avhost::Container container;
  ASSERT_EQ(S_OK, container.open({.title = L"test", .clientSizePx = {300, 150}}));
  ASSERT_EQ(S_OK, container.host(windowed.Get()));
  ASSERT_EQ(S_OK, windowed->put_TickVisible(VARIANT_FALSE));
  ASSERT_EQ(S_OK, sendSamples(windowed.Get(), noiseBlock()));
  EXPECT_EQ(pictureOf(container.controlWindow()), here);
  EXPECT_EQ(0u, container.close());
}

TEST_F(WindowlessAnalyser, BlocksPutsAndRepaintAskItsSiteForARedraw) {
  int before = m_site->invalidations;
  ASSERT_EQ(S_OK, send(noiseBlock()));
  EXPECT_EQ(before + 1, m_site->invalidations);
  before = m_site->invalidations;
  ASSERT_EQ(S_OK, m_analyser->SendAudioData(nullptr));
  EXPECT_EQ(before + 1, m_site->invalidations);
  before = m_site->invalidations;
  ASSERT_EQ(S_OK, m_analyser->put_BorderType(1));
  EXPECT_EQ(before + 1, m_site->invalidations);
  before = m_site->invalidations;
  ASSERT_EQ(S_OK, m_analyser->Repaint());
  EXPECT_EQ(before + 1, m_site->invalidations);
  before = m_site->invalidations;
  EXPECT_EQ(E_INVALIDARG, m_analyser->put_BorderType(4));
  EXPECT_EQ(before, m_site->invalidations);
}

TEST_F(WindowlessAnalyser, FallsByItsTimerAndComesToRest) {
  const WindowPicture empty = drawn();
  ASSERT_EQ(S_OK, send(noiseBlock()));
  EXPECT_NE(empty, drawn());
  EXPECT_TRUE(avhost::pumpUntil(10000, [&] { return drawn() == empty; }));
}

}  // namespace
}  // namespace av::test
