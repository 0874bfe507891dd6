// Pixels of the finished spectrum analyser against the picture drawn the slow way: two bitmaps, copied column by column.

#include "picture/analyser_picture_fixture.h"

namespace av::test {
namespace {

TEST_F(AnalyserPictures, EveryViewUprightAndMirroredWithEveryGapAndBorderIsTheReference) {
  open(301, 157);
  putLineCount(24);
  for (const LONG viewType : {0, 1, 2, 3}) {
    for (const LONG alignmentY : {0, 1}) {
      for (const LONG lineInterval : {0, 1, 3}) {
        for (const LONG spotInterval : {0, 1, 2}) {
          putLook(viewType, alignmentY);
          putGaps(lineInterval, 3, spotInterval);
          for (const LONG border : {0, 1, 2, 3}) {
            putBorder(border);
            hideTicks();
            forgetPeaks();
            send(noise(7, 30000));
            send(noise(8, 4000));  // lower, so that the ticks stand above
            showTicks();
            expectAsReference(shown());
            if (HasFatalFailure()) return;
          }
        }
      }
    }
  }
}

TEST_F(AnalyserPictures, NoTwoScalesChangeAnythingButTheRoomForTheColumns) {
  open(320, 200);
  for (const bool x : {false, true}) {
    for (const bool y : {false, true}) {
      putScales(x, y);
      EXPECT_EQ(x, xStrip(shown()) > 10);
      EXPECT_EQ(y, yStrip(shown()) > 10);
      for (const LONG alignmentY : {0, 1}) {
        putLook(0, alignmentY);
        hideTicks();
        forgetPeaks();
        send(noise(7, 30000));
        send(noise(8, 4000));
        showTicks();
        expectAsReference(shown());
        if (HasFatalFailure()) return;
      }
    }
  }
}

TEST_F(AnalyserPictures, AnyNumberOfColumnsAndEverySizeIsTheReference) {
  open(301, 157);
  for (const LONG lineCount : {4, 5, 33, 60, 120, 199, 200}) {
    putLineCount(lineCount);
    send(noise(7, 30000));
    expectAsReference(shown());
    if (HasFatalFailure()) return;
  }
  putLineCount(17);
  for (const SIZE size : {SIZE{300, 157}, SIZE{120, 60}, SIZE{90, 300}, SIZE{640, 100}, SIZE{40, 40}, SIZE{7, 90}}) {
    ASSERT_EQ(S_OK, m_container.resize(size));
    UpdateWindow(m_container.controlWindow());
    m_width = size.cx;
    m_height = size.cy;
    if (size.cx < 30) putScales(false, false);
    forgetPeaks();
    send(noise(7, 30000));
    expectAsReference(shown());
    if (HasFatalFailure()) return;
  }
}

TEST_F(AnalyserPictures, ZonesStandAtTheirPercentagesAlsoWhereTheyOverlap) {
  open(200, 143);
  putLineCount(12);
  for (const LONG viewType : {0, 1}) {
    for (const LONG alignmentY : {0, 1}) {
      putLook(viewType, alignmentY);
      const std::pair<LONG, LONG> zones[] = {{60, 80}, {0, 100}, {100, 100}, {0, 0}, {33, 67}, {50, 50}, {99, 100}};
      for (const auto& [mid, high] : zones) {
        putZones(mid, high);
        forgetPeaks();
        send(noise(7, 30000));
        expectAsReference(shown());
        if (HasFatalFailure()) return;
      }
      if (viewType != 0) continue;
      putZones(80, 29);
      forgetPeaks();
      send(noise(7, 30000));
      expectAsReference(shown());
      if (HasFatalFailure()) return;
    }
  }
}

TEST_F(AnalyserPictures, BothAxesMirroredOrNotIsTheReference) {
  open(400, 200);
  for (const LONG lineCount : {40, 41}) {
    for (const LONG xScaleType : {0, 1}) {
      for (const LONG alignmentX : {0, 1}) {
        putLineCount(lineCount);
        putAxis(xScaleType, alignmentX);
        send(noise(7, 30000));
        expectAsReference(shown());
        if (HasFatalFailure()) return;
      }
    }
  }
}

TEST_F(AnalyserPictures, WithoutSoundTheUnlitColumnsAreShown) {
  open(301, 157);
  for (const LONG viewType : {0, 1, 2, 3}) {
    for (const LONG alignmentY : {0, 1}) {
      putLook(viewType, alignmentY);
      showTicks();
      expectAsReference(shown());
      if (HasFatalFailure()) return;
    }
  }
}

TEST_F(AnalyserPictures, AwayFromTheOriginThePictureIsTheSame) {
  // Not hosted: a container draws it.
  constexpr SIZE size{301, 157};
  putLineCount(24);
  for (const LONG viewType : {0, 3}) {
    for (const LONG alignmentY : {0, 1}) {
      putLook(viewType, alignmentY);
      putBorder(2);
      forgetPeaks();
      const WindowPicture silent = drawnAt({0, 0}, size);
      const std::vector<std::int16_t> samples = noise(7, 30000);
      m_height = size.cy;
      const WAVEFORMATEX format{WAVE_FORMAT_PCM, 1, 44100, 88200, 2, 16, 0};
      ASSERT_EQ(S_OK, m_analyser->SendAudioData(
                          avhost::audioFrames(format, samples.data(), static_cast<LONG>(samples.size() * 2)).get()));
      computeBands(samples);
      updateModel(size.cy - xStrip(silent));
      const WindowPicture atOrigin = drawnAt({0, 0}, size);
      EXPECT_NE(silent, atOrigin);
      expectAsReference(atOrigin);
      if (HasFatalFailure()) return;
      EXPECT_EQ(atOrigin, drawnAt({37, 19}, size));
    }
  }
}

TEST_F(AnalyserPictures, AnInactiveControlIsDrawnAtAnySizeFromItsLastBlock) {
  putLineCount(24);
  const std::vector<std::int16_t> samples = noise(7, 30000);
  const WAVEFORMATEX format{WAVE_FORMAT_PCM, 1, 44100, 88200, 2, 16, 0};
  ASSERT_EQ(S_OK, m_analyser->SendAudioData(
                      avhost::audioFrames(format, samples.data(), static_cast<LONG>(samples.size() * 2)).get()));
  computeBands(samples);
  for (const SIZE size : {SIZE{301, 157}, SIZE{150, 80}, SIZE{700, 400}}) {
    const WindowPicture drawn = drawnAt({0, 0}, size);
    updateModel(size.cy - xStrip(drawn));
    expectAsReference(drawn);
    if (HasFatalFailure()) return;
  }
}

TEST_F(AnalyserPictures, TicksOfAnInactiveControlStandAtTheirLevelInEverySize) {
  putScales(false, false);
  putLineCount(24);
  drawnAt({0, 0}, {301, 100});
  m_height = 100;
  for (const std::vector<std::int16_t>& samples : {noise(7, 30000), noise(8, 4000)}) {
    const WAVEFORMATEX format{WAVE_FORMAT_PCM, 1, 44100, 88200, 2, 16, 0};
    ASSERT_EQ(S_OK, m_analyser->SendAudioData(
                        avhost::audioFrames(format, samples.data(), static_cast<LONG>(samples.size() * 2)).get()));
    computeBands(samples);
    updateModel(100);
  }
  showTicks();
  expectAsReference(drawnAt({0, 0}, {301, 100}));
  // Twice as high: the columns from their bands, the ticks where they were.
  const std::vector<LineInfo> lines = m_lines;
  updateModel(200);
  for (std::size_t i = 0; i < lines.size(); ++i) m_lines[i].peak = std::max(2 * lines[i].peak, m_lines[i].value);
  expectAsReference(drawnAt({0, 0}, {301, 200}));
}

TEST_F(AnalyserPictures, TicksOfTheLastBlockStandOnItsColumnsInEverySize) {
  putScales(false, false);
  putLineCount(24);
  const std::vector<std::int16_t> samples = noise(7, 30000);
  const WAVEFORMATEX format{WAVE_FORMAT_PCM, 1, 44100, 88200, 2, 16, 0};
  ASSERT_EQ(S_OK, m_analyser->SendAudioData(
                      avhost::audioFrames(format, samples.data(), static_cast<LONG>(samples.size() * 2)).get()));
  computeBands(samples);
  showTicks();
  for (const SIZE size : {SIZE{301, 100}, SIZE{301, 151}, SIZE{301, 80}}) {
    updateModel(size.cy);
    for (LineInfo& line : m_lines) line.peak = line.value;
    expectAsReference(drawnAt({0, 0}, size));
    if (HasFatalFailure()) return;
  }
}

}  // namespace
}  // namespace av::test
