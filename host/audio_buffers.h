#pragma once

// For hosts: audio in your own memory as an object that SendAudioData takes. Copy this one file; it needs C++11, the
// Windows headers, ole32 and uuid, and nothing else of this project.
//
//   const WAVEFORMATEX format = {WAVE_FORMAT_PCM, 2, 44100, 176400, 4, 16, 0};
//   const auto block = avhost::audioFrames(format, samples, sampleBytes);
//   control->SendAudioData(block.get());
//
// and for a buffer that begins with its own wave format header:
//
//   control->SendAudioData(avhost::packedAudio(buffer, bufferBytes).get());
//
// host/samples.h makes blocks from what is not such PCM yet: floating point, planar channels, packed 24 bits.
//
// The samples are not copied: they have to stay where they are until SendAudioData has returned, by which time the
// control has released the object. Objects are reference counted, may be sent any number of times and to any number of
// controls, and may be made, used and released on any thread. They carry the free-threaded marshaler, so that a control
// in another apartment of the process reads the memory itself instead of a proxy that knows no such interface.
//
// None of their methods fails, so SendAudioData never throws on their account. A host that writes its own objects and
// lets a method fail gets a C++ exception out of the 64-bit SendAudioData, which only code of the same compiler can
// catch.

#include <windows.h>
#include <mmreg.h>
#include <objbase.h>
#include <unknwn.h>

#include <algorithm>
#include <cstring>
#include <memory>

namespace avhost {

// The interfaces, by position: the controls call slots 10 to 12 of each and 33 and 34 of IAudioFrameData, nothing else.

/// Implemented by the host: bytes in memory.
struct DECLSPEC_UUID("00a21418-9587-433c-8b72-f8a0a9efc99f") DECLSPEC_NOVTABLE IMediaDataBuffer : public IUnknown {
 public:
  virtual HRESULT STDMETHODCALLTYPE reserved3() = 0;
  virtual HRESULT STDMETHODCALLTYPE reserved4() = 0;
  virtual HRESULT STDMETHODCALLTYPE reserved5() = 0;
  virtual HRESULT STDMETHODCALLTYPE reserved6() = 0;
  virtual HRESULT STDMETHODCALLTYPE reserved7() = 0;
  virtual HRESULT STDMETHODCALLTYPE reserved8() = 0;
  virtual HRESULT STDMETHODCALLTYPE reserved9() = 0;
  /// Slot 10: the first byte of the buffer. Null drops the block.
  virtual HRESULT STDMETHODCALLTYPE GetBuffer(BYTE** buffer) = 0;
  /// Slot 11: the size of the buffer in bytes. Read for packed data only.
  virtual HRESULT STDMETHODCALLTYPE GetBufferSize(LONG* bytes) = 0;
  /// Slot 12: how many bytes of it are valid; packed data counts its header in. Nothing behind them is read.
  virtual HRESULT STDMETHODCALLTYPE GetDataSize(LONG* bytes) = 0;
};

/// Implemented by the host: interleaved samples in the buffer, their wave format apart. Wins over IPackedAudioData when
/// an object offers both.
struct DECLSPEC_UUID("9b7fec49-99a8-4fef-a9e2-38e1abc874db") DECLSPEC_NOVTABLE IAudioFrameData
    : public IMediaDataBuffer {
 public:
  virtual HRESULT STDMETHODCALLTYPE reserved13() = 0;
  virtual HRESULT STDMETHODCALLTYPE reserved14() = 0;
  virtual HRESULT STDMETHODCALLTYPE reserved15() = 0;
  virtual HRESULT STDMETHODCALLTYPE reserved16() = 0;
  virtual HRESULT STDMETHODCALLTYPE reserved17() = 0;
  virtual HRESULT STDMETHODCALLTYPE reserved18() = 0;
  virtual HRESULT STDMETHODCALLTYPE reserved19() = 0;
  virtual HRESULT STDMETHODCALLTYPE reserved20() = 0;
  virtual HRESULT STDMETHODCALLTYPE reserved21() = 0;
  virtual HRESULT STDMETHODCALLTYPE reserved22() = 0;
  virtual HRESULT STDMETHODCALLTYPE reserved23() = 0;
  virtual HRESULT STDMETHODCALLTYPE reserved24() = 0;
  virtual HRESULT STDMETHODCALLTYPE reserved25() = 0;
  virtual HRESULT STDMETHODCALLTYPE reserved26() = 0;
  virtual HRESULT STDMETHODCALLTYPE reserved27() = 0;
  virtual HRESULT STDMETHODCALLTYPE reserved28() = 0;
  virtual HRESULT STDMETHODCALLTYPE reserved29() = 0;
  virtual HRESULT STDMETHODCALLTYPE reserved30() = 0;
  virtual HRESULT STDMETHODCALLTYPE reserved31() = 0;
  virtual HRESULT STDMETHODCALLTYPE reserved32() = 0;
  /// Slot 33: the first byte of a wave format block (a WAVEFORMATEX and its extra bytes). Null drops the block.
  virtual HRESULT STDMETHODCALLTYPE GetFormat(BYTE** format) = 0;
  /// Slot 34: the size of that block in bytes; at most 180 of them are read.
  virtual HRESULT STDMETHODCALLTYPE GetFormatSize(ULONG* bytes) = 0;
};

/// Implemented by the host: the buffer begins with a wave format header of 18 bytes and its extra bytes, and the
/// interleaved samples follow at once.
struct DECLSPEC_UUID("fdbe7010-e17f-4457-b384-94db9c482430") DECLSPEC_NOVTABLE IPackedAudioData
    : public IMediaDataBuffer {};

}  // namespace avhost

