// What follows a put of each of the view's properties, as it can be seen from outside: redraws, layouts, resets, and the
// order in which they happen.

#include "host/audio_buffers.h"
#include "host/view_test.h"
#include "host/window_picture.h"

#include <cmath>
#include <cstdint>
#include <functional>
#include <numbers>
#include <thread>
#include <vector>

namespace av::test {
namespace {

/// One put of the value that the property has anyway, so that nothing but the effects of the put can be seen.
struct SamePut {
  const char* name;
  std::function<HRESULT(IAudioVisualization4Type1&)> put;
  bool resets, relayouts, redraws;
};

void PrintTo(const SamePut& row, std::ostream* out) { *out << row.name; }

template <auto Get, auto Put>
HRESULT putWhatItHas(IAudioVisualization4Type1& view) {
  const auto run = [&]<class Value>(HRESULT (STDMETHODCALLTYPE IAudioVisualization4Type1::*)(Value*)) {
    Value value{};
    const HRESULT read = (view.*Get)(&value);
    return FAILED(read) ? read : (view.*Put)(value);
  };
  return run(Get);
}

HRESULT putTheFontItHas(IAudioVisualization4Type1& view) {
  ComPtr<IFontDisp> font;
  const HRESULT read = view.get_ScaleFont(&font);
  return FAILED(read) ? read : view.putref_ScaleFont(font.Get());
}

HRESULT putTheLineColorItHas(IAudioVisualization4Type1& view) {
  OLE_COLOR colour = 0;
  const HRESULT read = view.get_LineColor(2, &colour);
  return FAILED(read) ? read : view.put_LineColor(2, colour);
}

using View = IAudioVisualization4Type1;
constexpr bool resets = true, layouts = true, redraws = true, no = false;

const SamePut table[] = {
    {"VisualizationType", putWhatItHas<&View::get_VisualizationType, &View::put_VisualizationType>, resets, layouts,
     redraws},
    {"VisualizationSmooth", putWhatItHas<&View::get_VisualizationSmooth, &View::put_VisualizationSmooth>, no, layouts,
     redraws},
    {"BackColor", putWhatItHas<&View::get_BackColor, &View::put_BackColor>, no, no, redraws},
    {"GridColor", putWhatItHas<&View::get_GridColor, &View::put_GridColor>, no, no, redraws},
    {"ScaleColor", putWhatItHas<&View::get_ScaleColor, &View::put_ScaleColor>, no, no, redraws},
    {"TextColor", putWhatItHas<&View::get_TextColor, &View::put_TextColor>, no, no, redraws},
    {"BorderColor", putWhatItHas<&View::get_BorderColor, &View::put_BorderColor>, no, no, redraws},
    {"LineColor", putTheLineColorItHas, no, no, redraws},
    {"ScaleXVisible", putWhatItHas<&View::get_ScaleXVisible, &View::put_ScaleXVisible>, no, layouts, redraws},
    {"ScaleYVisible", putWhatItHas<&View::get_ScaleYVisible, &View::put_ScaleYVisible>, no, layouts, redraws},
    {"ScaleFont", putTheFontItHas, no, layouts, redraws},
    {"ScaleYMin", putWhatItHas<&View::get_ScaleYMin, &View::put_ScaleYMin>, no, layouts, redraws},
    {"ScaleYMax", putWhatItHas<&View::get_ScaleYMax, &View::put_ScaleYMax>, no, layouts, redraws},
    {"GridVisible", putWhatItHas<&View::get_GridVisible, &View::put_GridVisible>, no, layouts, redraws},
    {"DynamicRange", putWhatItHas<&View::get_DynamicRange, &View::put_DynamicRange>, no, layouts, redraws},
    {"BorderType", putWhatItHas<&View::get_BorderType, &View::put_BorderType>, no, no, redraws},
    {"FFTWindowSize", putWhatItHas<&View::get_FFTWindowSize, &View::put_FFTWindowSize>, resets, no, redraws},
    {"FFTWindowType", putWhatItHas<&View::get_FFTWindowType, &View::put_FFTWindowType>, no, no, no},
    {"FFTViewType", putWhatItHas<&View::get_FFTViewType, &View::put_FFTViewType>, no, layouts, redraws},
};
static_assert(std::size(table) == 19);

constexpr WAVEFORMATEX mono16{WAVE_FORMAT_PCM, 1, 44100, 88200, 2, 16, 0};
constexpr COLORREF gridRed = RGB(255, 0, 0);
constexpr COLORREF curveGreen = RGB(0, 255, 0);

std::vector<std::int16_t> sine(std::size_t frames) {
  std::vector<std::int16_t> samples;
  for (std::size_t i = 0; i < frames; ++i)
    samples.push_back(static_cast<std::int16_t>(
        std::lround(30000 * std::sin(2 * std::numbers::pi * 8 * static_cast<double>(i) / 1024))));
  return samples;
}

class ViewEffects : public ViewTest {
 protected:
  void SetUp() override {
    ViewTest::SetUp();
    // Drawn by blocks and puts only; ticks change nothing.
    ASSERT_EQ(S_OK, m_view->put_VisualizationSmooth(VARIANT_FALSE));
    ASSERT_EQ(S_OK, m_view->put_GridColor(gridRed));
    ASSERT_EQ(S_OK, m_view->put_LineColor(1, curveGreen));
    ASSERT_EQ(S_OK, m_view->put_TextColor(RGB(0, 0, 255)));
  }

