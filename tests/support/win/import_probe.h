#pragma once

#include <windows.h>

#include <cstddef>
#include <map>
#include <string>
#include <vector>

namespace av::test {

/// Names of the functions that a loaded module imports, of whatever library.
std::vector<std::string> importedFunctions(HMODULE module);

/// What a loaded module calls under the name of a function that it imports; null where it does not import it.
void* importedFunction(HMODULE module, const std::string& function);

/// Counts the calls that one loaded module makes of functions that it imports, for as long as the object lives. Calls of
/// other modules, the system's own among them, are not seen. The module must neither be unloaded nor be in a call of one of
/// these functions when the probe comes or goes.
class ImportProbe {
 public:
  /// Watches these functions; what the module does not import counts as never called.
  ImportProbe(HMODULE module, const std::vector<std::string>& functions);
  ~ImportProbe();
  ImportProbe(const ImportProbe&) = delete;
  ImportProbe& operator=(const ImportProbe&) = delete;

  /// Calls of one function since the probe came.
  [[nodiscard]] long calls(const std::string& function) const;
  /// Calls of all of them.
  [[nodiscard]] long calls() const;

 private:
  struct Watch {
    void** slot;  // in the module's import table
    void* function;
    volatile LONG* calls;
  };

  std::map<std::string, Watch> m_watches;
  unsigned char* m_stubs = nullptr;  // executable: each counts and jumps on
  std::vector<LONG> m_counts;
};

/// Puts a function of the test's in the place of one that a loaded module imports, for as long as the object lives.
class ImportReplacement {
 public:
  ImportReplacement(HMODULE module, const std::string& function, void* replacement);
  ~ImportReplacement();
  ImportReplacement(const ImportReplacement&) = delete;
  ImportReplacement& operator=(const ImportReplacement&) = delete;

  /// What the module called before; null where it does not import the function.
  [[nodiscard]] void* original() const noexcept { return m_original; }

 private:
  void** m_slot = nullptr;
  void* m_original = nullptr;
};

}  // namespace av::test
