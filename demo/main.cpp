// Hosts the controls as any program would, plays recordings into them and saves what their windows show.

#include "demo/failure.h"
#include "demo/looks.h"
#include "demo/options.h"
#include "demo/picture_list.h"
#include "demo/player.h"
#include "demo/wav_reader.h"
#include "demo/window_picture.h"
#include "host/container.h"
#include "host/create.h"
#include "host/message_pump.h"

#include <windows.h>

#include <algorithm>
#include <fstream>
#include <optional>
#include <set>
#include <string>

namespace avdemo {

namespace {

namespace fs = std::filesystem;
using Microsoft::WRL::ComPtr;

constexpr int exitFailure = 1;
constexpr int exitBadInput = 2;

/// One line for a stream: wide to a console, UTF-8 to a file or pipe.
void printLine(DWORD stream, const std::wstring& text) {
  const HANDLE handle = GetStdHandle(stream);
  const std::wstring line = text + L"\r\n";
  const int length = static_cast<int>(line.size());
  DWORD mode = 0, written = 0;
  if (GetConsoleMode(handle, &mode)) {
    WriteConsoleW(handle, line.c_str(), static_cast<DWORD>(length), &written, nullptr);
    return;
  }
  std::string utf8(line.size() * 3, '\0');
  const int bytes = WideCharToMultiByte(CP_UTF8, 0, line.c_str(), length, utf8.data(), static_cast<int>(utf8.size()),
                                        nullptr, nullptr);
  WriteFile(handle, utf8.data(), static_cast<DWORD>(bytes), &written, nullptr);
}

void complain(const std::wstring& text) { printLine(STD_ERROR_HANDLE, L"avdemo: " + text); }

/// Where controls come from: the library beside the program, or the registry.
class ControlSource {
 public:
  explicit ControlSource(bool registered) : m_registered(registered) {
    if (!registered)
      require(m_library.loadBesideProgram(L"QELAudioVisualization4.dll"), L"loading QELAudioVisualization4.dll");
  }
  ComPtr<IAudioVisualizationTemplate> create(REFCLSID classId) const {
    ComPtr<IAudioVisualizationTemplate> control;
    require(m_registered ? avhost::createRegistered(classId, control.GetAddressOf())
                         : m_library.create(classId, control.GetAddressOf()),
            L"creating the control");
    return control;
  }

 private:
  bool m_registered;
  avhost::ControlLibrary m_library;
};

WavResult readRecording(const fs::path& path) {
  std::error_code error;
  if (!fs::exists(path, error)) return {std::nullopt, "no such file"};
  if (fs::is_directory(path, error)) return {std::nullopt, "a folder, not a file"};
  std::ifstream file(path, std::ios::binary);
  const std::uintmax_t size = fs::file_size(path, error);
  if (!file || error) return {std::nullopt, "cannot be opened"};
  try {
    std::vector<std::uint8_t> bytes(static_cast<std::size_t>(size));
    file.read(reinterpret_cast<char*>(bytes.data()), static_cast<std::streamsize>(size));
    if (file.bad()) return {std::nullopt, "cannot be read"};
    bytes.resize(static_cast<std::size_t>(file.gcount()));
    return readWav(bytes);
  } catch (const std::bad_alloc&) {
    return {std::nullopt, "too large for this machine's memory"};
  }
}

class Demo {
 public:
  explicit Demo(const Options& options)
      : m_options(options), m_source(options.registered), m_dpi(avhost::screenDpi().cx) {
    std::error_code error;
    fs::create_directories(options.outFolder, error);
    if (!fs::is_directory(options.outFolder, error))
      throw Failure{L"cannot make the folder " + options.outFolder.wstring()};
  }

  /// Draws every look of a recording that was asked for.
  void draw(const std::wstring& name, const WavRecording& recording) {
    const std::wstring stem = unusedStem(name);
    for (const Look& look : allLooks()) {
      const auto& wanted = m_options.looks;
      if (!wanted.empty() && std::find(wanted.begin(), wanted.end(), look.name) == wanted.end()) continue;
      drawLook(look, recording, stem + L"-" + std::wstring(look.name));
    }
  }

