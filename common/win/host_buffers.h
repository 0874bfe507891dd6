#pragma once

#include <windows.h>
#include <unknwn.h>

// The objects through which a host hands over audio. All three are implemented by the host, never here, and fixed by
// position: the controls call slots 10 to 12 of every buffer and 33 and 34 of IAudioFrameData, on the thread that
// called SendAudioData, and no other slot. The reserved ones belong to the host's media framework.
//
// Each method returns an HRESULT and writes through its argument. Whatever it hands out stays valid until the control
// releases the interface, which it does before SendAudioData returns.

namespace av {

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
  /// Slot 10: the first byte of the buffer; null drops the block.
  virtual HRESULT STDMETHODCALLTYPE GetBuffer(BYTE** buffer) = 0;
  /// Slot 11: bytes that the buffer has room for.
  virtual HRESULT STDMETHODCALLTYPE GetBufferSize(LONG* bytes) = 0;
  /// Slot 12: bytes of it that are valid.
  virtual HRESULT STDMETHODCALLTYPE GetDataSize(LONG* bytes) = 0;
};

/// Implemented by the host: samples in the buffer, their wave format apart.
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
  /// Slot 33: the first byte of a wave format block; null drops the block.
  virtual HRESULT STDMETHODCALLTYPE GetFormat(BYTE** format) = 0;
  /// Slot 34: bytes of that block.
  virtual HRESULT STDMETHODCALLTYPE GetFormatSize(ULONG* bytes) = 0;
};

/// Implemented by the host: the buffer begins with an 18-byte wave format header and its extra bytes; the samples
/// follow.
struct DECLSPEC_UUID("fdbe7010-e17f-4457-b384-94db9c482430") DECLSPEC_NOVTABLE IPackedAudioData
    : public IMediaDataBuffer {};

}  // namespace av

__CRT_UUID_DECL(av::IMediaDataBuffer, 0x00a21418, 0x9587, 0x433c, 0x8b, 0x72, 0xf8, 0xa0, 0xa9, 0xef, 0xc9, 0x9f)
__CRT_UUID_DECL(av::IAudioFrameData, 0x9b7fec49, 0x99a8, 0x4fef, 0xa9, 0xe2, 0x38, 0xe1, 0xab, 0xc8, 0x74, 0xdb)
__CRT_UUID_DECL(av::IPackedAudioData, 0xfdbe7010, 0xe17f, 0x4457, 0xb3, 0x84, 0x94, 0xdb, 0x9c, 0x48, 0x24, 0x30)
