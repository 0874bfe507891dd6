#pragma once

#include "gfx/frame_parts.h"
#include "gfx/geometry.h"
#include "support/pcm.h"

#include <bit>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <random>
#include <span>
#include <string_view>
#include <vector>

// What the portable core computes, in kinds, from whole numbers that are the same in every build: to compare builds.

namespace av::test {

/// What a kind of result is made with beside additions, multiplications, divisions and square roots, which every build
/// rounds in the same way.
enum class MadeWith { arithmetic, mathsLibrary };

/// Results of one kind, as doubles whatever they were.
struct ResultKind {
  const char* name;
  MadeWith madeWith;
  const char* unit;  ///< of a difference
  std::vector<double> (*values)();
};

/// All kinds, in the order of the listing.
std::vector<ResultKind> resultKinds();

std::vector<ResultKind> sampleResults();
std::vector<ResultKind> transformResults();
std::vector<ResultKind> pictureResults();
std::vector<ResultKind> measuredPictureResults();

/// FNV-1a of the bits. All values that are no number have the same ones here: which of them an operation gives is up to
/// the compiler.
inline std::uint64_t digestOf(std::span<const double> values) {
  std::uint64_t digest = 0xCBF29CE484222325;
  for (const double value : values) {
    const double one = std::isnan(value) ? std::numeric_limits<double>::quiet_NaN() : value;
    auto bits = std::bit_cast<std::uint64_t>(one);
    if (std::isnan(one)) bits = 0x7FF8000000000000;
    for (int byte = 0; byte < 8; ++byte, bits >>= 8) digest = (digest ^ (bits & 0xFF)) * 0x100000001B3;
  }
  return digest;
}

// ---- what results are made from and taken apart with

/// Noise and a square wave, different in every channel, as stored integers.
inline Pcm pcmNoise(int bits, int channels, int frames, unsigned seed) {
  std::mt19937 random(seed);
  const std::int64_t loudest = (std::int64_t{1} << (bits - 1)) - 1;
  return makePcm(bits, channels, frames, [&](int frame, int channel) {
    const std::int64_t noise = static_cast<std::int64_t>(random() % 2001) - 1000;
    const int square = frame / (7 + 3 * channel) % 2 == 0 ? 500 : -500;
    return loudest * (noise + square) / 1500;
  });
}

/// Numbers from −range to range, made without a maths library.
inline std::vector<double> numbers(std::size_t count, double range, unsigned seed) {
  std::mt19937 random(seed);
  std::vector<double> values(count);
  for (double& value : values) value = (static_cast<double>(random()) / 2147483648.0 - 1.0) * range;
  return values;
}

inline void append(std::vector<double>& to, std::span<const double> values) {
  to.insert(to.end(), values.begin(), values.end());
}

inline void append(std::vector<double>& to, std::string_view text) {
  for (const char c : text) to.push_back(static_cast<unsigned char>(c));
}

inline void append(std::vector<double>& to, std::u16string_view text) {
  for (const char16_t c : text) to.push_back(static_cast<double>(c));
}

inline void append(std::vector<double>& to, const Rect& rect) {
  for (const int edge : {rect.left, rect.top, rect.right, rect.bottom}) to.push_back(edge);
}

inline void append(std::vector<double>& to, const TextRun& text) {
  append(to, std::string_view(text.text));
  append(to, text.rect);
  to.push_back(static_cast<double>(text.colour));
  to.push_back(static_cast<double>(text.fractionPx));
}

inline void append(std::vector<double>& to, const FilledRect& fill) {
  append(to, fill.rect);
  to.push_back(static_cast<double>(fill.colour));
}

inline void append(std::vector<double>& to, const LineSegment& line) {
  for (const int place : {line.from.x, line.from.y, line.to.x, line.to.y}) to.push_back(place);
  to.push_back(static_cast<double>(line.colour));
}

inline void append(std::vector<double>& to, const ImageBlit& blit) {
  to.push_back(blit.image);
  append(to, blit.from);
  append(to, blit.to);
}

inline void append(std::vector<double>& to, const ColumnFill& fill) {
  to.push_back(fill.column);
  to.push_back(fill.firstRow);
  append(to, fill.rect);
}

inline void append(std::vector<double>& to, const Polylines& lines) {
  for (const Point& point : lines.points) {
    to.push_back(point.x);
    to.push_back(point.y);
  }
}

template <class Part>
void appendAll(std::vector<double>& to, const std::vector<Part>& parts) {
  for (const Part& part : parts) append(to, part);
}

}  // namespace av::test
