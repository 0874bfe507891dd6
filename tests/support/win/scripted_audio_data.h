#pragma once

#include "host/audio_buffers.h"

#include <windows.h>
#include <oaidl.h>

#include <algorithm>
#include <string>
#include <vector>

namespace av::support {

/// What one of the two interfaces answers, call by call: the last entry of a list repeats. A null pointer or any size
/// is answered as it stands, so that a script can lie.
struct BufferScript {
  std::vector<BYTE*> buffers{nullptr};
  std::vector<LONG> bufferSizes{0};
  std::vector<LONG> dataSizes{0};
  std::vector<BYTE*> formats{nullptr};  ///< frame data only
  std::vector<ULONG> formatSizes{0};    ///< frame data only
};

struct AudioDataScript {
  bool offersFrameData = false;
  bool offersPackedData = false;
  BufferScript frameData;
  BufferScript packedData;
  int failingCall = -1;  ///< position among the calls of the two interfaces, from 0; −1: none fails
  HRESULT failure = E_FAIL;
  std::vector<IID> declaresErrorInfoFor;
  IErrorInfo* errorInfo = nullptr;     ///< put on the thread by the failing call; borrowed
  bool garbageOnRefusedQuery = false;  ///< a refused query leaves a wild pointer behind
};

/// A host object that follows a script and writes down every call in order: "query frame", "packed GetBuffer", ...
/// Calls of a reserved slot are written down as well. Lives on the test's stack; references() must be 0 at the end.
class ScriptedAudioData final : public IUnknown {
 public:
  explicit ScriptedAudioData(AudioDataScript script) : m_script(std::move(script)) {}
  virtual ~ScriptedAudioData() = default;
  ScriptedAudioData(const ScriptedAudioData&) = delete;
  ScriptedAudioData& operator=(const ScriptedAudioData&) = delete;

  const std::vector<std::string>& calls() const { return m_calls; }
  int references() const { return m_references; }
  int mostReferences() const { return m_mostReferences; }

  HRESULT STDMETHODCALLTYPE QueryInterface(REFIID iid, void** object) override {
    *object = nullptr;
    if (IsEqualIID(iid, IID_IUnknown)) {
      *object = static_cast<IUnknown*>(this);
    } else if (IsEqualIID(iid, __uuidof(avhost::IAudioFrameData))) {
      m_calls.push_back("query frame");
      if (m_script.offersFrameData) *object = &m_frameData;
    } else if (IsEqualIID(iid, __uuidof(avhost::IPackedAudioData))) {
      m_calls.push_back("query packed");
      if (m_script.offersPackedData) *object = &m_packedData;
    } else if (IsEqualIID(iid, IID_ISupportErrorInfo)) {
      if (!m_script.declaresErrorInfoFor.empty()) *object = &m_support;
    } else {
      m_calls.push_back("query something else");
    }
    if (*object != nullptr) {
      AddRef();
      return S_OK;
    }
    if (m_script.garbageOnRefusedQuery) *object = reinterpret_cast<void*>(std::uintptr_t{0xDEAD0});
    return E_NOINTERFACE;
  }
  ULONG STDMETHODCALLTYPE AddRef() override {
    m_mostReferences = (std::max)(m_mostReferences, ++m_references);
    return static_cast<ULONG>(m_references);
  }
  ULONG STDMETHODCALLTYPE Release() override { return static_cast<ULONG>(--m_references); }

 private:
  template <class T>
  HRESULT answer(const char* interfaceName, const char* method, const std::vector<T>& answers, std::size_t& asked,
                 T* result) {
    m_calls.push_back(std::string(interfaceName) + " " + method);
    if (m_methodCalls++ == m_script.failingCall) {
      if (m_script.errorInfo != nullptr) SetErrorInfo(0, m_script.errorInfo);
      return m_script.failure;
    }
    *result = answers[(std::min)(asked++, answers.size() - 1)];
    return S_OK;
  }

  template <class Interface>
  class Part : public Interface {
   public:
    Part(ScriptedAudioData& owner, const BufferScript& script, const char* name)
        : m_owner(owner), m_answers(script), m_name(name) {}
    virtual ~Part() = default;

    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID iid, void** object) override {
      return m_owner.QueryInterface(iid, object);
    }
    ULONG STDMETHODCALLTYPE AddRef() override { return m_owner.AddRef(); }
    ULONG STDMETHODCALLTYPE Release() override { return m_owner.Release(); }
    HRESULT STDMETHODCALLTYPE reserved3() override { return reserved(); }
    HRESULT STDMETHODCALLTYPE reserved4() override { return reserved(); }
    HRESULT STDMETHODCALLTYPE reserved5() override { return reserved(); }
    HRESULT STDMETHODCALLTYPE reserved6() override { return reserved(); }
    HRESULT STDMETHODCALLTYPE reserved7() override { return reserved(); }
    HRESULT STDMETHODCALLTYPE reserved8() override { return reserved(); }
    HRESULT STDMETHODCALLTYPE reserved9() override { return reserved(); }
    HRESULT STDMETHODCALLTYPE GetBuffer(BYTE** buffer) override {
      return m_owner.answer(m_name, "GetBuffer", m_answers.buffers, m_buffersAsked, buffer);
    }
    HRESULT STDMETHODCALLTYPE GetBufferSize(LONG* bytes) override {
      return m_owner.answer(m_name, "GetBufferSize", m_answers.bufferSizes, m_bufferSizesAsked, bytes);
    }
    HRESULT STDMETHODCALLTYPE GetDataSize(LONG* bytes) override {
      return m_owner.answer(m_name, "GetDataSize", m_answers.dataSizes, m_dataSizesAsked, bytes);
    }

