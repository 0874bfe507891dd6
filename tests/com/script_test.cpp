// The registered controls as scripts see them: late bound, in the system's script host.

#include "support/win/dll.h"
#include "support/win/run_program.h"

#include <windows.h>

#include <QELAudioVisualization4.h>
#include <gtest/gtest.h>
#include <objbase.h>

#include <algorithm>
#include <string>

namespace av::test {
namespace {

/// Sets the default value of a key below HKEY_CLASSES_ROOT.
void setClassesText(const std::wstring& key, const std::wstring& text) {
  ASSERT_EQ(ERROR_SUCCESS, RegSetKeyValueW(HKEY_CLASSES_ROOT, key.c_str(), nullptr, REG_SZ, text.c_str(),
                                           static_cast<DWORD>((text.size() + 1) * sizeof(wchar_t))));
}

/// The script host is a program of its own that no manifest of ours reaches, so the classes are registered for the
/// length of a test.
class Scripts : public testing::Test {
 protected:
  void SetUp() override {
    ASSERT_EQ(S_OK, CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED));
    ASSERT_EQ(S_OK, m_dll.registerServer());
    // JScript has no other way to a class than a ProgID, and the library's own one belongs to the last class: a host
    // that scripts the others gives them names of its own.
    setClassesText(L"AvTest.View\\CLSID", L"{62D89C1C-1C5B-467C-944F-F822CB0D6278}");
    setClassesText(L"AvTest.Meter\\CLSID", L"{E9992E04-5743-40C9-AF9D-826530A45F53}");
  }
  void TearDown() override {
    for (const wchar_t* key : {L"AvTest.View", L"AvTest.Meter"}) RegDeleteTreeW(HKEY_CLASSES_ROOT, key);
    EXPECT_EQ(S_OK, m_dll.unregisterServer());
    CoUninitialize();
  }

  /// What a script writes, a line feed after each line. The host must end well.
  static std::string outputOf(const wchar_t* extension, const std::string& script) {
    const TemporaryFile file(extension, script);
    const ProgramRun run = runProgram(L"cscript.exe //nologo \"" + file.path() + L"\"");
    EXPECT_EQ(0u, run.exitCode) << run.output << run.errors;
    std::string output = run.output;
    output.erase(std::remove(output.begin(), output.end(), '\r'), output.end());
    return output;
  }
  static std::string vbScript(const std::string& script) { return outputOf(L".vbs", script); }
  static std::string jScript(const std::string& script) { return outputOf(L".js", script); }

