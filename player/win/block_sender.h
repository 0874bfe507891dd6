#pragma once

#include "player/sound.h"
#include "player/win/look.h"

namespace avplayer {

/// Gives each control what was heard last, in blocks of the length that it analyses: the block ends at the frame that is
/// heard, so consecutive blocks overlap where the analysis is longer than the pace.
class BlockSender {
 public:
  void send(Controls& controls, const Sound& sound, std::int64_t heardFrame);

 private:
  std::vector<std::int16_t> m_block;
};

}  // namespace avplayer
