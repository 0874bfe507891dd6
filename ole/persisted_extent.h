#pragma once

#include <windows.h>

#include <objidl.h>

#include <cstdint>
#include <optional>

namespace av::ole {

/// What a control persists: its extent in HIMETRIC and nothing else. The same two values go into streams (behind a
/// version word) and into property bags (by name); all readers refuse what no control could have written.

/// The bytes of a persisted extent: version word, width, height, little-endian, 32 bits each.
inline constexpr ULONG persistedExtentBytes = 12;

inline constexpr const wchar_t* persistedWidthName = L"_cx";
inline constexpr const wchar_t* persistedHeightName = L"_cy";

/// A persisted word as a length; none for words above LONG_MAX, which no extent can have.
std::optional<LONG> persistedLength(std::uint32_t word) noexcept;

/// Reads twelve bytes from the stream's position and not one more: what follows may belong to the container.
/// E_FAIL for a stream that ends early, for the version word of a later format and for impossible lengths; the stream's
/// own failures as they are. `himetric` is written on success only.
HRESULT readExtent(IStream& stream, SIZEL& himetric);

/// Writes the twelve bytes. STG_E_MEDIUMFULL when the stream takes fewer.
HRESULT writeExtent(IStream& stream, SIZEL himetric);

}  // namespace av::ole
