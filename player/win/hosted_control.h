#pragma once

#include "host/container.h"
#include "player/control_kind.h"
#include "player/property_rules.h"
#include "player/win/property_access.h"

#include <QELAudioVisualization4.h>

#include <wrl/client.h>

#include <string>
#include <vector>

namespace avplayer {

/// A property with its index, where it has one: what a row of the panel and a line of a preset is about.
struct Setting {
  const Property* property;
  const PropertyRule* rule;  ///< null: the table knows nothing of it
  Index index;

  /// As it stands in scripts: "LineColor(1)".
  std::wstring name() const { return index ? property->name + L"(" + std::to_wstring(*index) + L")" : property->name; }
  bool inPresets() const { return property->readable && property->writable && (!rule || rule->inPresets); }
};

/// One of the controls in its container window, with what its type information says.
class HostedControl {
 public:
  using Template = IAudioVisualizationTemplate;

  /// `parent` gets the container as a child window. An error names itself in the HRESULT.
  HRESULT open(ControlKind kind, const Microsoft::WRL::ComPtr<Template>& control, HWND parent);

  ControlKind kind() const noexcept { return m_kind; }
  Template& control() const noexcept { return *m_control.Get(); }
  avhost::Container& container() noexcept { return m_container; }
  const std::vector<Setting>& settings() const noexcept { return m_settings; }

  Answer get(const Setting& setting, std::string& text) const {
    return getText(*m_control.Get(), *setting.property, setting.index, text);
  }
  /// A meter that no longer sizes itself gets its place back.
  Answer put(const Setting& setting, std::string_view text);
  /// A whole number by its name; 0 where there is none.
  std::int32_t number(std::wstring_view name) const;

  /// As programs create it: "CAudioVisualization4Type1".
  std::wstring className() const;
  /// What the type library says of it.
  std::wstring help() const;

  /// Gives the control back before its library goes.
  void close() {
    m_container.close();
    m_control.Reset();
  }

 private:
  ControlKind m_kind = ControlKind::view;
  Microsoft::WRL::ComPtr<Template> m_control;
  avhost::Container m_container;
  std::vector<Property> m_properties;
  std::vector<Setting> m_settings;
};

}  // namespace avplayer
