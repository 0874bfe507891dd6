#pragma once

#include "ole/object.h"

namespace av::ole {

class Control;

/// An interface of a control's framework: a Delegating part that knows its control. The definitions live in .cpp files,
/// where Control is complete.
template <class Interface>
class ControlPart : public Delegating<Interface> {
 public:
  /// `control` is under construction; only its address is taken.
  template <class DerivedControl>
  explicit ControlPart(DerivedControl& control) noexcept : Delegating<Interface>(control), m_control(control) {}

 protected:
  ~ControlPart() = default;
  Control& control() const noexcept { return m_control; }

 private:
  Control& m_control;
};

}  // namespace av::ole
