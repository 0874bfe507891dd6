#pragma once

namespace av {

/// A lock that the portable core can take without knowing what it is made of; works with std::lock_guard.
class Lockable {
 public:
  virtual void lock() = 0;
  virtual void unlock() = 0;

 protected:
  ~Lockable() = default;
};

}  // namespace av
