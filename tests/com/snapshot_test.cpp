// AudioBlocks.Snapshot: pictures of controls that live in no window.

#include "host/companion_test.h"
#include "host/container.h"
#include "host/window_picture.h"
#include "support/win/picture_file.h"
#include "support/win/run_program.h"

#include <gmock/gmock.h>

#include <cmath>
#include <filesystem>
#include <set>

namespace av::test {
namespace {

std::string narrow(const std::wstring& text) { return std::filesystem::path(text).string(); }

/// A path in the temporary folder where nothing lies, and nothing does afterwards.
class PngPath {
 public:
  PngPath() { DeleteFileW(m_file.path().c_str()); }
  const std::wstring& path() const { return m_file.path(); }
  bool exists() const { return GetFileAttributesW(path().c_str()) != INVALID_FILE_ATTRIBUTES; }
  std::string bytes() const { return m_file.bytes(); }
  WindowPicture picture() const {
    const auto picture = readPng(narrow(path()));
    EXPECT_TRUE(picture);
    return picture.value_or(WindowPicture{});
  }

 private:
  TemporaryFile m_file{L".png"};
};

std::size_t coloursOf(const WindowPicture& picture) {
  return std::set<std::uint32_t>(picture.pixels.begin(), picture.pixels.end()).size();
}

/// A frequency of bin `bin` of 1,024 at 16 bits, as 16-bit integers.
Value toneOfBin(int bin, double amplitude = 16000) {
  std::vector<std::int16_t> samples;
  for (int i = 0; i < 1024; ++i) {
    const double phase = 6.283185307179586 * bin * i / 1024;
    samples.push_back(static_cast<std::int16_t>(std::lround(amplitude * std::sin(phase))));
  }
  return arrayOf(VT_I2, samples);
}

class Snapshot : public CompanionTest {
 protected:
  void SetUp() override {
    CompanionTest::SetUp();
    m_snapshot = make(CLSID_Snapshot);
  }
  void TearDown() override {
    m_control.reset();
    m_snapshot.reset();
    CompanionTest::TearDown();
  }

  void setSize(LONG width, LONG height) {
    EXPECT_EQ(S_OK, m_snapshot.put(L"Width", width));
    EXPECT_EQ(S_OK, m_snapshot.put(L"Height", height));
  }
  void createControl(LONG number) {
    m_control = m_snapshot.object(L"CreateControl", {Value(VT_I4, number)});
    ASSERT_TRUE(m_control) << m_snapshot.refusal.c_str();
  }
  void send(const VARIANT& integers) {
    LateBound block = makeBlock(1, 44100, 16);
    ASSERT_EQ(S_OK, block.call(L"SetIntegers", {integers}));
    ASSERT_EQ(S_OK, m_control.call(L"SendAudioData", {Value(block.get())}));
  }
  HRESULT save(const std::wstring& path) {
    Value text(L"");
    SysReAllocStringLen(&V_BSTR(&text), path.data(), static_cast<UINT>(path.size()));
    return m_snapshot.call(L"Save", {text});
  }
  WindowPicture saved() {
    const PngPath png;
    EXPECT_EQ(S_OK, save(png.path())) << m_snapshot.refusal.c_str();
    return png.picture();
  }

