#include "player/win/hosted_control.h"

#include "player/value_text.h"
#include "player/win/text.h"

namespace avplayer {

HRESULT HostedControl::open(ControlKind kind, const Microsoft::WRL::ComPtr<Template>& control, HWND parent) {
  m_kind = kind;
  m_control = control;
  HRESULT result = m_container.open({.clientSizePx = {320, 200}, .parent = parent, .positionPx = {0, 0}});
  if (SUCCEEDED(result)) result = m_container.host(control.Get());
  if (FAILED(result)) return result;
  m_properties = readProperties(*control.Get());
  for (const Property& property : m_properties) {
    const PropertyRule* rule = findRule(kind, narrow(property.name));
    if (!property.indexed) {
      m_settings.push_back({&property, rule, {}});
      continue;
    }
    const LONG first = rule ? rule->firstIndex : 0, last = rule ? rule->lastIndex : 0;
    for (LONG index = first; index <= last; ++index) m_settings.push_back({&property, rule, index});
  }
  return S_OK;
}

std::wstring HostedControl::className() const {
  return L"CAudioVisualization4Type" + std::to_wstring(indexOf(m_kind) + 1);
}

std::wstring HostedControl::help() const { return interfaceHelp(*m_control.Get()); }

Answer HostedControl::put(const Setting& setting, std::string_view text) {
  const Answer answer = putText(*m_control.Get(), *setting.property, setting.index, text);
  if (SUCCEEDED(answer.result) && setting.property->name == L"AutoSize")
    SendMessageW(m_container.window(), WM_SIZE, SIZE_RESTORED, 0);
  return answer;
}

std::int32_t HostedControl::number(std::wstring_view name) const {
  for (const Setting& setting : m_settings) {
    std::string text;
    if (setting.property->name == name && SUCCEEDED(get(setting, text).result)) return parseWhole(text).value_or(0);
  }
  return 0;
}

}  // namespace avplayer
