#pragma once

#include "support/win/import_probe.h"

#include <windows.h>

#include <memory>
#include <vector>

namespace av::test {

/// Functions that a loaded module imports and that fail when the test says so: those that give memory, or those that make
/// drawing objects or draw. The module must not be in a call of one of them when the object comes or goes. Only one may
/// live.
class FailingImports {
 public:
  enum class Kind { memory, drawing };
  enum class Failing { once, forEver };

  FailingImports(HMODULE module, Kind kind);
  ~FailingImports();

  /// How many of the functions the module imports.
  std::size_t count() const noexcept { return m_replacements.size(); }

  /// From here on the call after `before` others fails, and for ever all that follow it.
  void failAfter(long before, Failing failing) noexcept;

  /// Lets all calls succeed again. Returns how many have failed.
  long stop() noexcept;

 private:
  std::vector<std::unique_ptr<ImportReplacement>> m_replacements;
};

}  // namespace av::test