  LoadedDll m_dll;
};

class VbScript : public Scripts {
 protected:
  static std::string withView(const std::string& script) {
    return vbScript(R"(Option Explicit
Dim view
Set view = GetObject("new:{62D89C1C-1C5B-467C-944F-F822CB0D6278}")
Sub Say(text)
  WScript.Echo text
End Sub
Sub SayError()
  If Err.Number = 0 Then
    Say "no error"
  Else
    Say Err.Source & ": " & Err.Description
  End If
  Err.Clear
End Sub
Sub SayNumber()
  Say Err.Number
  Err.Clear
End Sub
Sub SayRefused()
  If Err.Number = 0 Then Say "no error" Else Say "refused"
  Err.Clear
End Sub
)" + script);
  }
};

TEST_F(VbScript, CreatesEachClassByItsIdentifier) {
  EXPECT_EQ("IAudioVisualization4Type1\nIAudioVisualization4Type2\nIAudioVisualization4Type3\n", vbScript(R"(
WScript.Echo TypeName(GetObject("new:{62D89C1C-1C5B-467C-944F-F822CB0D6278}"))
WScript.Echo TypeName(GetObject("new:{E9992E04-5743-40C9-AF9D-826530A45F53}"))
WScript.Echo TypeName(GetObject("new:{2F06E1AA-C0F0-488C-A6DD-799053CA7140}"))
)"));
}

TEST_F(VbScript, GetsTheClassThatWasRegisteredLastFromTheSharedProgId) {
  EXPECT_EQ("IAudioVisualization4Type3\nIAudioVisualization4Type3\n", vbScript(R"(
WScript.Echo TypeName(CreateObject("QELAudioVisualization4.AudioVisualizati"))
WScript.Echo TypeName(CreateObject("QELAudioVisualization4.AudioVisualiza.1"))
)"));
}

TEST_F(VbScript, FindsNamesInAnyLetterCase) {
  EXPECT_EQ("1234\n1234\n1234\n", withView(R"(
view.GRIDCOLOR = 1234
Say view.GridColor
Say view.gridcolor
Say view.gRiDcOlOr
)"));
}

TEST_F(VbScript, CoercesWhatItPuts) {
  EXPECT_EQ("255\n2\n3\n0\n-1\n0\n-1\n", withView(R"(
view.BackColor = "255"
Say view.BackColor
view.VisualizationType = 2.4
Say view.VisualizationType
view.VisualizationType = "2.6"
Say view.VisualizationType
view.GridVisible = False
Say CLng(view.GridVisible)
view.GridVisible = 7
Say CLng(view.GridVisible)
view.GridVisible = "False"
Say CLng(view.GridVisible)
view.GridVisible = "True"
Say CLng(view.GridVisible)
)"));
}

TEST_F(VbScript, ReadsAndWritesTheIndexedProperty) {
  EXPECT_EQ("8421616\n65535\n65535\n255\n255\n", withView(R"(
Say view.LineColor(1)
view.LineColor(3) = "65535"
Say view.LineColor(3)
Say view.LineColor("3")
view.LineColor(0) = 255
Say view.LineColor(0)
Say view.TextColor
)"));
}

TEST_F(VbScript, CallsMethodsByName) {
  EXPECT_EQ("done\n5\n", withView(R"(
view.Repaint
view.repaint
view.SetAdditionalParam "any name", 12
view.SendAudioData Nothing
Say "done"
Dim value
value = 5
view.GetAdditionalParam "any name", value
Say value
)"));
}

TEST_F(VbScript, ReadsWhyAChannelWasRefusedAndGoesOn) {
  const std::string refused =
      "QELAudioVisualization4.CAudioVisualization4Type1: LineColor: the channel must be 0 to 18.\n";
  EXPECT_EQ(refused + refused + refused + "no error\n17\n", withView(R"(
On Error Resume Next
view.LineColor(18) = 17
view.LineColor(99) = 5
SayError
Say view.LineColor(19)
SayError
Say view.LineColor(-1)
SayError
Dim colour
colour = view.LineColor(18)
SayError
Say colour
)"));
}

TEST_F(VbScript, IsRefusedWhatCannotBeCoercedAndGoesOn) {
  // The texts of these are the script engine's own, in the language of its user.
  EXPECT_EQ("refused\nrefused\nrefused\nrefused\nrefused\nArial 6\n0\n", withView(R"(
On Error Resume Next
view.BackColor = "red"
SayRefused
view.ScaleFont = 5
SayRefused
Set view.ScaleFont = view
SayRefused
view.NoSuchProperty = 1
SayRefused
Say view.LineColor
SayRefused
On Error Goto 0
Say view.ScaleFont.Name & " " & view.ScaleFont.Size
Say view.BackColor
)"));
}

TEST_F(VbScript, SurvivesWhatItSendsInPlaceOfABlock) {
  EXPECT_EQ("no error\nno error\nrefused\nrefused\nrefused\nrefused\n90\n", withView(R"(
On Error Resume Next
view.SendAudioData Nothing
SayError
view.SendAudioData view
SayError
view.SendAudioData 5
SayRefused
view.SendAudioData "block"
SayRefused
view.SendAudioData
SayRefused
view.SendAudioData view, view
SayRefused
Say view.DynamicRange
)"));
}

TEST_F(VbScript, DrivesTheLevelMeter) {
  EXPECT_EQ("100 1 True\n3 100 True\n5\n20 4096\nrefused\nrefused\n0\n3\nno error\n", vbScript(R"(
Option Explicit
Dim meter, text
Set meter = GetObject("new:{E9992E04-5743-40C9-AF9D-826530A45F53}")
WScript.Echo meter.LineCount & " " & CInt(meter.LineInterval) & " " & meter.AutoRepaint
meter.LineCount = 1
meter.HighPoint = 150
meter.AutoRepaint = False
WScript.Echo meter.LineCount & " " & meter.highpoint & " " & meter.AUTOREPAINT
meter.BackColor = &H80000005
WScript.Echo meter.BackColor
meter.LineCount = "20"
meter.FFTWindowSize = 4096
WScript.Echo meter.LineCount & " " & meter.FFTWindowSize
On Error Resume Next
meter.LineCount = "many"
If Err.Number <> 0 Then WScript.Echo "refused"
Err.Clear
meter.NoSuchProperty = 1
If Err.Number <> 0 Then WScript.Echo "refused"
Err.Clear
meter.TickVisible = 0
WScript.Echo CInt(meter.TickVisible)
meter.LineCount = 3
WScript.Echo meter.get_LineCount
Err.Clear
meter.SendAudioData Nothing
meter.SendAudioData meter
meter.SetAdditionalParam "anything", 5
meter.Repaint
If Err.Number = 0 Then WScript.Echo "no error"
)"));
}

TEST_F(VbScript, DrivesTheSpectrumAnalyser) {
  EXPECT_EQ(
      "512 60 True\nHann False 11\nKaiser True 4.5\n"
      "MidPoint: the value must be 0 to 100.\nFFTLength: the value must be a power of two.\n"
      "BackColor: the system knows no such colour.\n60 512 255\nrefused\nArial\nbold\nno error\n",
      vbScript(R"(
Option Explicit
Dim analyser
Set analyser = GetObject("new:{2F06E1AA-C0F0-488C-A6DD-799053CA7140}")
WScript.Echo analyser.FFTLength & " " & analyser.LineCount & " " & analyser.AutoRepaint
WScript.Echo analyser.FFTWindowName & " " & analyser.HasWindowParam & " " & analyser.FFTWindowCount
analyser.FFTWindowType = "10"
analyser.FFTWindowParam = 4.5
WScript.Echo analyser.fftwindowname & " " & analyser.HASWINDOWPARAM & " " & analyser.FFTWindowParam
analyser.BackColor = 255
On Error Resume Next
analyser.MidPoint = 101
WScript.Echo Err.Description
Err.Clear
analyser.FFTLength = 1000
WScript.Echo Err.Description
Err.Clear
analyser.BackColor = &H800000FF
WScript.Echo Err.Description
Err.Clear
WScript.Echo analyser.MidPoint & " " & analyser.FFTLength & " " & analyser.BackColor
analyser.FFTWindowName = "Boxcar"
If Err.Number <> 0 Then WScript.Echo "refused"
Err.Clear
WScript.Echo analyser.ScaleFont.Name
analyser.ScaleFont.Bold = True
If analyser.ScaleFont.Bold Then WScript.Echo "bold"
Set analyser.ScaleFont = Nothing
Set analyser.ScaleFont = analyser
analyser.ScaleFont = analyser.ScaleFont
analyser.SendAudioData Nothing
analyser.SendAudioData analyser
analyser.SetAdditionalParam "anything", 5
analyser.Repaint
If Err.Number = 0 Then WScript.Echo "no error" Else WScript.Echo Err.Description
)"));
}

class JScript : public Scripts {
 protected:
  static std::string withView(const std::string& script) {
    return jScript(R"(
function say(text) { WScript.Echo(text); }
function attempt(work) {
  try { say(work()); } catch (error) { say((error.number >>> 0).toString(16) + ": " + error.description); }
}
function attemptRefused(work) {
  try { work(); say("accepted"); } catch (error) { say("refused"); }
}
var view = new ActiveXObject("AvTest.View");
)" + script);
  }
};

TEST_F(JScript, CreatesControlsByTheSharedProgIdAndByNamesOfTheHostsOwn) {
  EXPECT_EQ("created\n1024\n", jScript(R"(
new ActiveXObject("QELAudioVisualization4.AudioVisualizati").Repaint();
new ActiveXObject("QELAudioVisualization4.AudioVisualiza.1").Repaint();
new ActiveXObject("AvTest.Meter").Repaint();
WScript.Echo("created");
WScript.Echo(new ActiveXObject("AvTest.View").FFTWindowSize);
)"));
}

TEST_F(JScript, CoercesWhatItPutsAndFindsNamesInAnyLetterCase) {
  EXPECT_EQ("255\n0\n1\n60\n62\n", withView(R"(
attempt(function () { view.BackColor = "255"; return view.backcolor; });
attempt(function () { view.gridVisible = false; return Number(view.GridVisible); });
attempt(function () { view.GRIDVISIBLE = "true"; return Number(view.GridVisible); });
attempt(function () { view.DynamicRange = 60.4; return view.DynamicRange; });
attempt(function () { view.DynamicRange = "61.6"; return view.DynamicRange; });
)"));
}

TEST_F(JScript, ReadsAndWritesTheIndexedProperty) {
  EXPECT_EQ("17\n17\n255\n", withView(R"(
attempt(function () { view.LineColor(3) = 17; return view.LineColor(3); });
attempt(function () { return view.LineColor("3"); });
attempt(function () { view.LineColor(0) = 255; return view.TextColor; });
)"));
}

TEST_F(JScript, ReplacesTheFont) {
  EXPECT_EQ("regular\nbold\n", withView(R"(
attempt(function () { return view.ScaleFont.Bold ? "bold" : "regular"; });
attempt(function () {
  var font = new ActiveXObject("StdFont");
  font.Bold = true;
  view.ScaleFont = font;
  return view.ScaleFont.Bold ? "bold" : "regular";
});
)"));
}

TEST_F(JScript, ReadsWhyAChannelWasRefusedAndGoesOn) {
  EXPECT_EQ(
      "80070057: LineColor: the channel must be 0 to 18.\n80070057: LineColor: the channel must be 0 to 18.\n"
      "0\n",
      withView(R"(
attempt(function () { return view.LineColor(99); });
attempt(function () { view.LineColor(-1) = 5; return "put"; });
attempt(function () { return view.LineColor(18); });
)"));
}

TEST_F(JScript, IsRefusedWhatCannotBeCoercedAndGoesOn) {
  EXPECT_EQ("refused\nrefused\nrefused\nrefused\nrefused\nrefused\nrefused\n90 Arial\n", withView(R"(
attemptRefused(function () { view.DynamicRange = "x"; });
attemptRefused(function () { view.DynamicRange = 1e10; });
attemptRefused(function () { view.ScaleFont = view; });
attemptRefused(function () { view.ScaleFont = 5; });
attemptRefused(function () { view.NoSuchProperty = 1; });
attemptRefused(function () { view.SendAudioData(5); });
attemptRefused(function () { view.SendAudioData(); });
say(view.DynamicRange + " " + view.ScaleFont.Name);
)"));
}

TEST_F(JScript, SendsObjectsThatAreNoBlocks) {
  // Its null is no object reference to COM: a script that means "no block" has to be VBScript with Nothing.
  EXPECT_EQ("refused\naccepted\naccepted\n90\n", withView(R"(
attemptRefused(function () { view.SendAudioData(null); });
attemptRefused(function () { view.SendAudioData({}); });
attemptRefused(function () { view.SendAudioData(view); });
say(view.DynamicRange);
)"));
}

TEST_F(JScript, DrivesTheLevelMeter) {
  EXPECT_EQ("1\n3\n20\non\n", withView(R"(
var meter = new ActiveXObject("AvTest.Meter");
say(meter.LineInterval);
meter.LineCount = -7;
say(meter.LineCount);
meter.linecount = 20;
say(meter.LINECOUNT);
meter.AutoRepaint = false;
say(meter.AutoRepaint ? "on" : "off");
)"));
}

TEST_F(JScript, DrivesTheSpectrumAnalyser) {
  EXPECT_EQ("512\n1024\nBlackman\nrefused\n1024\nno\n", withView(R"(
var analyser = new ActiveXObject("QELAudioVisualization4.AudioVisualizati");
say(analyser.FFTLength);
analyser.FFTLength = 1024;
say(analyser.fftlength);
analyser.FFTWindowType = 5;
say(analyser.FFTWindowName);
try { analyser.FFTLength = 1000; say("done"); } catch (error) { say("refused"); }
say(analyser.FFTLength);
say(analyser.HasWindowParam ? "yes" : "no");
)"));
}

}  // namespace
}  // namespace av::test
