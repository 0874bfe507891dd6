#pragma once

#include "common/lockable.h"

namespace av::test {

/// A recursive lock for one thread that counts how often it is taken and how deep it is held.
class CountingLock final : public Lockable {
 public:
  void lock() override {
    ++taken;
    ++depth;
  }
  void unlock() override { --depth; }

  int taken = 0;
  int depth = 0;
};

}  // namespace av::test
