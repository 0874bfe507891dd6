// The demo program as its user sees it: exit codes, lines on the standard error stream, pictures.

#include <windows.h>

#include <objidl.h>

#include <algorithm>
namespace Gdiplus {
using std::max;
using std::min;
}  // namespace Gdiplus
#include <gdiplus.h>

#include <gmock/gmock.h>

#include <cmath>
#include <cstdint>
#include <filesystem>
#include <fstream>
#include <map>
#include <string>
#include <vector>

namespace {

namespace fs = std::filesystem;
using testing::HasSubstr;

fs::path programFolder() {
  wchar_t path[1024] = {};
  GetModuleFileNameW(nullptr, path, ARRAYSIZE(path));
  return fs::path(path).parent_path();
}

struct Outcome {
  DWORD exitCode = STILL_ACTIVE;
  std::string errors;  ///< what came on the standard error stream, UTF-8
};

/// Runs avdemo.exe with `arguments` in `folder` and waits for its end.
Outcome runDemo(const fs::path& folder, const std::wstring& arguments) {
  // A file of its own for each run: background programs that the first one starts may hold theirs open.
  static int runs = 0;
  const fs::path errorFile = folder / (L"errors" + std::to_wstring(++runs) + L".txt");
  SECURITY_ATTRIBUTES inheritable = {sizeof inheritable, nullptr, TRUE};
  HANDLE errors = CreateFileW(errorFile.c_str(), GENERIC_WRITE, FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE,
                              &inheritable, CREATE_ALWAYS, 0, nullptr);
  HANDLE nothing = CreateFileW(L"NUL", GENERIC_READ | GENERIC_WRITE, 0, &inheritable, OPEN_EXISTING, 0, nullptr);
  STARTUPINFOW startup = {};
  startup.cb = sizeof startup;
  startup.dwFlags = STARTF_USESTDHANDLES;
  startup.hStdInput = nothing;
  startup.hStdOutput = nothing;
  startup.hStdError = errors;
  std::wstring command = L"\"" + (programFolder() / L"avdemo.exe").wstring() + L"\" " + arguments;
  PROCESS_INFORMATION process = {};
  Outcome outcome;
  if (CreateProcessW(nullptr, command.data(), nullptr, nullptr, TRUE, 0, nullptr, folder.c_str(), &startup, &process)) {
    WaitForSingleObject(process.hProcess, 60000);
    GetExitCodeProcess(process.hProcess, &outcome.exitCode);
    if (outcome.exitCode == STILL_ACTIVE) TerminateProcess(process.hProcess, 99);
    CloseHandle(process.hThread);
    CloseHandle(process.hProcess);
  } else {
    ADD_FAILURE() << "avdemo.exe does not start: " << GetLastError();
  }
  CloseHandle(errors);
  CloseHandle(nothing);
  std::ifstream file(errorFile, std::ios::binary);
  outcome.errors.assign(std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>());
  return outcome;
}

void append(std::vector<char>& bytes, std::uint32_t value, int count) {
  for (int i = 0; i < count; ++i) bytes.push_back(static_cast<char>(value >> (8 * i)));
}

/// A WAV file of 2,048 frames: a sine of 1 kHz at half of full scale in every channel.
std::vector<char> sineFile(std::uint32_t channels, std::uint32_t bits, std::uint32_t tag = 1) {
  constexpr std::uint32_t frames = 2048, rate = 48000;
  const std::uint32_t dataBytes = frames * channels * (bits / 8);
  std::vector<char> bytes = {'R', 'I', 'F', 'F'};
  append(bytes, 36 + dataBytes, 4);
  for (const char c : std::string("WAVEfmt ")) bytes.push_back(c);
  append(bytes, 16, 4);
  append(bytes, tag, 2);
  append(bytes, channels, 2);
  append(bytes, rate, 4);
  append(bytes, rate * channels * (bits / 8), 4);
  append(bytes, channels * (bits / 8), 2);
  append(bytes, bits, 2);
  for (const char c : std::string("data")) bytes.push_back(c);
  append(bytes, dataBytes, 4);
  for (std::uint32_t frame = 0; frame < frames; ++frame) {
    const double value = 0.5 * std::sin(6.283185307179586 * 1000 * frame / rate);
    const double scaled = value * std::pow(2.0, bits - 1) + (bits == 8 ? 128 : 0);
    for (std::uint32_t channel = 0; channel < channels; ++channel)
      append(bytes, static_cast<std::uint32_t>(static_cast<std::int64_t>(scaled)), static_cast<int>(bits / 8));
  }
  return bytes;
}

void writeFile(const fs::path& path, const std::vector<char>& bytes) {
  std::ofstream(path, std::ios::binary).write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
}

/// How often each colour (0x00RRGGBB) occurs in a picture, and its size.
struct Picture {
  unsigned width = 0;
  unsigned height = 0;
  std::map<std::uint32_t, int> colours;

