#include "ole/persisted_extent.h"

#include <climits>

namespace av::ole {

namespace {

// As it lies in the stream; every Windows is little-endian.
struct StreamLayout {
  std::uint32_t version;
  std::uint32_t cx;
  std::uint32_t cy;
};
static_assert(sizeof(StreamLayout) == persistedExtentBytes);

// Readers refuse what a later version wrote.
constexpr std::uint32_t streamVersion = 0x00000800;

}  // namespace

std::optional<LONG> persistedLength(std::uint32_t word) noexcept {
  if (word > LONG_MAX) return std::nullopt;
  return static_cast<LONG>(word);
}

HRESULT readExtent(IStream& stream, SIZEL& himetric) {
  StreamLayout data{};
  ULONG read = 0;
  // The version first and alone: what follows it in a foreign stream is not ours to consume.
  HRESULT result = stream.Read(&data.version, sizeof data.version, &read);
  if (FAILED(result)) return result;
  if (read != sizeof data.version || data.version > streamVersion) return E_FAIL;
  constexpr ULONG lengthBytes = sizeof data - sizeof data.version;
  result = stream.Read(&data.cx, lengthBytes, &read);
  if (FAILED(result)) return result;
  const auto cx = persistedLength(data.cx);
  const auto cy = persistedLength(data.cy);
  if (read != lengthBytes || !cx || !cy) return E_FAIL;
  himetric = {*cx, *cy};
  return S_OK;
}

HRESULT writeExtent(IStream& stream, SIZEL himetric) {
  const StreamLayout data{streamVersion, static_cast<std::uint32_t>(himetric.cx),
                          static_cast<std::uint32_t>(himetric.cy)};
  ULONG written = 0;
  const HRESULT result = stream.Write(&data, sizeof data, &written);
  if (FAILED(result)) return result;
  return written == sizeof data ? S_OK : STG_E_MEDIUMFULL;
}

}  // namespace av::ole
