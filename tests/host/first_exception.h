#pragma once

#include "support/win/scripted_audio_data.h"

#include <gtest/gtest.h>

#include <windows.h>

#include <oaidl.h>

namespace av::test {

/// Lets a control meet an exception, one that a host's buffer throws. The library's C++ run-time takes a little memory for
/// the first exception of a thread, and ends the process when there is none even for that: tests that refuse memory begin
/// with this.
inline void meetAnException(IDispatch* control) {
  constexpr DISPID sendAudioDataId = 0xaae62;
  support::AudioDataScript script;
  script.offersFrameData = true;
  script.failingCall = 0;
  support::ScriptedAudioData data(script);
  VARIANT argument;
  V_VT(&argument) = VT_UNKNOWN;
  V_UNKNOWN(&argument) = &data;
  DISPPARAMS parameters{&argument, nullptr, 1, 0};
  EXPECT_EQ(DISP_E_EXCEPTION, control->Invoke(sendAudioDataId, IID_NULL, LOCALE_USER_DEFAULT, DISPATCH_METHOD,
                                              &parameters, nullptr, nullptr, nullptr));
  EXPECT_EQ(0, data.references());
}

}  // namespace av::test
