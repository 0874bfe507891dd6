#pragma once

#include "player/sound.h"

#include <filesystem>
#include <memory>
#include <string>

namespace avplayer {

/// Either a sound or, in `problem`, why there is none.
struct FileSound {
  std::shared_ptr<const Sound> sound;
  std::wstring format;  ///< what the file holds: "44.1 kHz, 24 bits, 2 channels"
  std::wstring problem;
};

/// Reads a WAV file as a whole.
FileSound readSound(const std::filesystem::path& file);

}  // namespace avplayer