  void send(const std::vector<std::int16_t>& samples, const WAVEFORMATEX& format = mono16) {
    EXPECT_EQ(
        S_OK,
        m_view->SendAudioData(
            avhost::audioFrames(format, samples.data(), static_cast<LONG>(samples.size() * sizeof samples[0])).get()));
  }

  HWND window() const { return m_container.controlWindow(); }
  WindowPicture picture() const { return pictureOf(window()); }

  /// Lines of the grid that cross the top of the plot: the horizontal scale's divisions less one.
  int gridColumns() const {
    const WindowPicture shown = picture();
    int count = 0;
    for (int x = 0; x < shown.width; ++x) count += shown.at(x, 1) == 0xFF0000;
    return count;
  }

  /// Rows in which the curve has pixels: the highest and the lowest. −1 without a curve.
  std::pair<int, int> curveRows() const {
    const WindowPicture shown = picture();
    std::pair<int, int> rows{-1, -1};
    for (int y = 0; y < shown.height; ++y) {
      for (int x = 0; x < shown.width; ++x) {
        if (shown.at(x, y) != 0x00FF00) continue;
        if (rows.first < 0) rows.first = y;
        rows.second = y;
      }
    }
    return rows;
  }

  /// Covers what the window shows; the next drawing shows it again. No message is dispatched.
  void smear() const {
    HDC target = GetDC(window());
    RECT client{};
    GetClientRect(window(), &client);
    FillRect(target, &client, static_cast<HBRUSH>(GetStockObject(WHITE_BRUSH)));
    ReleaseDC(window(), target);
  }
  bool isSmeared() const {
    for (const std::uint32_t pixel : picture().pixels)
      if (pixel != 0xFFFFFF) return false;
    return true;
  }
};

class EachPut : public ViewEffects, public testing::WithParamInterface<SamePut> {};

TEST_P(EachPut, AsksAnInactiveContainerForOneRedrawOrNone) {
  avhost::ControlSite* const sink = new avhost::ControlSite(nullptr, {});
  ComPtr<IViewObject> viewObject;
  ASSERT_EQ(S_OK, m_view.As(&viewObject));
  ASSERT_EQ(S_OK, viewObject->SetAdvise(DVASPECT_CONTENT, 0, sink));
  const unsigned before = sink->viewChanges();
  EXPECT_EQ(S_OK, GetParam().put(*m_view.Get()));
  EXPECT_EQ(GetParam().redraws ? 1u : 0u, sink->viewChanges() - before);
  ASSERT_EQ(S_OK, viewObject->SetAdvise(DVASPECT_CONTENT, 0, nullptr));
  EXPECT_EQ(0u, sink->Release());
}

TEST_P(EachPut, DrawsAnActiveControlAtOnceOrNotAtAll) {
  activate({400, 200});
  const WindowPicture whole = picture();
  smear();
  ASSERT_TRUE(isSmeared());
  EXPECT_EQ(S_OK, GetParam().put(*m_view.Get()));
  EXPECT_EQ(!GetParam().redraws, isSmeared());
  if (GetParam().redraws) {
    EXPECT_EQ(whole, picture());
  }
}

// The waveform's scale ends at the window size, and shorter numbers have room for more divisions; but a put of the window
// size leaves the layout alone. So the number of divisions tells whether another put has computed the layout.
TEST_P(EachPut, ComputesTheLayoutOrLeavesIt) {
  activate({180, 120});
  const int forFourDigits = gridColumns();
  ASSERT_GT(forFourDigits, 0);
  ASSERT_EQ(S_OK, m_view->put_FFTWindowSize(64));
  ASSERT_EQ(forFourDigits, gridColumns());
  EXPECT_EQ(S_OK, GetParam().put(*m_view.Get()));
  ASSERT_EQ(S_OK, m_view->put_BackColor(0));  // shows what the layout is now
  if (GetParam().relayouts) {
    EXPECT_GT(gridColumns(), forFourDigits);
  } else {
    EXPECT_EQ(forFourDigits, gridColumns());
  }
}

TEST_P(EachPut, ResetsTheArraysOrKeepsThem) {
  activate({400, 200});
  send(sine(1024));
  const auto loud = curveRows();
  ASSERT_GT(loud.second - loud.first, 100);
  EXPECT_EQ(S_OK, GetParam().put(*m_view.Get()));
  ASSERT_EQ(S_OK, m_view->put_BackColor(0));  // shows what the arrays hold now
  const auto after = curveRows();
  if (GetParam().resets) {
    EXPECT_LE(after.second - after.first, 1);
  } else {
    EXPECT_EQ(loud, after);
  }
}

INSTANTIATE_TEST_SUITE_P(, EachPut, testing::ValuesIn(table),
                         [](const auto& parameter) { return std::string(parameter.param.name); });

TEST_F(ViewEffects, VisualizationTypeStoresBeforeItResetsAndDrawsTheResultAtOnce) {
  activate({400, 240});
  ASSERT_EQ(S_OK, m_view->put_ScaleXVisible(VARIANT_FALSE));
  send(sine(1024));
  ASSERT_EQ(S_OK, m_view->put_DynamicRange(1000));
  ASSERT_EQ(S_OK, m_view->put_VisualizationType(2));
  // −400 dB of 1000 in 240 rows: the floor of the new type, not of the old one.
  EXPECT_EQ(std::pair(96, 96), curveRows());
  ASSERT_EQ(S_OK, m_view->put_VisualizationSmooth(VARIANT_TRUE));  // shows the display arrays
  EXPECT_EQ(std::pair(96, 96), curveRows());
}

TEST_F(ViewEffects, ASpectrumWithoutNewDataShowsTheFloorAtTheBottomOfThePlot) {
  ASSERT_EQ(S_OK, m_view->put_ScaleColor(RGB(255, 255, 0)));
  activate({400, 240});
  send(sine(1024));
  ASSERT_EQ(S_OK, m_view->put_VisualizationType(2));
  const auto [first, last] = curveRows();
  ASSERT_GT(first, 0);
  EXPECT_EQ(first, last);
  EXPECT_EQ(0xFFFF00u, picture().at(0, last + 1));  // the scale's strip begins below
}

TEST_F(ViewEffects, VisualizationTypeComputesTheLayoutBeforeItDraws) {
  activate({180, 120});
  ASSERT_EQ(S_OK, m_view->put_FFTWindowSize(64));
  ASSERT_EQ(S_OK, m_view->put_VisualizationType(1));
  const int forTwoDigits = gridColumns();
  ASSERT_EQ(S_OK, m_view->put_VisualizationType(2));  // 22050 Hz
  const WindowPicture drawnByThePut = picture();
  EXPECT_LT(gridColumns(), forTwoDigits);
  ASSERT_EQ(S_OK, m_view->put_BackColor(0));
  EXPECT_EQ(drawnByThePut, picture());
}

TEST_F(ViewEffects, FFTWindowTypeChangesThePictureWithTheNextBlock) {
  ASSERT_EQ(S_OK, m_view->put_VisualizationType(2));
  activate({400, 200});
  send(sine(1024));
  const WindowPicture unweighted = picture();
  ASSERT_EQ(S_OK, m_view->put_FFTWindowType(3));
  EXPECT_EQ(unweighted, picture());
  send(sine(1024));
  EXPECT_NE(unweighted, picture());
}

TEST_F(ViewEffects, EveryValueButZeroTurnsSmoothingOn) {
  activate({400, 200});
  for (const VARIANT_BOOL value : {VARIANT_BOOL{1}, VARIANT_BOOL{2}, VARIANT_BOOL{-2}, VARIANT_TRUE}) {
    ASSERT_EQ(S_OK, m_view->put_VisualizationSmooth(value));
    smear();
    send(sine(1024));
    EXPECT_TRUE(isSmeared()) << value;  // left to the timer
  }
  ASSERT_EQ(S_OK, m_view->put_VisualizationSmooth(VARIANT_FALSE));
  smear();
  send(sine(1024));
  EXPECT_FALSE(isSmeared());
}

/// While it is told of a change, another thread has to get a block through that needs the mutex and the drawing lock.
class BlockSendingSink final : public IAdviseSink {
 public:
  explicit BlockSendingSink(IAudioVisualization4Type1* view) : m_view(view) {}

