#include "bench/win/bench_control.h"

#include "host/container.h"
#include "wave/wave_reader.h"

#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <iterator>

namespace av::bench {

namespace {

constexpr int widthPx = 800;
constexpr int heightPx = 400;

const CLSID& classOf(const std::string& shown) {
  if (shown.rfind("frame-type1", 0) == 0) return CLSID_CAudioVisualization4Type1;
  if (shown == "frame-type2") return CLSID_CAudioVisualization4Type2;
  need(shown == "frame-type3", "one of the controls");
  return CLSID_CAudioVisualization4Type3;
}

LONG lookOf(const std::string& shown) {
  if (shown == "frame-type1-waveform") return 1;
  if (shown == "frame-type1-bars") return 3;
  if (shown == "frame-type1-balance") return 7;
  need(shown == "frame-type1", "a look of the view");
  return 2;
}

}  // namespace

void need(bool succeeded, const char* what) {
  if (succeeded) return;
  std::fprintf(stderr, "control_bench: %s failed\n", what);
  std::exit(1);
}

Library::Library() {
  need(SUCCEEDED(m_library.loadBesideProgram(L"QELAudioVisualization4.dll")), "loading the library");
}

ComPtr<IAudioVisualizationTemplate> Library::create(const std::string& shown) const {
  ComPtr<IAudioVisualizationTemplate> control;
  need(SUCCEEDED(m_library.create(classOf(shown), control.GetAddressOf())), "creating the control");
  ComPtr<IAudioVisualization4Type1> view;
  if (SUCCEEDED(control.As(&view))) need(SUCCEEDED(view->put_VisualizationType(lookOf(shown))), "choosing the look");
  return control;
}

Recording::Recording(const char* path, std::size_t blockFrames) {
  std::ifstream file(path, std::ios::binary);
  const std::vector<char> text{std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
  const std::vector<std::uint8_t> bytes(text.begin(), text.end());
  wave::MemorySource source(bytes);
  const wave::HeaderResult result = wave::readHeader(source);
  need(result.header.has_value(), "reading the recording");
  wave::WaveReader reader(source, *result.header);
  const wave::PcmFormat& format = reader.blockFormat();
  const auto frameBytes = static_cast<DWORD>(format.storedFrameBytes());
  m_format = {WAVE_FORMAT_PCM,
              format.channels,
              format.sampleRateHz,
              format.sampleRateHz * frameBytes,
              static_cast<WORD>(frameBytes),
              static_cast<WORD>(format.storedBits()),
              0};
  m_samples = reader.read(reader.frameCount());
  m_blockBytes = blockFrames * frameBytes;
  need(m_samples.size() >= m_blockBytes, "finding a block in the recording");
}

void Recording::sendTo(IAudioVisualizationTemplate& control) const {
  const auto block = avhost::audioFrames(m_format, m_samples.data() + m_next, static_cast<LONG>(m_blockBytes));
  need(SUCCEEDED(control.SendAudioData(block.get())), "sending a block");
}

void Recording::advance() {
  m_next += m_blockBytes;
  if (m_next + m_blockBytes > m_samples.size()) m_next = 0;
}

Offscreen::Offscreen(const ComPtr<IAudioVisualizationTemplate>& control)
    : m_control(control), m_context(CreateCompatibleDC(nullptr)) {
  BITMAPINFO info{};
  info.bmiHeader = {sizeof info.bmiHeader, widthPx, -heightPx, 1, 32, BI_RGB, 0, 0, 0, 0, 0};
  m_bitmap = CreateDIBSection(m_context, &info, DIB_RGB_COLORS, &m_bits, nullptr, 0);
  need(m_bitmap && m_bits, "making a picture");
  m_before = SelectObject(m_context, m_bitmap);
  ComPtr<IPersistStreamInit> persist;
  need(SUCCEEDED(control.As(&m_view)) && SUCCEEDED(control.As(&persist)), "asking for interfaces");
  const SIZE dpi = avhost::screenDpi();
  SIZEL extent{avhost::himetricFromPixels(widthPx, dpi.cx), avhost::himetricFromPixels(heightPx, dpi.cy)};
  ComPtr<IOleObject> object;
  need(SUCCEEDED(control.As(&object)) && SUCCEEDED(object->SetExtent(DVASPECT_CONTENT, &extent)), "giving an extent");
}

Offscreen::~Offscreen() {
  SelectObject(m_context, m_before);
  DeleteObject(m_bitmap);
  DeleteDC(m_context);
}

void Offscreen::frame(Recording& recording) {
  recording.sendTo(*m_control.Get());
  recording.advance();
  m_control->_OnTimer();
  const RECTL bounds{0, 0, widthPx, heightPx};
  need(
      SUCCEEDED(m_view->Draw(DVASPECT_CONTENT, -1, nullptr, nullptr, nullptr, m_context, &bounds, nullptr, nullptr, 0)),
      "drawing");
  GdiFlush();
}

std::uint64_t Offscreen::fingerprint() const {
  const auto* pixel = static_cast<const std::uint32_t*>(m_bits);
  std::uint64_t value = 14695981039346656037u;
  for (int i = 0; i < widthPx * heightPx; ++i) value = (value ^ (pixel[i] & 0xFFFFFF)) * 1099511628211u;
  return value;
}

double processorTimeMs() {
  FILETIME created, ended, kernel, user;
  GetProcessTimes(GetCurrentProcess(), &created, &ended, &kernel, &user);
  const auto ticks = [](const FILETIME& time) {
    return static_cast<double>(static_cast<std::uint64_t>(time.dwHighDateTime) << 32 | time.dwLowDateTime);
  };
  return (ticks(kernel) + ticks(user)) / 1e4;  // of 100 ns
}

}  // namespace av::bench
