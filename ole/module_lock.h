#pragma once

namespace av::ole {

/// Counts what keeps the DLL loaded: living objects, class factories that somebody holds, and their LockServer calls.
/// Any thread may call it. Implemented by the DLL's module object, and by test programs.
struct ModuleLock {
  virtual void lockModule() noexcept = 0;
  virtual void unlockModule() noexcept = 0;

 protected:
  ~ModuleLock() = default;
};

/// The lock of the DLL or program that this code is linked into; the binary's own module code implements it.
ModuleLock& moduleLock() noexcept;  // [any thread]

/// One count on a module lock for as long as it lives. An object has it as its first member, so that the count goes
/// back after everything else of the object is gone.
class ModuleReference {
 public:
  explicit ModuleReference(ModuleLock& lock = moduleLock()) noexcept : m_lock(lock) { m_lock.lockModule(); }
  ~ModuleReference() { m_lock.unlockModule(); }
  ModuleReference(const ModuleReference&) = delete;
  ModuleReference& operator=(const ModuleReference&) = delete;

 private:
  ModuleLock& m_lock;
};

}  // namespace av::ole
