// The companion in the system's script host: the samples as they are, and arrays that scripts make.

#include "host/companion_test.h"
#include "host/window_picture.h"
#include "support/wav_file.h"
#include "support/win/picture_file.h"
#include "support/win/run_program.h"

#include <cmath>
#include <filesystem>

namespace av::test {
namespace {

using namespace av::support;

constexpr double sampleRateHz = 44100;

/// Half a second of a tone, in both channels.
Bytes tone(double frequencyHz) {
  std::vector<std::int16_t> samples;
  for (int frame = 0; frame < 22050; ++frame) {
    const double phase = 6.283185307179586 * frequencyHz * frame / sampleRateHz;
    const auto sample = static_cast<std::int16_t>(std::lround(20000 * std::sin(phase)));
    samples.insert(samples.end(), {sample, sample});
  }
  return wavFile({}, bytesOf(samples));
}

/// Only the companion is registered: it finds the controls beside itself.
class CompanionScripts : public testing::Test {
 protected:
  void SetUp() override {
    ASSERT_EQ(S_OK, m_apartment.result());
    ASSERT_EQ(S_OK, LoadedDll().unregisterServer());
    ASSERT_EQ(S_OK, m_companion.registerServer());
  }
  void TearDown() override {
    EXPECT_EQ(S_OK, m_companion.unregisterServer());
    EXPECT_EQ(S_OK, LoadedDll().unregisterServer());
  }

  static std::string outputOf(const std::wstring& script, const std::wstring& arguments = {}) {
    const ProgramRun run = runProgram(L"cscript.exe //nologo \"" + script + L"\" " + arguments);
    EXPECT_EQ(0u, run.exitCode) << run.output << run.errors;
    std::string output = run.output;
    output.erase(std::remove(output.begin(), output.end(), '\r'), output.end());
    return output;
  }
  static std::string run(const wchar_t* extension, const std::string& script) {
    const TemporaryFile file(extension, script);
    return outputOf(file.path());
  }
  static std::string vbScript(const std::string& script) { return run(L".vbs", script); }
  static std::string jScript(const std::string& script) { return run(L".js", script); }

  /// Runs a sample on a tone and looks where the spectrum's peak stands.
  static void expectSpectrumFrom(const wchar_t* sample) {
    const std::wstring script = std::filesystem::path(AV_SAMPLES_FOLDER).wstring() + L"\\" + sample;
    for (const double frequencyHz : {3000.0, 12000.0}) {
      const TemporaryFile sound(L".wav", asText(tone(frequencyHz)));
      const TemporaryFile png(L".png");
      EXPECT_EQ("", outputOf(script, L"\"" + sound.path() + L"\" \"" + png.path() + L"\""));
      const auto picture = readPng(std::filesystem::path(png.path()).string());
      ASSERT_TRUE(picture);
      EXPECT_EQ(640, picture->width);
      EXPECT_EQ(360, picture->height);
      // The curve of the second channel, which lies over that of the first, is yellow, and nothing else is.
      const auto peak = std::find(picture->pixels.begin(), picture->pixels.end(), 0xFFFF00u);
      ASSERT_NE(picture->pixels.end(), peak);
      const auto at = std::distance(picture->pixels.begin(), peak);
      const int plotWidth = plotWidthOf(*picture);
      EXPECT_NEAR(frequencyHz / (sampleRateHz / 2) * plotWidth, static_cast<double>(at % 640), 3) << plotWidth;
      EXPECT_GT(80, at / 640) << "close to full scale";
    }
  }

  /// What the scale's strip leaves of the top row, which its texts do not reach.
  static int plotWidthOf(const WindowPicture& picture) {
    int width = picture.width;
    while (width > 0 && picture.at(width - 1, 0) == picture.at(picture.width - 1, 0)) --width;
    return width;
  }

