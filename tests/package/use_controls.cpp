// Uses the registered controls as a program of somebody else's does, built from nothing but the unpacked package:
//   use_controls FOLDER
// Creates each control by its class identifier, shows it in a window, sends silence and takes a picture, sends noise,
// takes another and saves that in FOLDER. Prints a line for each control: its name, how many pixels differ, and the file
// that the control's code came from. Ends with 0 when every control came up and showed the noise.

#include <windows.h>

#include <QELAudioVisualization4.h>
#include <mmreg.h>
#include <wrl/client.h>

#include <cstdint>
#include <cstdio>
#include <cstring>
#include <random>
#include <string>
#include <vector>

#include "host/audio_buffers.h"
#include "host/container.h"
#include "host/create.h"
#include "host/message_pump.h"

namespace {

using Microsoft::WRL::ComPtr;

constexpr SIZE sizePx = {320, 200};
constexpr WAVEFORMATEX format{WAVE_FORMAT_PCM, 2, 44100, 176400, 4, 16, 0};

using Samples = std::vector<std::int16_t>;

const Samples silence(2 * 1024);

/// Noise, so that every band of every control has something to show.
Samples noise() {
  std::minstd_rand random(1);
  Samples samples(silence.size());
  for (std::int16_t& sample : samples) sample = static_cast<std::int16_t>(static_cast<int>(random() % 40001) - 20000);
  return samples;
}

template <class Interface>
bool send(Interface& control, const Samples& samples) {
  const auto bytes = static_cast<LONG>(samples.size() * sizeof samples[0]);
  return SUCCEEDED(control.SendAudioData(avhost::audioFrames(format, samples.data(), bytes).get()));
}

std::vector<std::uint32_t> pictureOf(HWND window) {
  HDC source = GetDC(window);
  HDC memory = CreateCompatibleDC(nullptr);
  BITMAPINFO info{};
  info.bmiHeader = {sizeof info.bmiHeader, sizePx.cx, sizePx.cy, 1, 32, BI_RGB, 0, 0, 0, 0, 0};
  void* bits = nullptr;
  HBITMAP bitmap = CreateDIBSection(memory, &info, DIB_RGB_COLORS, &bits, nullptr, 0);
  HGDIOBJ old = SelectObject(memory, bitmap);
  BitBlt(memory, 0, 0, sizePx.cx, sizePx.cy, source, 0, 0, SRCCOPY);
  GdiFlush();
  const auto* first = static_cast<const std::uint32_t*>(bits);
  std::vector<std::uint32_t> pixels(first, first + sizePx.cx * sizePx.cy);
  SelectObject(memory, old);
  DeleteObject(bitmap);
  DeleteDC(memory);
  ReleaseDC(window, source);
  return pixels;
}

bool save(const std::vector<std::uint32_t>& pixels, const std::wstring& path) {
  const auto bytes = static_cast<DWORD>(pixels.size() * sizeof pixels[0]);
  const BITMAPINFOHEADER header{sizeof header, sizePx.cx, sizePx.cy, 1, 32, BI_RGB, 0, 0, 0, 0, 0};
  std::FILE* file = _wfopen(path.c_str(), L"wb");
  if (file == nullptr) return false;
  const std::uint16_t mark = 0x4D42;
  const std::uint32_t rest[] = {54 + bytes, 0, 54};
  bool written = std::fwrite(&mark, sizeof mark, 1, file) == 1 && std::fwrite(rest, sizeof rest, 1, file) == 1;
  written = written && std::fwrite(&header, sizeof header, 1, file) == 1;
  written = written && std::fwrite(pixels.data(), bytes, 1, file) == 1;
  return std::fclose(file) == 0 && written;
}

/// The file that an object's code lies in, found through its table of methods; in UTF-8.
std::string fileOf(IUnknown* object) {
  HMODULE module = nullptr;
  wchar_t path[MAX_PATH] = L"";
  GetModuleHandleExA(GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS | GET_MODULE_HANDLE_EX_FLAG_UNCHANGED_REFCOUNT,
                     **reinterpret_cast<const char***>(object), &module);
  GetModuleFileNameW(module, path, MAX_PATH);
  char text[3 * MAX_PATH] = "";
  WideCharToMultiByte(CP_UTF8, 0, path, -1, text, sizeof text, nullptr, nullptr);
  return text;
}

template <class Interface>
bool use(const char* name, REFCLSID classId, const std::wstring& folder) {
  ComPtr<Interface> control;
  if (const HRESULT result = avhost::createRegistered(classId, control.GetAddressOf()); FAILED(result)) {
    std::printf("%s not created: 0x%08lx\n", name, static_cast<unsigned long>(result));
    return false;
  }
  avhost::Container container;
  if (FAILED(container.open({.title = L"use", .clientSizePx = sizePx})) || FAILED(container.host(control.Get()))) {
    std::printf("%s not hosted\n", name);
    return false;
  }
  if (!send(*control.Get(), silence)) return false;
  avhost::pumpMessages(300);
  const auto before = pictureOf(container.window());
  if (!send(*control.Get(), noise())) return false;
  std::vector<std::uint32_t> after;
  int changed = 0;
  avhost::pumpUntil(5000, [&] {
    after = pictureOf(container.window());
    changed = 0;
    for (std::size_t i = 0; i < after.size(); ++i) changed += (before[i] ^ after[i]) & 0xFFFFFF ? 1 : 0;
    return changed > 500;
  });
  const std::string file = fileOf(control.Get());
  std::printf("%s %d %s\n", name, changed, file.c_str());
  const bool saved = save(after, folder + L"\\" + std::wstring(name, name + std::strlen(name)) + L".bmp");
  return saved && container.close() == 0 && changed > 500;
}

}  // namespace

int wmain(int argumentCount, wchar_t** arguments) {
  if (argumentCount != 2) return 2;
  const avhost::Apartment apartment;
  const std::wstring folder = arguments[1];
  const bool view = use<IAudioVisualization4Type1>("view", CLSID_CAudioVisualization4Type1, folder);
  const bool meter = use<IAudioVisualization4Type2>("meter", CLSID_CAudioVisualization4Type2, folder);
  const bool analyser = use<IAudioVisualization4Type3>("analyser", CLSID_CAudioVisualization4Type3, folder);
  return view && meter && analyser ? 0 : 1;
}
