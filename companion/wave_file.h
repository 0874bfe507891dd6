#pragma once

#include "companion/automation_object.h"
#include "companion/file_source.h"
#include "wave/wave_header.h"
#include "wave/wave_reader.h"

#include <AudioBlocks.h>

#include <memory>
#include <string>

namespace av::companion {

/// `AudioBlocks.WaveFile`: a WAV file as blocks.
class WaveFileObject final : public AutomationObject<IWaveFile> {
 public:
  explicit WaveFileObject(IUnknown* outer) noexcept : AutomationObject(outer, L"WaveFile") {}

  // IWaveFile [control thread]
  STDMETHODIMP Open(BSTR path) override;
  STDMETHODIMP Close() override;
  STDMETHODIMP get_Path(BSTR* value) override;
  STDMETHODIMP get_Channels(LONG* value) override;
  STDMETHODIMP get_SampleRate(LONG* value) override;
  STDMETHODIMP get_BitsPerSample(LONG* value) override;
  STDMETHODIMP get_FloatingPoint(VARIANT_BOOL* value) override;
  STDMETHODIMP get_Frames(double* value) override;
  STDMETHODIMP get_Duration(double* value) override;
  STDMETHODIMP get_Position(double* value) override;
  STDMETHODIMP put_Position(double value) override;
  STDMETHODIMP NextBlock(LONG frames, IAudioBlock** block) override;

 private:
  /// What goes together with an open file.
  struct OpenFile {
    OpenFile(const std::wstring& path);

    std::wstring path;
    FileSource source;
    wave::WaveHeader header;
    wave::WaveReader reader;
  };

  OpenFile& opened();

  std::unique_ptr<OpenFile> m_file;
};

/// Makes one without a file; see ole::CreateFunction.
HRESULT createWaveFile(IUnknown* outer, REFIID iid, void** object);

}  // namespace av::companion