#ifdef __CRT_UUID_DECL  // MinGW: gives __uuidof its values
__CRT_UUID_DECL(avhost::IMediaDataBuffer, 0x00a21418, 0x9587, 0x433c, 0x8b, 0x72, 0xf8, 0xa0, 0xa9, 0xef, 0xc9, 0x9f)
__CRT_UUID_DECL(avhost::IAudioFrameData, 0x9b7fec49, 0x99a8, 0x4fef, 0xa9, 0xe2, 0x38, 0xe1, 0xab, 0xc8, 0x74, 0xdb)
__CRT_UUID_DECL(avhost::IPackedAudioData, 0xfdbe7010, 0xe17f, 0x4457, 0xb3, 0x84, 0x94, 0xdb, 0x9c, 0x48, 0x24, 0x30)
#endif

namespace avhost {

/// The slots of IMediaDataBuffer that nobody calls, for objects of your own. `Base` is or derives from such an interface.
template <class Base>
class UnusedBufferSlots : public Base {
 public:
  using Base::Base;

  HRESULT STDMETHODCALLTYPE reserved3() override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE reserved4() override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE reserved5() override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE reserved6() override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE reserved7() override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE reserved8() override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE reserved9() override { return E_NOTIMPL; }
};

/// The slots of IAudioFrameData that nobody calls, besides those of IMediaDataBuffer.
template <class Base>
class UnusedFrameSlots : public Base {
 public:
  using Base::Base;

  HRESULT STDMETHODCALLTYPE reserved13() override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE reserved14() override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE reserved15() override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE reserved16() override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE reserved17() override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE reserved18() override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE reserved19() override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE reserved20() override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE reserved21() override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE reserved22() override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE reserved23() override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE reserved24() override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE reserved25() override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE reserved26() override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE reserved27() override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE reserved28() override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE reserved29() override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE reserved30() override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE reserved31() override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE reserved32() override { return E_NOTIMPL; }
};

/// What the two buffer objects share: IUnknown, agility, and bytes in the caller's memory. `Interface` is the one that
/// the object is queried for. Lives on the heap and starts with one reference.
template <class Interface>
class BufferObject : public UnusedBufferSlots<Interface> {
 public:
  BufferObject(const BufferObject&) = delete;
  BufferObject& operator=(const BufferObject&) = delete;

  HRESULT STDMETHODCALLTYPE QueryInterface(REFIID iid, void** object) override {
    if (object == nullptr) return E_POINTER;
    *object = nullptr;
    if (IsEqualIID(iid, IID_IMarshal)) return queryMarshaler(object);
    if (!IsEqualIID(iid, IID_IUnknown) && !IsEqualIID(iid, __uuidof(IMediaDataBuffer)) &&
        !IsEqualIID(iid, __uuidof(Interface))) {
      return E_NOINTERFACE;
    }
    AddRef();
    *object = static_cast<Interface*>(this);
    return S_OK;
  }
  ULONG STDMETHODCALLTYPE AddRef() override { return static_cast<ULONG>(InterlockedIncrement(&m_references)); }
  ULONG STDMETHODCALLTYPE Release() override {
    const LONG left = InterlockedDecrement(&m_references);
    if (left == 0) delete this;
    return static_cast<ULONG>(left);
  }

  HRESULT STDMETHODCALLTYPE GetBuffer(BYTE** buffer) override {
    if (buffer == nullptr) return E_POINTER;
    *buffer = m_buffer;
    return S_OK;
  }
  HRESULT STDMETHODCALLTYPE GetBufferSize(LONG* bytes) override {
    if (bytes == nullptr) return E_POINTER;
    *bytes = m_bufferBytes;
    return S_OK;
  }
  HRESULT STDMETHODCALLTYPE GetDataSize(LONG* bytes) override {
    if (bytes == nullptr) return E_POINTER;
    *bytes = m_dataBytes;
    return S_OK;
  }