  avhost::Apartment m_apartment;
  LoadedDll m_companion{besideProgram(companionName)};
};

TEST_F(CompanionScripts, TheVbScriptSampleMakesAPictureOfASpectrum) { expectSpectrumFrom(L"vbscript\\spectrum.vbs"); }

TEST_F(CompanionScripts, TheJScriptSampleMakesAPictureOfASpectrum) { expectSpectrumFrom(L"jscript\\spectrum.js"); }

TEST_F(CompanionScripts, ReadTheTextsOfRefusals) {
  EXPECT_EQ(
      "AudioBlocks.WaveFile: WaveFile.Open: there is no such file: C:\\x.wav\n"
      "AudioBlocks.WaveFile: WaveFile.Frames: no file is open.\n",
      vbScript(R"(On Error Resume Next
Set wave = CreateObject("AudioBlocks.WaveFile")
wave.Open "C:\x.wav"
WScript.Echo Err.Source & ": " & Err.Description
Err.Clear
frames = wave.Frames
WScript.Echo Err.Source & ": " & Err.Description
)"));
  EXPECT_EQ("80070002 WaveFile.Open: there is no such file: C:\\x.wav\n", jScript(R"(
var wave = new ActiveXObject("AudioBlocks.WaveFile");
try { wave.Open("C:\\x.wav"); } catch (e) { WScript.Echo((e.number >>> 0).toString(16) + " " + e.description); }
)"));
}

TEST_F(CompanionScripts, FillABlockOf10000FramesFromAVbScriptArray) {
  EXPECT_EQ("10000 2 0.5\n0.25 -1 0\n", vbScript(R"(
Dim samples(19999)
For i = 0 To 19998
  samples(i) = 0.25
Next
samples(1) = -1.5
Set block = CreateObject("AudioBlocks.AudioBlock")
block.SetFormat 2, 20000, 32
block.SetSamples samples
WScript.Echo block.Frames & " " & block.Channels & " " & block.Duration
WScript.Echo block.Sample(9999, 0) & " " & block.Sample(0, 1) & " " & block.Sample(9999, 1)
)"));
}

TEST_F(CompanionScripts, FillABlockOf10000FramesFromAJScriptArray) {
  EXPECT_EQ("10000\n16384 -32768\n", jScript(R"(
var samples = [];
for (var i = 0; i < 20000; ++i) samples.push(i % 2 ? -32768 : 16384);
var block = new ActiveXObject("AudioBlocks.AudioBlock");
block.SetIntegers(samples);
WScript.Echo(block.Frames);
WScript.Echo(block.Sample(9999, 0) * 32768 + " " + block.Sample(9999, 1) * 32768);
)"));
}

TEST_F(CompanionScripts, ReadAFileToItsEnd) {
  const TemporaryFile sound(L".wav", asText(tone(440)));
  const std::string path(sound.path().begin(), sound.path().end());
  EXPECT_EQ("22050 22050 22\n", vbScript("path = \"" + path + R"("
Set wave = CreateObject("AudioBlocks.WaveFile")
wave.Open path
Do
  Set block = wave.NextBlock(1024)
  If block Is Nothing Then Exit Do
  frames = frames + block.Frames
  blocks = blocks + 1
Loop
WScript.Echo frames & " " & wave.Position & " " & blocks
)"));
  std::string doubled = path;
  for (std::size_t at = 0; (at = doubled.find('\\', at)) != std::string::npos; at += 2) doubled.insert(at, "\\");
  EXPECT_EQ("22050 22\n", jScript("var path = \"" + doubled + R"(";
var wave = new ActiveXObject("AudioBlocks.WaveFile"), block, frames = 0, blocks = 0;
wave.Open(path);
while ((block = wave.NextBlock(1024)) != null) { frames += block.Frames; ++blocks; }
WScript.Echo(frames + " " + blocks);
)"));
}

TEST_F(CompanionScripts, CreateEachControlByNumber) {
  EXPECT_EQ("IAudioVisualization4Type1\nIAudioVisualization4Type2\nIAudioVisualization4Type3\n", vbScript(R"(
Set controls = CreateObject("AudioBlocks.Controls")
For number = 1 To 3
  WScript.Echo TypeName(controls.CreateControl(number))
Next
)"));
}

}  // namespace
}  // namespace av::test
