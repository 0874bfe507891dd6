#include "common/win/audio_call.h"
#include "type2/names.h"
#include "type2/win/control.h"

namespace av::type2 {

// Late binding, and the rows of the property table that are more than a value in the settings.

STDMETHODIMP CAudioVisualization4Type2::GetIDsOfNames(REFIID reserved, LPOLESTR* names, UINT count, LCID locale,
                                                      DISPID* ids) {
  // The type information looks at what it was given, and knows the methods' arguments, which the table of names does not.
  const HRESULT described = Dual::GetIDsOfNames(reserved, names, count, locale, ids);
  if (described == DISP_E_UNKNOWNINTERFACE || described == E_POINTER || described == E_INVALIDARG) return described;
  HRESULT result = S_OK;
  for (UINT i = 0; i < count; ++i) {
    // A member is what the table says: hosts also ask for accessors by their own names.
    if (i == 0 || ids[i] == DISPID_UNKNOWN) ids[i] = dispIdOfName(names[i]).value_or(DISPID_UNKNOWN);
    if (ids[i] == DISPID_UNKNOWN) result = DISP_E_UNKNOWNNAME;
  }
  return result;
}

STDMETHODIMP CAudioVisualization4Type2::Invoke(DISPID member, REFIID reserved, LCID locale, WORD flags,
                                               DISPPARAMS* arguments, VARIANT* result, EXCEPINFO* exception,
                                               UINT* argumentError) {
  const ole::KeepAlive alive(*this);
  if (member == dispidSendAudioData && IsEqualIID(reserved, IID_NULL)) {
    return invokeSendAudioData(flags, arguments, result, exception, argumentError,
                               [this](IUnknown* audioData) { return SendAudioData(audioData); });
  }
  return Dual::Invoke(member, reserved, locale, flags, arguments, result, exception, argumentError);
}

STDMETHODIMP CAudioVisualization4Type2::get_LineCount(LONG* value) {
  if (!value) return E_POINTER;
  *value = m_list.lines().count();
  return S_OK;
}

STDMETHODIMP CAudioVisualization4Type2::put_LineCount(LONG value) {
  const int widthPx = static_cast<int>(clientSize().value_or(SIZE{}).cx);
  return change(
      rule::lineCount.effects, [&] { m_list.lines().SetLineCount(clampLineCount(m_settings, value, widthPx)); }, [] {});
}

STDMETHODIMP CAudioVisualization4Type2::put_TickDelayTime(LONG value) {
  return change(
      rule::tickDelayTime.effects, [&] { applyPut(rule::tickDelayTime, m_settings, value); },
      [&] { m_list.lines().SetHoldTime(value); });
}

STDMETHODIMP CAudioVisualization4Type2::put_TickReleaseTime(LONG value) {
  return change(
      rule::tickReleaseTime.effects, [&] { applyPut(rule::tickReleaseTime, m_settings, value); },
      [&] { m_list.StartFall(value); });
}

STDMETHODIMP CAudioVisualization4Type2::put_TickVisible(VARIANT_BOOL value) {
  // Switching off waits for the fall thread's sleep, and dispatches messages meanwhile.
  return change(
      rule::tickVisible.effects, [&] { applyPut(rule::tickVisible, m_settings, value); },
      [&] { m_list.SetTickRunning(value != VARIANT_FALSE); });
}

STDMETHODIMP CAudioVisualization4Type2::get_AutoRepaint(VARIANT_BOOL* value) {
  if (!value) return E_POINTER;
  *value = autoRepaint;
  return S_OK;
}

}  // namespace av::type2