  STDMETHODIMP QueryInterface(REFIID iid, void** object) override {
    *object = iid == IID_IUnknown || iid == IID_IAdviseSink ? this : nullptr;
    return *object ? S_OK : E_NOINTERFACE;
  }
  STDMETHODIMP_(ULONG) AddRef() override { return 2; }
  STDMETHODIMP_(ULONG) Release() override { return 1; }
  STDMETHODIMP_(void) OnDataChange(FORMATETC*, STGMEDIUM*) override {}
  STDMETHODIMP_(void) OnViewChange(DWORD, LONG) override {
    if (m_inside) return;
    m_inside = true;
    ++notices;
    const HANDLE done = CreateEventW(nullptr, TRUE, FALSE, nullptr);
    // More channels than before: slots are exchanged under the drawing lock.
    const WORD channels = ++m_channels;
    std::thread audio([this, channels, done] {
      const WAVEFORMATEX format{WAVE_FORMAT_PCM, channels, 44100, 0, 0, 16, 0};
      const std::vector<std::int16_t> samples(std::size_t{channels} * 4, 1000);  // too short to be drawn
      m_view->SendAudioData(
          avhost::audioFrames(format, samples.data(), static_cast<LONG>(samples.size() * sizeof samples[0])).get());
      SetEvent(done);
    });
    if (WaitForSingleObject(done, 5000) == WAIT_OBJECT_0) ++blocksThrough;
    m_inside = false;
    m_threads.push_back(std::move(audio));
    m_events.push_back(done);
  }
  STDMETHODIMP_(void) OnRename(IMoniker*) override {}
  STDMETHODIMP_(void) OnSave() override {}
  STDMETHODIMP_(void) OnClose() override {}

