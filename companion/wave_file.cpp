#include "companion/wave_file.h"

#include "companion/audio_block.h"
#include "companion/path_argument.h"

#include <cmath>

namespace av::companion {

namespace {

/// The file's header; throws a Failure that says why there is none.
wave::WaveHeader headerOf(FileSource& source, const std::wstring& path) {
  wave::HeaderResult result = wave::readHeader(source);
  if (result.header) return std::move(*result.header);
  const std::wstring problem(result.problem.begin(), result.problem.end());  // ASCII
  throw Failure(HRESULT_FROM_WIN32(ERROR_BAD_FORMAT), problem + L": " + shownPath(path));
}

}  // namespace

WaveFileObject::OpenFile::OpenFile(const std::wstring& name)
    : path(name), source(name), header(headerOf(source, name)), reader(source, header) {}

WaveFileObject::OpenFile& WaveFileObject::opened() {
  if (!m_file) throw badMoment(L"no file is open.");
  return *m_file;
}

STDMETHODIMP WaveFileObject::Open(BSTR path) {
  return guard(L"Open", [&] {
    m_file.reset();
    m_file = std::make_unique<OpenFile>(pathFrom(path));
  });
}

STDMETHODIMP WaveFileObject::Close() {
  return guard(L"Close", [&] { m_file.reset(); });
}

STDMETHODIMP WaveFileObject::get_Path(BSTR* value) {
  return answer(L"Path", value, [&] {
    const std::wstring path = m_file ? m_file->path : std::wstring();
    BSTR const text = SysAllocStringLen(path.data(), static_cast<UINT>(path.size()));
    if (!text) throw std::bad_alloc();
    return text;
  });
}

STDMETHODIMP WaveFileObject::get_Channels(LONG* value) {
  return answer(L"Channels", value, [&] { return LONG{opened().header.channels}; });
}

STDMETHODIMP WaveFileObject::get_SampleRate(LONG* value) {
  return answer(L"SampleRate", value, [&] { return static_cast<LONG>(opened().header.sampleRateHz); });
}

STDMETHODIMP WaveFileObject::get_BitsPerSample(LONG* value) {
  return answer(L"BitsPerSample", value, [&] { return LONG{opened().header.bitsPerSample}; });
}

STDMETHODIMP WaveFileObject::get_FloatingPoint(VARIANT_BOOL* value) {
  return answer(L"FloatingPoint", value,
                [&] { return opened().header.kind == wave::SampleKind::floatingPoint ? VARIANT_TRUE : VARIANT_FALSE; });
}

STDMETHODIMP WaveFileObject::get_Frames(double* value) {
  return answer(L"Frames", value, [&] { return static_cast<double>(opened().reader.frameCount()); });
}

STDMETHODIMP WaveFileObject::get_Duration(double* value) {
  return answer(L"Duration", value, [&] {
    const OpenFile& file = opened();
    return static_cast<double>(file.reader.frameCount()) / file.header.sampleRateHz;
  });
}

STDMETHODIMP WaveFileObject::get_Position(double* value) {
  return answer(L"Position", value, [&] { return static_cast<double>(opened().reader.position()); });
}

STDMETHODIMP WaveFileObject::put_Position(double value) {
  return guard(L"Position", [&] {
    wave::WaveReader& reader = opened().reader;
    if (!(value >= 0 && value <= static_cast<double>(reader.frameCount())) || value != std::floor(value))
      throw badArgument(L"it must be a whole number, 0 to " + std::to_wstring(reader.frameCount()) + L".");
    reader.setPosition(static_cast<std::uint64_t>(value));
  });
}

STDMETHODIMP WaveFileObject::NextBlock(LONG frames, IAudioBlock** block) {
  return answer(L"NextBlock", block, [&]() -> IAudioBlock* {
    wave::WaveReader& reader = opened().reader;
    const std::uint64_t most = reader.mostFramesOfABlock();
    if (frames < 1 || static_cast<std::uint64_t>(frames) > most)
      throw badArgument(L"a block of this file has 1 to " + std::to_wstring(most) + L" frames.");
    std::vector<std::uint8_t> stored = reader.read(static_cast<std::uint64_t>(frames));
    if (stored.empty()) return nullptr;
    return makeAudioBlock({reader.blockFormat(), std::move(stored)});
  });
}

HRESULT createWaveFile(IUnknown* outer, REFIID iid, void** object) {
  return ole::createObject<WaveFileObject>(outer, iid, object);
}

}  // namespace av::companion