   protected:
    HRESULT reserved() {
      m_owner.m_calls.push_back(std::string(m_name) + " reserved slot");
      return E_NOTIMPL;
    }

    ScriptedAudioData& m_owner;
    const BufferScript& m_answers;
    const char* m_name;
    std::size_t m_buffersAsked = 0, m_bufferSizesAsked = 0, m_dataSizesAsked = 0;
  };

  class FrameData final : public Part<avhost::IAudioFrameData> {
   public:
    using Part::Part;
    HRESULT STDMETHODCALLTYPE reserved13() override { return reserved(); }
    HRESULT STDMETHODCALLTYPE reserved14() override { return reserved(); }
    HRESULT STDMETHODCALLTYPE reserved15() override { return reserved(); }
    HRESULT STDMETHODCALLTYPE reserved16() override { return reserved(); }
    HRESULT STDMETHODCALLTYPE reserved17() override { return reserved(); }
    HRESULT STDMETHODCALLTYPE reserved18() override { return reserved(); }
    HRESULT STDMETHODCALLTYPE reserved19() override { return reserved(); }
    HRESULT STDMETHODCALLTYPE reserved20() override { return reserved(); }
    HRESULT STDMETHODCALLTYPE reserved21() override { return reserved(); }
    HRESULT STDMETHODCALLTYPE reserved22() override { return reserved(); }
    HRESULT STDMETHODCALLTYPE reserved23() override { return reserved(); }
    HRESULT STDMETHODCALLTYPE reserved24() override { return reserved(); }
    HRESULT STDMETHODCALLTYPE reserved25() override { return reserved(); }
    HRESULT STDMETHODCALLTYPE reserved26() override { return reserved(); }
    HRESULT STDMETHODCALLTYPE reserved27() override { return reserved(); }
    HRESULT STDMETHODCALLTYPE reserved28() override { return reserved(); }
    HRESULT STDMETHODCALLTYPE reserved29() override { return reserved(); }
    HRESULT STDMETHODCALLTYPE reserved30() override { return reserved(); }
    HRESULT STDMETHODCALLTYPE reserved31() override { return reserved(); }
    HRESULT STDMETHODCALLTYPE reserved32() override { return reserved(); }
    HRESULT STDMETHODCALLTYPE GetFormat(BYTE** format) override {
      return m_owner.answer(m_name, "GetFormat", m_answers.formats, m_formatsAsked, format);
    }
    HRESULT STDMETHODCALLTYPE GetFormatSize(ULONG* bytes) override {
      return m_owner.answer(m_name, "GetFormatSize", m_answers.formatSizes, m_formatSizesAsked, bytes);
    }

   private:
    std::size_t m_formatsAsked = 0, m_formatSizesAsked = 0;
  };

  using PackedData = Part<avhost::IPackedAudioData>;

  class ErrorInfoSupport final : public ISupportErrorInfo {
   public:
    explicit ErrorInfoSupport(ScriptedAudioData& owner) : m_owner(owner) {}
    virtual ~ErrorInfoSupport() = default;
    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID iid, void** object) override {
      return m_owner.QueryInterface(iid, object);
    }
    ULONG STDMETHODCALLTYPE AddRef() override { return m_owner.AddRef(); }
    ULONG STDMETHODCALLTYPE Release() override { return m_owner.Release(); }
    HRESULT STDMETHODCALLTYPE InterfaceSupportsErrorInfo(REFIID iid) override {
      const auto& declared = m_owner.m_script.declaresErrorInfoFor;
      return std::any_of(declared.begin(), declared.end(),
                         [&](const IID& one) { return IsEqualIID(one, iid) != FALSE; })
                 ? S_OK
                 : S_FALSE;
    }

   private:
    ScriptedAudioData& m_owner;
  };

  AudioDataScript m_script;
  std::vector<std::string> m_calls;
  int m_references = 0;
  int m_mostReferences = 0;
  int m_methodCalls = 0;
  FrameData m_frameData{*this, m_script.frameData, "frame"};
  PackedData m_packedData{*this, m_script.packedData, "packed"};
  ErrorInfoSupport m_support{*this};
};

}  // namespace av::support