  void finish() {
    for (std::thread& thread : m_threads) thread.join();
    for (const HANDLE event : m_events) CloseHandle(event);
  }

  int notices = 0;
  int blocksThrough = 0;

 private:
  IAudioVisualization4Type1* m_view;
  std::vector<std::thread> m_threads;
  std::vector<HANDLE> m_events;
  WORD m_channels = 2;
  bool m_inside = false;
};

TEST_F(ViewEffects, TheContainerIsAskedForARedrawWithNoLockHeld) {
  ASSERT_EQ(S_OK, m_view->put_VisualizationSmooth(VARIANT_TRUE));
  BlockSendingSink sink(m_view.Get());
  ComPtr<IViewObject> viewObject;
  ASSERT_EQ(S_OK, m_view.As(&viewObject));
  ASSERT_EQ(S_OK, viewObject->SetAdvise(DVASPECT_CONTENT, 0, &sink));
  EXPECT_EQ(S_OK, m_view->put_VisualizationType(2));
  EXPECT_EQ(S_OK, m_view->put_FFTWindowSize(256));
  EXPECT_EQ(S_OK, m_view->put_BackColor(7));
  EXPECT_EQ(3, sink.notices);
  EXPECT_EQ(3, sink.blocksThrough);
  ASSERT_EQ(S_OK, viewObject->SetAdvise(DVASPECT_CONTENT, 0, nullptr));
  sink.finish();
}

}  // namespace
}  // namespace av::test
