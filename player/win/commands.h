#pragma once

#include <windows.h>

#include <string>
#include <vector>

namespace avplayer {

/// Identifiers of the menu's commands.
namespace command {
enum : int {
  open = 100,
  demonstration,
  snapshot,
  snapshotAll,
  quit,
  playPause,
  toStart,
  back,
  forward,
  loop,
  selectView,
  selectMeter,
  selectAnalyser,
  nextControl,
  previousControl,
  nextPreset,
  previousPreset,
  presetName,
  savePreset,
  deletePreset,
  togglePanel,
  findProperty,
  switchPane,
  fullScreen,
  keys,
  toStage,
  firstPreset = 1000  ///< and the following: the presets in the menu
};
}  // namespace command

/// The menu bar; the presets' menu is filled by `fillPresetMenu`.
HMENU makeMenu();

/// The keys that the menu shows.
HACCEL makeAccelerators();

/// Lists the presets behind the fixed commands of their menu, the current one checked.
void fillPresetMenu(HMENU menu, const std::vector<std::wstring>& names, const std::wstring& current);

/// The keys as a text: one line a command.
std::wstring keyHelp();

}  // namespace avplayer
