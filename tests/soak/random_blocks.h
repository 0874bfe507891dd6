#pragma once

#include "tests/soak/random_source.h"

#include "host/audio_buffers.h"

#include <windows.h>

#include <cstdint>
#include <vector>

namespace av::soak {

/// A block with the memory behind it.
struct SoakBlock {
  std::vector<std::uint8_t> bytes;
  avhost::Block object;
};

/// Mostly blocks as hosts send them (16, 24 or 32 bits, one or two channels, up to 2,048 frames; tones, noise, silence),
/// else whatever fits a header: unknown tags, odd depths, 0 to 65,535 channels, sizes that are negative or tell of fewer
/// bytes than there are. Memory that is not there is never promised.
SoakBlock randomBlock(RandomSource& random);

}  // namespace av::soak
