// Failing host buffers: each failure is raised with the host's error information, and everything is given back.

#include "support/win/error_info.h"
#include "support/win/wave_bytes.h"
#include "unit/common/win/audio_input_fixture.h"

#include <comdef.h>

#include <gmock/gmock.h>

#include <cstddef>
#include <string>
#include <vector>

namespace av::test {
namespace {

using support::countedBytes;
using support::WaveHeader;
using support::operator+;
using testing::ElementsAreArray;

TEST(AudioInput, ANullArgumentIsAPointerError) {
  try {
    AudioInput input(nullptr);
    FAIL();
  } catch (const _com_error& error) {
    EXPECT_EQ(E_POINTER, error.Error());
  }
}

class AudioInputFailure : public testing::Test {
 protected:
  AudioDataScript everything() {
    AudioDataScript script = frames(format, samples);
    script.offersPackedData = true;
    script.packedData = packed(memory).packedData;
    return script;
  }

  GuardedBytes memory{WaveHeader{}.bytes() + countedBytes(40)};
  GuardedBytes format{WaveHeader{}.bytes()};
  GuardedBytes samples{countedBytes(8)};
};

TEST_F(AudioInputFailure, OfAnyCallRaisesItsResultAndEndsTheConversation) {
  const auto whole = conversation({packedConversation, frameConversation});
  for (std::size_t call = 0; call + 2 < whole.size(); ++call) {
    for (const HRESULT failure : {E_FAIL, E_NOTIMPL, E_OUTOFMEMORY, HRESULT{MAKE_HRESULT(1, FACILITY_ITF, 0x234)}}) {
      AudioDataScript script = everything();
      script.failingCall = static_cast<int>(call);
      script.failure = failure;
      ScriptedAudioData data(script);
      try {
        AudioInput input(&data);
        FAIL() << "call " << call;
      } catch (const _com_error& error) {
        EXPECT_EQ(failure, error.Error());
        EXPECT_EQ(nullptr, error.ErrorInfo());
      }
      EXPECT_EQ(0, data.references());
      const auto end = whole.begin() + static_cast<std::ptrdiff_t>(call) + 3;
      EXPECT_THAT(data.calls(), ElementsAreArray(std::vector<std::string>(whole.begin(), end)));
    }
  }
}

TEST_F(AudioInputFailure, SuccessCodesOtherThanOkAreNoFailure) {
  AudioDataScript script = everything();
  script.failingCall = 3;  // the packed data size stays unwritten: zero
  script.failure = S_FALSE;
  ScriptedAudioData data(script);
  unpack(data, [&](const av::AudioBlock* block) { ASSERT_NE(nullptr, block); });
}

TEST_F(AudioInputFailure, CarriesTheErrorInformationThatTheHostDeclares) {
  const auto info = av::support::makeErrorInfo(L"the disk is gone", L"Host.Buffer");
  ASSERT_NE(nullptr, info);
  const struct {
    int call;
    IID declared;
    bool carried;
  } cases[] = {
      {0, __uuidof(av::IPackedAudioData), true},
      {0, __uuidof(av::IMediaDataBuffer), true},
      {0, __uuidof(av::IAudioFrameData), false},
      {5, __uuidof(av::IAudioFrameData), true},
      {5, __uuidof(av::IMediaDataBuffer), false},
      {7, __uuidof(av::IMediaDataBuffer), true},
      {7, __uuidof(av::IAudioFrameData), true},
      {7, __uuidof(av::IPackedAudioData), false},
      {7, IID_IUnknown, false},
  };
  for (const auto& one : cases) {
    AudioDataScript script = everything();
    script.failingCall = one.call;
    script.declaresErrorInfoFor = {one.declared};
    script.errorInfo = info.Get();
    ScriptedAudioData data(script);
    try {
      AudioInput input(&data);
      FAIL();
    } catch (const _com_error& error) {
      Microsoft::WRL::ComPtr<IErrorInfo> carried;
      *carried.GetAddressOf() = error.ErrorInfo();
      EXPECT_EQ(one.carried ? info.Get() : nullptr, carried.Get()) << one.call;
      if (one.carried) {
        EXPECT_STREQ(L"the disk is gone", error.Description());
      }
    }
    EXPECT_EQ(0, data.references());
    // Information that was not declared is not touched; the rest has left the thread.
    EXPECT_EQ(one.carried ? nullptr : info.Get(), av::support::takeErrorInfo().Get());
  }
}

TEST_F(AudioInputFailure, WithoutErrorInformationOnTheThreadCarriesNone) {
  SetErrorInfo(0, nullptr);
  AudioDataScript script = everything();
  script.failingCall = 0;
  script.declaresErrorInfoFor = {__uuidof(av::IPackedAudioData)};
  ScriptedAudioData data(script);
  try {
    AudioInput input(&data);
    FAIL();
  } catch (const _com_error& error) {
    EXPECT_EQ(nullptr, error.ErrorInfo());
  }
  EXPECT_EQ(0, data.references());
}

}  // namespace
}  // namespace av::test