  int count(std::uint32_t colour) const {
    const auto found = colours.find(colour);
    return found == colours.end() ? 0 : found->second;
  }
};

Picture loadPicture(const fs::path& path) {
  ULONG_PTR token = 0;
  const Gdiplus::GdiplusStartupInput input;
  Gdiplus::GdiplusStartup(&token, &input, nullptr);
  Picture picture;
  {
    Gdiplus::Bitmap bitmap(path.c_str());
    picture.width = bitmap.GetWidth();
    picture.height = bitmap.GetHeight();
    for (unsigned y = 0; y < picture.height; ++y) {
      for (unsigned x = 0; x < picture.width; ++x) {
        Gdiplus::Color colour;
        bitmap.GetPixel(static_cast<INT>(x), static_cast<INT>(y), &colour);
        ++picture.colours[colour.GetValue() & 0xFFFFFF];
      }
    }
  }
  Gdiplus::GdiplusShutdown(token);
  return picture;
}

class Demo : public testing::Test {
 protected:
  void SetUp() override {
    wchar_t temporary[MAX_PATH + 1] = {};
    GetTempPathW(ARRAYSIZE(temporary), temporary);
    static int tests = 0;
    folder = fs::path(temporary) /
             (L"avdemo-test-" + std::to_wstring(GetCurrentProcessId()) + L"-" + std::to_wstring(++tests));
    fs::create_directories(folder);
  }
  void TearDown() override {
    std::error_code ignored;
    fs::remove_all(folder, ignored);
  }

  int linesIn(const std::string& text) const { return static_cast<int>(std::count(text.begin(), text.end(), '\n')); }
  int picturesIn(const fs::path& where) const {
    int count = 0;
    for (const auto& entry : fs::directory_iterator(where)) count += entry.path().extension() == L".png";
    return count;
  }
  /// At other resolutions than 96 DPI the file names say so.
  std::wstring dpiSuffix() const {
    SetProcessDPIAware();
    HDC screen = GetDC(nullptr);
    const int dpi = GetDeviceCaps(screen, LOGPIXELSX);
    ReleaseDC(nullptr, screen);
    return dpi == 96 ? L"" : L"-" + std::to_wstring(dpi) + L"dpi";
  }

