#include "bench/contest.h"
#include "bench/no_lock.h"
#include "bench/pcm_noise.h"
#include "type1/analysis.h"
#include "type1/frame.h"
#include "type2/analysis.h"
#include "type2/frame.h"
#include "type2/segments.h"
#include "type3/analysis.h"
#include "type3/frame.h"

#include <memory>

namespace av::bench {
namespace {

constexpr Size size{800, 400};
constexpr Rect client{0, 0, size.widthPx, size.heightPx};
constexpr int textHeightPx = 13;
constexpr std::uint32_t sampleRateHz = 44100;

/// Texts half as wide as they are high, a letter.
class Font final : public TextMeasure {
 public:
  Size measure(std::string_view text) const override {
    return {static_cast<int>(text.size() + 1) * textHeightPx / 2, textHeightPx};
  }
};

/// Waveforms, spectra or whatever `type` says, of two channels.
struct View {
  explicit View(int type) {
    settings.visualizationType = type;
    settings.visualizationSmooth = 0;
    analysis.reset(settings);
    analysis.accept(PcmNoise(16, 2, 1024).block(), settings);
    layout = type1::computeLayout(settings, sampleRateHz, client, textHeightPx);
    buildAnew(frame);
  }
  void buildAnew(type1::ViewFrame& fresh) const {
    const auto newLayout = type1::computeLayout(settings, sampleRateHz, client, textHeightPx);
    type1::buildFrame(fresh, settings, analysis.signal(), newLayout, font);
  }
  void build() { type1::buildCurves(frame, settings, analysis.signal(), layout); }

  NoLock lock;
  Font font;
  type1::ViewSettings settings;
  type1::ViewAnalysis analysis{lock};
  type1::ViewLayout layout;
  type1::ViewFrame frame;
};

struct Meter {
  Meter() {
    lines.SetLineCount(100);
    analysis.accept(PcmNoise(16, 2, 1024).block(), settings, 0);
    geometry = type2::computeGeometry(settings, lines.count(), client);
    type2::fillSegmentColumns(columns, settings, geometry);
  }
  void buildAnew(type2::MeterFrame& fresh) {
    const auto newGeometry = type2::computeGeometry(settings, lines.count(), client);
    type2::SegmentColumns newColumns;
    type2::fillSegmentColumns(newColumns, settings, newGeometry);
    lines.withLines([&](auto all) { type2::buildFrame(fresh, settings, newGeometry, all, true); });
  }
  void build() {
    lines.withLines([&](auto all) { type2::buildFrame(frame, settings, geometry, all, true); });
  }

  NoLock lock;
  LineList lines{lock};
  type2::MeterSettings settings;
  type2::MeterAnalysis analysis{lines};
  type2::MeterGeometry geometry;
  type2::SegmentColumns columns;
  type2::MeterFrame frame;
};

struct Analyser {
  Analyser() {
    layout = type3::computeLayout(settings, size, textHeightPx, font);
    analysis.accept(PcmNoise(16, 2, 1024).block(), settings, layout.areaHeightPx, 0);
    buildAnew(frame);
    type3::rebuildColumnImages(images, settings, layout.areaHeightPx);
  }
  void buildAnew(type3::AnalyserFrame& fresh) {
    const auto newLayout = type3::computeLayout(settings, size, textHeightPx, font);
    type3::ColumnImages newImages;
    type3::rebuildColumnImages(newImages, settings, newLayout.areaHeightPx);
    type3::buildFurniture(fresh, settings, newLayout, newImages, analysis.axis(settings), font);
    columns.withLines([&](auto all) { type3::buildColumns(fresh, settings, newLayout, newImages, all); });
  }
  void build() {
    columns.withLines([&](auto all) { type3::buildColumns(frame, settings, layout, images, all); });
  }

  NoLock lock;
  Font font;
  LineList columns{lock};
  type3::AnalyserSettings settings;
  type3::AnalyserAnalysis analysis{columns};
  type3::AnalyserLayout layout;
  type3::ColumnImages images;
  type3::AnalyserFrame frame;
};

template <class Frame, class Control>
void addContenders(const std::string& name, const std::shared_ptr<Control>& control) {
  add(name, "everything anew", std::size_t{size.widthPx}, [control] {
    Frame fresh;
    control->buildAnew(fresh);
  });
  add(name, ours, std::size_t{size.widthPx}, [control] { control->build(); });
}

}  // namespace

/// What is decided for a frame of 800 × 400 pixels before anything is painted: from the last block's results to
/// rectangles, points and texts.
void addFrames() {
  addContenders<type1::ViewFrame>("frame-type1", std::make_shared<View>(2));
  addContenders<type1::ViewFrame>("frame-type1-waveform", std::make_shared<View>(1));
  addContenders<type1::ViewFrame>("frame-type1-bars", std::make_shared<View>(3));
  addContenders<type1::ViewFrame>("frame-type1-balance", std::make_shared<View>(7));
  addContenders<type2::MeterFrame>("frame-type2", std::make_shared<Meter>());
  addContenders<type3::AnalyserFrame>("frame-type3", std::make_shared<Analyser>());
}

}  // namespace av::bench