  /// Draws one picture of a list.
  void draw(const ListedPicture& picture) {
    const ComPtr<IAudioVisualizationTemplate> control = m_source.create(*picture.control);
    avhost::Container container;
    require(container.open({.title = picture.name.c_str(), .clientSizePx = picture.sizePx, .positionPx = {0, 0}}),
            L"opening a window");
    require(container.host(control.Get()), L"hosting the control");
    prepare(picture, *control.Get());
    if (!container.controlWindow()) throw Failure{L"the control has no window"};
    InvalidateRect(container.controlWindow(), nullptr, FALSE);  // the meter would wait for its timer
    save(container.controlWindow(), picture.name);
    if (container.close() != 0) throw Failure{L"the control still holds its closed container"};
  }

 private:
  void drawLook(const Look& look, const WavRecording& recording, const std::wstring& name) {
    const ComPtr<IAudioVisualizationTemplate> control = m_source.create(*look.control);
    avhost::Container container;
    require(container.open({.title = look.name.data(), .clientSizePx = sizePx(look), .positionPx = {0, 0}}),
            L"opening a window");
    require(container.host(control.Get()), L"hosting the control");
    if (!container.controlWindow()) throw Failure{L"the control has no window"};
    const LONG blockFrames = look.prepare(*control.Get(), m_dpi);
    Player player(*control.Get(), recording, blockFrames);
    player.playToLoudestBlock();
    player.rest(look.restMs);
    for (unsigned tick = 0; tick < look.restTicks; ++tick) control->_OnTimer();
    if (look.momentsMs.empty()) save(container.controlWindow(), name);
    DWORD shownMs = 0;
    for (std::size_t i = 0; i < look.momentsMs.size(); ++i) {
      player.playSilence(look.momentsMs[i] - shownMs);
      shownMs = look.momentsMs[i];
      save(container.controlWindow(), name + L"-" + std::to_wstring(i + 1));
    }
    if (container.close() != 0) throw Failure{L"the control still holds its closed container"};
  }

  void save(HWND window, const std::wstring& name) {
    const std::wstring dpi = m_dpi == 96 ? L"" : L"-" + std::to_wstring(m_dpi) + L"dpi";
    const fs::path file = m_options.outFolder / (name + dpi + L".png");
    UpdateWindow(window);
    saveWindowPicture(window, file);
    printLine(STD_OUTPUT_HANDLE, file.wstring());
  }

  SIZE sizePx(const Look& look) const {
    if (m_options.sizePx) return *m_options.sizePx;
    return {MulDiv(look.sizePx.cx, m_dpi, 96), MulDiv(look.sizePx.cy, m_dpi, 96)};
  }

  /// Recordings of the same name in different folders must not overwrite each other's pictures.
  std::wstring unusedStem(const std::wstring& name) {
    std::wstring stem = name;
    for (int number = 2; !m_usedStems.insert(stem).second; ++number) stem = name + L"-" + std::to_wstring(number);
    return stem;
  }

  const Options& m_options;
  ControlSource m_source;
  int m_dpi;
  std::set<std::wstring> m_usedStems;
};

int run(const Options& options) {
  const avhost::Apartment apartment;
  require(apartment.result(), L"starting COM");
  const GdiplusSession gdiplus;
  std::optional<Demo> demo;  // made with the first recording: bad files are told even where no control can be made
  const auto draw = [&](const std::wstring& name, const WavRecording& recording) {
    if (!demo) demo.emplace(options);
    demo->draw(name, recording);
  };
  if (!options.pictures.empty()) {
    Demo listed(options);
    for (const ListedPicture& picture : options.pictures) listed.draw(picture);
    return 0;
  }
  bool allGood = true;
  if (options.recordings.empty()) draw(L"tones", generatedTones());
  for (const fs::path& path : options.recordings) {
    const WavResult result = readRecording(path);
    if (result.recording) {
      draw(path.stem().wstring(), *result.recording);
    } else {
      complain(path.wstring() + L": " + std::wstring(result.problem.begin(), result.problem.end()));
      allGood = false;
    }
  }
  return allGood ? 0 : exitBadInput;
}

}  // namespace

}  // namespace avdemo

int wmain(int argc, wchar_t** argv) {
  using namespace avdemo;
  Options options;
  try {
    options = parseOptions(argc, argv);
  } catch (const Failure& failure) {
    complain(failure.text);
    return exitBadInput;
  }
  if (options.help) {
    printLine(STD_OUTPUT_HANDLE, usage);
    return 0;
  }
  SetProcessDPIAware();  // otherwise the system pretends 96 DPI and stretches the window
  try {
    return run(options);
  } catch (const Failure& failure) {
    complain(failure.text);
  } catch (const std::exception& failure) {
    const std::string text = failure.what();
    complain(std::wstring(text.begin(), text.end()));
  }
  return exitFailure;
}