  fs::path folder;
};

class FullDemo : public Demo {};

TEST_F(Demo, AnswersEveryFileThatIsNoRecordingWithOneLineAndExitCode2) {
  writeFile(folder / L"empty.wav", {});
  const std::string text = "Just some text, long enough to hold a header, were it one. It is not, though.";
  writeFile(folder / L"text.wav", {text.begin(), text.end()});
  writeFile(folder / L"alaw.wav", sineFile(2, 8, 6));
  writeFile(folder / L"none.wav", sineFile(0, 16));
  writeFile(folder / L"many.wav", sineFile(19, 16));
  fs::create_directory(folder / L"folder.wav");
  const std::pair<const wchar_t*, const char*> cases[] = {
      {L"missing.wav", "missing.wav: no such file"},
      {L"empty.wav", "empty.wav: the file is empty"},
      {L"text.wav", "text.wav: not a WAV file"},
      {L"alaw.wav", "alaw.wav: samples in format 0x0006"},
      {L"none.wav", "none.wav: the header says 0 channels"},
      {L"many.wav", "many.wav: 19 channels"},
      {L"folder.wav", "folder.wav: a folder"},
  };
  for (const auto& [file, line] : cases) {
    const Outcome outcome = runDemo(folder, file);
    EXPECT_EQ(2u, outcome.exitCode) << line;
    EXPECT_THAT(outcome.errors, HasSubstr(line));
    EXPECT_EQ(1, linesIn(outcome.errors)) << outcome.errors;
  }
  EXPECT_EQ(0, picturesIn(folder));
}

TEST_F(Demo, RefusesACommandLineThatMakesNoSense) {
  for (const wchar_t* arguments :
       {L"--size 3x3", L"--size large", L"--out", L"--no-such-option", L"--look", L"--look no-such-look"}) {
    const Outcome outcome = runDemo(folder, arguments);
    EXPECT_EQ(2u, outcome.exitCode);
    EXPECT_EQ(1, linesIn(outcome.errors)) << outcome.errors;
  }
}

TEST_F(Demo, DrawsWaveformAndSpectrumOfARecordingWithANonAsciiName) {
  writeFile(folder / L"H\u00F6he \u03C3.wav", sineFile(2, 16));
  const Outcome outcome = runDemo(
      folder,
      L"--out pictures --size 400x240 --look waveform --look spectrum --look spectrum-dark \"H\u00F6he \u03C3.wav\"");
  EXPECT_EQ(0u, outcome.exitCode);
  EXPECT_EQ("", outcome.errors);
  const fs::path stem = folder / L"pictures" / L"H\u00F6he \u03C3-";
  const std::wstring end = dpiSuffix() + L".png";

  // Both channels are equal: the second curve (yellow by default) covers the first.
  const Picture waveform = loadPicture(stem.wstring() + L"waveform" + end);
  EXPECT_EQ(400u, waveform.width);
  EXPECT_EQ(240u, waveform.height);
  EXPECT_GT(waveform.count(0x000000), 400 * 240 / 4) << "background";
  EXPECT_GT(waveform.count(0xA9A9A9), 300) << "grid";
  EXPECT_GT(waveform.count(0xFFFF00), 1000) << "a sine of 21 periods is some 40 strokes of 60 pixels";

  const Picture spectrum = loadPicture(stem.wstring() + L"spectrum" + end);
  EXPECT_EQ(400u, spectrum.width);
  EXPECT_GT(spectrum.count(0xFFFF00), 200) << "a curve from edge to edge";
  EXPECT_NE(waveform.colours, spectrum.colours);

  const Picture coloured = loadPicture(stem.wstring() + L"spectrum-dark" + end);
  EXPECT_EQ(0, coloured.count(0xFFFF00));
  EXPECT_GT(coloured.count(0xFFA657), 200) << "the host's own line colour";
  EXPECT_EQ(3, picturesIn(folder / L"pictures"));
}

TEST_F(Demo, DrawsEighteenChannelsOf24Bits) {
  writeFile(folder / L"wide.wav", sineFile(18, 24));
  const Outcome outcome = runDemo(folder, L"--size 400x240 --look waveform wide.wav");
  EXPECT_EQ(0u, outcome.exitCode) << outcome.errors;
  // The last channels are black by default and drawn last.
  const Picture waveform = loadPicture((folder / L"wide-waveform").wstring() + dpiSuffix() + L".png");
  EXPECT_EQ(400u, waveform.width);
  EXPECT_GT(waveform.count(0xA9A9A9), 300) << "grid";
}

// A minute on a busy machine: there are half a hundred looks.
TEST_F(FullDemo, DrawsEveryLookOfEveryControlWithoutBeingAsked) {
  writeFile(folder / L"all.wav", sineFile(2, 16));
  const Outcome outcome = runDemo(folder, L"all.wav");
  EXPECT_EQ(0u, outcome.exitCode) << outcome.errors;
  EXPECT_EQ(19 + 18 + 12, picturesIn(folder));
  for (const wchar_t* look :
       {L"waveform", L"spectrum", L"octaves", L"bars-3", L"bars-4", L"bars-5", L"xy-6", L"xy-7", L"meter",
        L"meter-dots", L"meter-gradients", L"meter-mirrored-dark", L"meter-light", L"analyser", L"analyser-logarithmic",
        L"analyser-gradients", L"analyser-spots", L"analyser-mirrored-dark", L"analyser-smooth-light"}) {
    const Picture picture = loadPicture((folder / L"all-").wstring() + look + dpiSuffix() + L".png");
    EXPECT_GT(picture.colours.size(), 2u) << std::filesystem::path(look).string();
  }
}

TEST_F(Demo, ShowsTheTicksOfTheMeterHoldAndFallAfterTheSound) {
  writeFile(folder / L"tone.wav", sineFile(2, 16));
  const Outcome outcome = runDemo(folder, L"--look meter-peaks-dark tone.wav");
  EXPECT_EQ(0u, outcome.exitCode) << outcome.errors;
  ASSERT_EQ(4, picturesIn(folder));
  // Lit segments: the most with the sound, then ticks alone, and in the end none of the tone's.
  std::vector<int> lit;
  for (const wchar_t* number : {L"1", L"2", L"3", L"4"}) {
    const Picture picture =
        loadPicture((folder / L"tone-meter-peaks-dark-").wstring() + number + dpiSuffix() + L".png");
    int bright = 0;
    for (const auto& [colour, count] : picture.colours) bright += (colour & 0xFF) > 0x80 ? count : 0;
    lit.push_back(bright);
  }
  EXPECT_GT(lit[0], 3 * lit[1]);
  EXPECT_GT(lit[1], 0);
  EXPECT_LE(lit[2], lit[1]);
  EXPECT_LE(lit[3], lit[2]);
  EXPECT_LT(lit[3], lit[1]);
}

TEST_F(Demo, DrawsTheControlsAndPropertiesOfAList) {
  const std::string list =
      "# a comment\n\n"
      "plain\tview\t300x160\n"
      "grid\tview\t300x160\tGridColor=#FF0080\tScaleFont=Arial,9,700\n"
      "bars\tmeter\t201x100\tframes=1024\tLineCount=20\tLineLowColor=#0080FF\n";
  writeFile(folder / L"list.txt", {list.begin(), list.end()});
  const Outcome outcome = runDemo(folder, L"--pictures list.txt --out drawn");
  EXPECT_EQ(0u, outcome.exitCode) << outcome.errors;
  EXPECT_EQ(3, picturesIn(folder / L"drawn"));
  const auto picture = [&](const wchar_t* name) {
    return loadPicture((folder / L"drawn" / name).wstring() + dpiSuffix() + L".png");
  };
  EXPECT_EQ(300u, picture(L"plain").width);
  EXPECT_EQ(0, picture(L"plain").count(0xFF0080));
  EXPECT_GT(picture(L"grid").count(0xFF0080), 200);
  EXPECT_GT(picture(L"plain").count(0xF08080), 100) << "the first channel's curve";
  EXPECT_EQ(201u, picture(L"bars").width);
  EXPECT_EQ(100u, picture(L"bars").height);
  EXPECT_GT(picture(L"bars").count(0x0080FF), 100) << "lit segments";
}

TEST_F(FullDemo, DrawsWhatAListPutsAndLetsTickBehindTheSound) {
  const std::string list =
      "before\tview\t300x160\tDynamicRange=50\n"  // which the block sets anew
      "behind\tview\t300x160\tthen\tDynamicRange=50\n"
      "moving\tview\t300x160\tVisualizationType=2\n"
      "ticked\tview\t300x160\tVisualizationType=2\tticks=2\n"
      "again\tview\t300x160\tticks=2\tVisualizationType=2\n";
  writeFile(folder / L"list.txt", {list.begin(), list.end()});
  EXPECT_EQ(0u, runDemo(folder, L"--pictures list.txt").exitCode);
  const auto colours = [&](const wchar_t* name) {
    return loadPicture((folder / name).wstring() + dpiSuffix() + L".png").colours;
  };
  EXPECT_NE(colours(L"before"), colours(L"behind"));
  EXPECT_NE(colours(L"moving"), colours(L"ticked"));
  EXPECT_EQ(colours(L"again"), colours(L"ticked"));
}

TEST_F(FullDemo, RefusesListsAndPropertiesThatMakeNoSense) {
  const std::pair<const char*, DWORD> cases[] = {{"", 2},
                                                 {"name\tview\n", 2},
                                                 {"name\tclock\t300x160\n", 2},
                                                 {"name\tview\tlarge\n", 2},
                                                 {"name\tview\t300x160\tframes=0\n", 2},
                                                 {"name\tview\t300x160\tNoSuchProperty=1\n", 1},
                                                 {"name\tanalyser\t300x160\tMidPoint=101\n", 1}};
  for (const auto& [list, exitCode] : cases) {
    const std::string text = list;
    writeFile(folder / L"list.txt", {text.begin(), text.end()});
    const Outcome outcome = runDemo(folder, L"--pictures list.txt");
    EXPECT_EQ(exitCode, outcome.exitCode) << text;
    EXPECT_EQ(1, linesIn(outcome.errors)) << outcome.errors;
  }
  EXPECT_EQ(2u, runDemo(folder, L"--pictures missing.txt").exitCode);
  EXPECT_EQ(0, picturesIn(folder));
}

TEST_F(Demo, GoesOnAfterABadFile) {
  writeFile(folder / L"good.wav", sineFile(1, 8));
  const Outcome outcome = runDemo(folder, L"--size 200x120 --look waveform --look xy-7 missing.wav good.wav");
  EXPECT_EQ(2u, outcome.exitCode);
  EXPECT_EQ(1, linesIn(outcome.errors)) << outcome.errors;
  EXPECT_EQ(2, picturesIn(folder));
}

}  // namespace
