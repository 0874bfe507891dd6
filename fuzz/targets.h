#pragma once

#include <cstdint>
#include <span>

namespace av::fuzz {

/// The bytes of one input. A target takes any; it returns, or the process ends where a rule does not hold.
using Bytes = std::span<const std::uint8_t>;

void audioBlocks(Bytes bytes);       ///< wave formats, decoding, mixing
void waveFiles(Bytes bytes);         ///< WAV files
void extentStreams(Bytes bytes);     ///< the persisted extent
void propertyPuts(Bytes bytes);      ///< settings rules of the three controls, names of the level meter
void spectrumKernels(Bytes bytes);   ///< vector kernels against the plain operations
void viewAnalysis(Bytes bytes);      ///< the view's blocks, settings changed between them
void meterAnalysis(Bytes bytes);     ///< the same of the level meter
void analyserAnalysis(Bytes bytes);  ///< the same of the spectrum analyser
void viewFrames(Bytes bytes);        ///< layout, labels and frame of the view
void meterFrames(Bytes bytes);       ///< geometry, segments and frame of the level meter
void analyserFrames(Bytes bytes);    ///< layout, column images, labels and frame of the spectrum analyser

}  // namespace av::fuzz
