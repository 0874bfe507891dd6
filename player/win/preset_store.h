#pragma once

#include "player/preset_file.h"

#include <filesystem>
#include <string>
#include <vector>

namespace avplayer {

/// The user's presets in their file, and the built-in ones before them.
class PresetStore {
 public:
  /// An empty path: "QELAudioVisualization4 Player\presets.txt" in the user's application data.
  explicit PresetStore(std::filesystem::path file);

  /// Built-in ones first, then the user's.
  const std::vector<Preset>& presets() const noexcept { return m_presets; }
  bool isBuiltin(std::string_view name) const;
  /// What could not be read when the file was opened: one line for the user, or empty.
  const std::wstring& problem() const noexcept { return m_problem; }
  const std::filesystem::path& file() const noexcept { return m_file; }

  /// Adds a preset or replaces the one of that name. The answer is what went wrong; empty: it is in the file.
  std::wstring save(Preset preset);
  std::wstring remove(std::string_view name);

 private:
  std::wstring write();

  std::filesystem::path m_file;
  std::vector<Preset> m_presets;
  std::size_t m_builtinCount = 0;
  std::wstring m_problem;
};

}  // namespace avplayer
