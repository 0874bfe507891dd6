#include "player/win/preset_store.h"

#include "player/builtin_presets.h"
#include "player/win/text.h"

#include <windows.h>
#include <shlobj.h>

#include <algorithm>
#include <fstream>
#include <iterator>

namespace avplayer {

namespace {

namespace fs = std::filesystem;

fs::path defaultFile() {
  wchar_t folder[MAX_PATH] = {};
  if (FAILED(SHGetFolderPathW(nullptr, CSIDL_APPDATA | CSIDL_FLAG_CREATE, nullptr, 0, folder))) return L"presets.txt";
  return fs::path(folder) / L"QELAudioVisualization4 Player" / L"presets.txt";
}

}  // namespace

PresetStore::PresetStore(fs::path file)
    : m_file(file.empty() ? defaultFile() : std::move(file)), m_presets(builtinPresets()) {
  m_builtinCount = m_presets.size();
  std::ifstream stream(m_file, std::ios::binary);
  if (!stream) return;  // nobody has saved one yet
  const std::string text(std::istreambuf_iterator<char>(stream), {});
  PresetFile own = parsePresets(text);
  for (Preset& preset : own.presets)
    if (!isBuiltin(preset.name)) m_presets.push_back(std::move(preset));
  if (own.problems.empty()) return;
  const PresetProblem& first = own.problems.front();
  m_problem = L"Presets, line " + std::to_wstring(first.line) + L": " + wide(first.text);
  if (own.problems.size() > 1) m_problem += L" (and " + std::to_wstring(own.problems.size() - 1) + L" more)";
}

bool PresetStore::isBuiltin(std::string_view name) const {
  return findPreset(std::span(m_presets).first(m_builtinCount), name) != nullptr;
}

std::wstring PresetStore::save(Preset preset) {
  if (!isPresetName(preset.name)) return L"Type a name for the preset first (up to 60 characters, no brackets).";
  if (isBuiltin(preset.name)) return L"\"" + wide(preset.name) + L"\" is built in; type another name.";
  const auto own = m_presets.begin() + static_cast<std::ptrdiff_t>(m_builtinCount);
  const auto same = std::find_if(own, m_presets.end(), [&](const Preset& p) { return p.name == preset.name; });
  if (same != m_presets.end()) *same = std::move(preset);
  else m_presets.push_back(std::move(preset));
  return write();
}

std::wstring PresetStore::remove(std::string_view name) {
  if (isBuiltin(name)) return L"\"" + wide(name) + L"\" is built in and stays.";
  if (std::erase_if(m_presets, [&](const Preset& p) { return p.name == name; }) == 0)
    return L"No preset is called \"" + wide(name) + L"\".";
  return write();
}

/// Written beside the file and then renamed, so that a full disk leaves the old one. A file with lines that could not be
/// read is kept as a copy, since they would be lost.
std::wstring PresetStore::write() {
  std::error_code error;
  fs::create_directories(m_file.parent_path(), error);
  if (!m_problem.empty()) {
    fs::copy_file(m_file, fs::path(m_file) += L".bak", fs::copy_options::overwrite_existing, error);
    m_problem.clear();
  }
  const fs::path fresh = fs::path(m_file) += L".new";
  std::ofstream stream(fresh, std::ios::binary);
  stream << formatPresets(std::span(m_presets).subspan(m_builtinCount));
  stream.close();
  if (!stream) return L"Cannot write " + fresh.wstring();
  if (!MoveFileExW(fresh.c_str(), m_file.c_str(), MOVEFILE_REPLACE_EXISTING))
    return L"Cannot write " + m_file.wstring();
  return {};
}

}  // namespace avplayer
