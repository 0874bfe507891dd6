#pragma once

#include "player/win/look.h"
#include "player/win/stage.h"

#include <filesystem>

namespace avplayer {

/// Saves what one control shows, in its size on the screen, as a PNG file.
bool saveSnapshot(HostedControl& control, const std::filesystem::path& file);

/// Saves the stage with all three.
bool saveStage(Stage& stage, Controls& controls, const std::filesystem::path& file);

/// Saves what a window shows on the screen, its menu included, without its frame.
bool saveWindow(HWND window, const std::filesystem::path& file);

/// A file name that is not used yet: "FOLDER\QELAudioVisualization4 NAME 2026-01-31 12.30.05.png". An empty folder is the
/// user's pictures.
std::filesystem::path newSnapshotFile(const std::filesystem::path& folder, const std::wstring& name);

}  // namespace avplayer
