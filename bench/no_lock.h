#pragma once

#include "common/lockable.h"

namespace av::bench {

/// Nobody else is there.
class NoLock final : public Lockable {
 public:
  void lock() override {}
  void unlock() override {}
};

}  // namespace av::bench