 protected:
  // The interface hands out pointers to writable bytes; the controls only read them.
  BufferObject(const void* buffer, LONG bufferBytes, LONG dataBytes) noexcept
      : m_buffer(static_cast<BYTE*>(const_cast<void*>(buffer))), m_bufferBytes(bufferBytes), m_dataBytes(dataBytes) {}
  /// Other bytes, all of them valid. Only while nobody else holds the object.
  void pointTo(const void* buffer, LONG bytes) noexcept {
    m_buffer = static_cast<BYTE*>(const_cast<void*>(buffer));
    m_bufferBytes = m_dataBytes = bytes;
  }
  /// Whether somebody besides the one who asks, who holds a reference, holds the object too.
  bool isShared() const noexcept {
    return InterlockedCompareExchange(const_cast<volatile LONG*>(&m_references), 0, 0) > 1;
  }
  virtual ~BufferObject() {
    if (m_marshaler != nullptr) static_cast<IUnknown*>(m_marshaler)->Release();
  }

 private:
  // Made when it is first asked for: most blocks never leave their apartment.
  HRESULT queryMarshaler(void** object) {
    if (m_marshaler == nullptr) {
      IUnknown* made = nullptr;
      if (FAILED(CoCreateFreeThreadedMarshaler(this, &made))) return E_NOINTERFACE;
      if (InterlockedCompareExchangePointer(&m_marshaler, made, nullptr) != nullptr) made->Release();
    }
    return static_cast<IUnknown*>(m_marshaler)->QueryInterface(IID_IMarshal, object);
  }

  volatile LONG m_references = 1;
  void* volatile m_marshaler = nullptr;
  BYTE* m_buffer;
  LONG m_bufferBytes;
  LONG m_dataBytes;
};

/// Samples in the caller's memory with a format beside them.
class AudioFrameData : public UnusedFrameSlots<BufferObject<IAudioFrameData>> {
 public:
  /// `format` is copied, with its extra bytes as far as 180 bytes reach; of plain PCM, whose size field is often left
  /// unset, the first 18 bytes only. `samples` is not copied.
  AudioFrameData(const WAVEFORMATEX& format, const void* samples, LONG sampleBytes) noexcept
      : UnusedFrameSlots(samples, sampleBytes, sampleBytes) {
    const std::size_t extraBytes = format.wFormatTag == WAVE_FORMAT_PCM ? 0 : format.cbSize;
    m_formatBytes = static_cast<ULONG>((std::min)(headerBytes + extraBytes, sizeof m_format));
    std::memcpy(m_format, &format, headerBytes);
    // The extra bytes follow the structure. A compiler that sees where `format` is declared would warn of a copy from
    // beyond its end, so the pointer is one that it cannot follow.
    const BYTE* const volatile extra = reinterpret_cast<const BYTE*>(&format) + headerBytes;
    std::memcpy(m_format + headerBytes, extra, m_formatBytes - headerBytes);
    if (extraBytes == 0) std::memset(m_format + headerBytes - sizeof format.cbSize, 0, sizeof format.cbSize);
  }
  AudioFrameData(const AudioFrameData&) = delete;
  AudioFrameData& operator=(const AudioFrameData&) = delete;

  HRESULT STDMETHODCALLTYPE GetFormat(BYTE** format) override {
    if (format == nullptr) return E_POINTER;
    *format = m_format;
    return S_OK;
  }
  HRESULT STDMETHODCALLTYPE GetFormatSize(ULONG* bytes) override {
    if (bytes == nullptr) return E_POINTER;
    *bytes = m_formatBytes;
    return S_OK;
  }

 protected:
  ~AudioFrameData() override = default;

 private:
  static constexpr std::size_t headerBytes = 18;
  static_assert(sizeof(WAVEFORMATEX) == headerBytes, "the header is packed");

  BYTE m_format[180] = {};
  ULONG m_formatBytes;
};

/// Header and samples in one buffer of the caller's.
class PackedAudioData final : public BufferObject<IPackedAudioData> {
 public:
  /// The buffer holds `bufferBytes` bytes, of which the first `dataBytes` (header included) are valid.
  PackedAudioData(const void* buffer, LONG bufferBytes, LONG dataBytes) noexcept
      : BufferObject(buffer, bufferBytes, dataBytes) {}

 private:
  ~PackedAudioData() override = default;
};

struct ReleaseBlock {
  void operator()(IUnknown* block) const noexcept { block->Release(); }
};

/// A reference to a block, released at the end of its scope; get() is what SendAudioData takes.
using Block = std::unique_ptr<IUnknown, ReleaseBlock>;

/// `sampleBytes` bytes of interleaved samples as an object with IAudioFrameData. Throws std::bad_alloc.
inline Block audioFrames(const WAVEFORMATEX& format, const void* samples, LONG sampleBytes) {
  return Block(new AudioFrameData(format, samples, sampleBytes));
}

/// A wave format header and samples in one buffer, all of it valid, as an object with IPackedAudioData. Throws
/// std::bad_alloc.
inline Block packedAudio(const void* buffer, LONG bufferBytes) {
  return Block(new PackedAudioData(buffer, bufferBytes, bufferBytes));
}

}  // namespace avhost