  LateBound m_snapshot;
  LateBound m_control;
};

TEST_F(Snapshot, HasASizeAndTheScreensResolutionAtFirst) {
  EXPECT_EQ(640, m_snapshot.number(L"Width"));
  EXPECT_EQ(360, m_snapshot.number(L"Height"));
  EXPECT_EQ(avhost::screenDpi().cy, m_snapshot.number(L"Dpi"));
  Value control;
  EXPECT_EQ(S_OK, m_snapshot.call(L"Control", {}, &control));
  EXPECT_EQ(VT_DISPATCH, V_VT(&control));
  EXPECT_EQ(nullptr, V_DISPATCH(&control));
}

TEST_F(Snapshot, SavesEachControlInItsSize) {
  for (const LONG number : {1, 2, 3}) {
    for (const SIZE size : {SIZE{400, 240}, SIZE{1, 1}, SIZE{1501, 7}}) {
      setSize(size.cx, size.cy);
      createControl(number);
      send(toneOfBin(100));
      const WindowPicture picture = saved();
      EXPECT_EQ(size.cx, picture.width);
      EXPECT_EQ(size.cy, picture.height);
      if (size.cx == 400) {
        EXPECT_LT(2u, coloursOf(picture)) << number;
      }
      m_control.reset();
    }
  }
}

TEST_F(Snapshot, ShowsWhatTheControlDrawsInAWindow) {
  setSize(400, 240);
  createControl(1);
  ASSERT_EQ(S_OK, m_control.put(L"VisualizationType", LONG{2}));
  ASSERT_EQ(S_OK, m_control.put(L"VisualizationSmooth", Value(VT_BOOL, VARIANT_FALSE)));
  send(toneOfBin(100));
  const WindowPicture picture = saved();
  ASSERT_EQ(S_OK, m_snapshot.put(L"Control", Value(static_cast<IDispatch*>(nullptr)), DISPATCH_PROPERTYPUTREF));
  avhost::Container container;
  ASSERT_EQ(S_OK, container.open({.clientSizePx = {400, 240}}));
  ASSERT_EQ(S_OK, container.host(m_control.get()));
  send(toneOfBin(100));
  avhost::pumpMessages(0);
  EXPECT_EQ(picture, pictureOf(container.controlWindow()));
}

TEST_F(Snapshot, ShowsASmoothedSpectrumAsItWasAnalysed) {
  createControl(1);
  ASSERT_EQ(S_OK, m_control.put(L"VisualizationType", LONG{2}));
  ASSERT_EQ(S_OK, m_control.put(L"VisualizationSmooth", Value(VT_BOOL, VARIANT_FALSE)));
  send(toneOfBin(30));
  const WindowPicture first = saved();
  send(toneOfBin(300));
  const WindowPicture expected = saved();
  EXPECT_NE(first, expected);
  createControl(1);
  ASSERT_EQ(S_OK, m_control.put(L"VisualizationType", LONG{2}));
  ASSERT_EQ(S_OK, m_control.put(L"VisualizationSmooth", Value(VT_BOOL, VARIANT_TRUE)));
  send(toneOfBin(30));
  EXPECT_EQ(first, saved());
  send(toneOfBin(300));
  EXPECT_EQ(expected, saved()) << "the old peak has to fall all the way";
}

TEST_F(Snapshot, ShowsTheAnalysersColumnsInTheHeightOfThePicture) {
  setSize(300, 200);
  createControl(3);
  send(toneOfBin(100, 32767));
  const WindowPicture low = saved();
  createControl(3);
  setSize(300, 800);
  send(toneOfBin(100, 32767));
  const WindowPicture high = saved();
  // Lit green stands where a column is; its share of the height does not depend on the height.
  const auto litShare = [](const WindowPicture& picture) {
    int highest = picture.height;
    for (int y = picture.height - 1; y >= 0; --y)
      for (int x = 0; x < picture.width; ++x)
        if (((picture.at(x, y) >> 8) & 0xFF) > 0xE0 && (picture.at(x, y) >> 16) < 0xE0 &&
            (picture.at(x, y) & 0xFF) < 0x60)
          highest = y;
    return static_cast<double>(highest) / picture.height;
  };
  EXPECT_GT(0.5, litShare(low));
  EXPECT_NEAR(litShare(low), litShare(high), 0.06);
}

TEST_F(Snapshot, LaysAControlOutAnewWhenItsSizeChanges) {
  const auto picture = [this] {
    EXPECT_EQ(S_OK, m_control.put(L"LineCount", LONG{20}));  // fresh columns, whose ticks hold for a second
    send(toneOfBin(100));
    send(toneOfBin(300));
    return saved();
  };
  createControl(3);
  setSize(300, 797);
  const WindowPicture expected = picture();
  createControl(3);
  setSize(300, 100);
  saved();
  setSize(300, 797);
  EXPECT_EQ(expected, picture()) << "ticks of a low picture, drawn high, would be coarse";
}

TEST_F(Snapshot, LetsTicksAndColumnsFallWhileItWaits) {
  createControl(3);
  send(toneOfBin(100));
  const WindowPicture loud = saved();
  EXPECT_EQ(loud, saved()) << "ticks hold, columns stay";
  const ULONGLONG beforeMs = GetTickCount64();
  ASSERT_EQ(S_OK, m_snapshot.call(L"Wait", {Value(VT_I4, 650)}));
  EXPECT_LE(650u, GetTickCount64() - beforeMs);
  EXPECT_NE(loud, saved());
}

TEST_F(Snapshot, GivesTextsTheSizeOfTheResolution) {
  const LONG screen = avhost::screenDpi().cy;
  const auto sizeOf = [this] {
    ComPtr<IAudioVisualization4Type1> view;
    ComPtr<IFontDisp> display;
    ComPtr<IFont> font;
    CY size{};
    EXPECT_EQ(S_OK, m_control.get()->QueryInterface(IID_PPV_ARGS(&view)));
    EXPECT_EQ(S_OK, view->get_ScaleFont(&display));
    EXPECT_EQ(S_OK, display.As(&font));
    EXPECT_EQ(S_OK, font->get_Size(&size));
    return static_cast<double>(size.int64) / 10000;
  };
  constexpr double pixelPt = 0.75;  // fonts have a whole number of pixels, of which Wine counts one less now and then
  createControl(1);
  const double normal = sizeOf();
  ASSERT_EQ(S_OK, m_snapshot.put(L"Dpi", 2 * screen));
  EXPECT_NEAR(2 * normal, sizeOf(), pixelPt);
  ASSERT_EQ(S_OK, m_snapshot.put(L"Dpi", 3 * screen));
  EXPECT_NEAR(3 * normal, sizeOf(), pixelPt) << "three times its own size, not that of the copy";
  ASSERT_EQ(S_OK, m_snapshot.put(L"Dpi", screen));
  EXPECT_EQ(normal, sizeOf());
  ASSERT_EQ(S_OK, m_snapshot.put(L"Dpi", 2 * screen));
  const LateBound kept = m_control;
  createControl(1);
  EXPECT_NEAR(2 * normal, sizeOf(), pixelPt) << "of a control that comes later, too";
  m_control = kept;
  EXPECT_EQ(normal, sizeOf()) << "who leaves gets its own font back";
}

TEST_F(Snapshot, WritesItsResolutionIntoTheFile) {
  createControl(2);
  ASSERT_EQ(S_OK, m_snapshot.put(L"Dpi", LONG{254}));
  const PngPath png;
  ASSERT_EQ(S_OK, save(png.path()));
  // pHYs: dots a metre, in both directions. 254 dots an inch are 10,000.
  const std::string expected("pHYs\0\0\x27\x10\0\0\x27\x10\x01", 13);
  EXPECT_NE(std::string::npos, png.bytes().find(expected));
}

TEST_F(Snapshot, TakesAnyControlAndLeavesOneInAWindowAsItIs) {
  LateBound controls = make(CLSID_Controls);
  m_control = controls.object(L"CreateControl", {Value(VT_I4, 1)});
  controls.reset();
  avhost::Container container;
  ASSERT_EQ(S_OK, container.open({.clientSizePx = {300, 200}}));
  ASSERT_EQ(S_OK, container.host(m_control.get()));
  UpdateWindow(container.controlWindow());
  const WindowPicture inWindow = pictureOf(container.controlWindow());
  ASSERT_EQ(S_OK, m_snapshot.put(L"Dpi", LONG{192}));
  setSize(300, 200);
  for (const WORD flags : {WORD{DISPATCH_PROPERTYPUT}, WORD{DISPATCH_PROPERTYPUTREF}}) {
    ASSERT_EQ(S_OK, m_snapshot.put(L"Control", Value(m_control.get()), flags));
    EXPECT_EQ(inWindow, saved());
  }
  EXPECT_EQ(inWindow, pictureOf(container.controlWindow()));
  ASSERT_EQ(S_OK, m_snapshot.put(L"Control", Value(static_cast<IDispatch*>(nullptr)), DISPATCH_PROPERTYPUTREF));
  EXPECT_EQ(0u, container.close());
}

TEST_F(Snapshot, ReplacesAFileThatIsThere) {
  createControl(2);
  const TemporaryFile file(L".png", std::string(100000, 'x'));
  ASSERT_EQ(S_OK, save(file.path()));
  EXPECT_EQ(0u, file.bytes().find("\x89PNG"));
  EXPECT_GT(100000u, file.bytes().size());
}

TEST_F(Snapshot, SaysWhatIsWrong) {
  const auto refusalOf = [this](HRESULT result, HRESULT reason) {
    EXPECT_EQ(DISP_E_EXCEPTION, result);
    EXPECT_EQ(reason, m_snapshot.reason) << std::hex << m_snapshot.reason;
    EXPECT_EQ(L"AudioBlocks.Snapshot", m_snapshot.source);
    return m_snapshot.refusal;
  };
  EXPECT_EQ(L"Snapshot.Save: there is no control yet: call CreateControl, or put Control, first.",
            refusalOf(save(L"C:\\x.png"), E_UNEXPECTED));
  EXPECT_EQ(L"Snapshot.Save: the path is empty.", refusalOf(save(L""), E_INVALIDARG));
  EXPECT_EQ(L"Snapshot.Save: the path has a character of code 0.",
            refusalOf(save(std::wstring(L"C:\\x.png\0.txt", 13)), E_INVALIDARG));
  for (const LONG wrong : {0, -1, 8193}) {
    EXPECT_EQ(L"Snapshot.Width: it must be 1 to 8192.", refusalOf(m_snapshot.put(L"Width", wrong), E_INVALIDARG));
    EXPECT_EQ(L"Snapshot.Height: it must be 1 to 8192.", refusalOf(m_snapshot.put(L"Height", wrong), E_INVALIDARG));
  }
  for (const LONG wrong : {0, -96, 47, 769})
    EXPECT_EQ(L"Snapshot.Dpi: it must be 48 to 768.", refusalOf(m_snapshot.put(L"Dpi", wrong), E_INVALIDARG));
  for (const LONG wrong : {-1, 600001}) {
    EXPECT_EQ(L"Snapshot.Wait: the milliseconds must be 0 to 600000.",
              refusalOf(m_snapshot.call(L"Wait", {Value(VT_I4, wrong)}), E_INVALIDARG));
  }
  LateBound block = makeBlock(1, 8000, 8);
  EXPECT_EQ(L"Snapshot.Control: the object has no picture: it is no control.",
            refusalOf(m_snapshot.put(L"Control", Value(block.get())), E_INVALIDARG));
  createControl(2);
  EXPECT_EQ(L"Snapshot.Save: there is no such folder: C:\\missing\\x.png",
            refusalOf(save(L"C:\\missing\\x.png"), HRESULT_FROM_WIN32(ERROR_PATH_NOT_FOUND)));
  EXPECT_EQ(L"Snapshot.Save: the system denies access: C:\\windows",
            refusalOf(save(L"C:\\windows"), HRESULT_FROM_WIN32(ERROR_ACCESS_DENIED)));
  EXPECT_EQ(640, m_snapshot.number(L"Width"));
}

}  // namespace
}  // namespace av::test
