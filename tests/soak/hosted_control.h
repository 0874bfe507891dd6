#pragma once

#include "tests/soak/random_properties.h"
#include "tests/soak/random_source.h"

#include "host/container.h"
#include "host/create.h"
#include "support/win/windowless_site.h"

#include <windows.h>

#include <QELAudioVisualization4.h>

#include <memory>
#include <optional>

namespace av::soak {

/// How a host keeps a control.
enum class Keeping {
  window,      ///< in a container's window, with a window of its own
  windowless,  ///< in a container's window, without one (the level meter takes one all the same)
  unsited,     ///< created and drawn off-screen only
};

/// What a host has a control draw on.
enum class Canvas { colour, monochrome, metafile };

/// A control in a host that does with it whatever hosts do. All methods on the control's thread, save that of the view and
/// of the meter `hear` may be called from any one other thread.
class HostedControl {
 public:
  HostedControl(const avhost::ControlLibrary& library, REFCLSID classId, Keeping keeping, RandomSource& random);
  ~HostedControl();
  HostedControl(const HostedControl&) = delete;
  HostedControl& operator=(const HostedControl&) = delete;

  void hear(IUnknown* block) { expect(m_control->SendAudioData(block) == S_OK, L"SendAudioData"); }
  void putProperty();
  /// Puts a property that has one whole number.
  void put(const wchar_t* property, LONG value);
  void resize();
  /// Draws off-screen in some size.
  void draw(Canvas canvas);
  /// Saves into a stream and loads from it, and from a damaged one.
  void persist();
  /// Mouse messages, verbs, hiding and showing.
  void disturb();

  /// The control's window; null without one.
  HWND window() const;
  /// Off-screen pictures drawn so far.
  int draws() const { return m_draws; }

 private:
  void activate();
  void expect(bool held, const wchar_t* what);

  RandomSource& m_random;
  Keeping m_keeping;
  avhost::Container m_container;
  std::unique_ptr<test::WindowlessSite> m_site;
  Microsoft::WRL::ComPtr<IAudioVisualizationTemplate> m_control;
  std::optional<PropertySet> m_properties;
  int m_draws = 0;
};

/// How often something was not as it should be, over the whole run; each was written to the error stream.
extern volatile LONG faults;

}  // namespace av::soak
