#include "ole/persisted_extent.h"

#include "ole/extent_words.h"

#include <climits>

namespace av::ole {

static_assert(sizeof(ExtentWords) == persistedExtentBytes);
static_assert(largestExtent == LONG_MAX);

std::optional<LONG> persistedLength(std::uint32_t word) noexcept {
  if (word > largestExtent) return std::nullopt;
  return static_cast<LONG>(word);
}

HRESULT readExtent(IStream& stream, SIZEL& himetric) {
  const auto read = [&stream](void* to, std::uint32_t bytes, std::uint32_t& got) {
    ULONG count = 0;
    const HRESULT result = stream.Read(to, bytes, &count);
    got = count;
    return result;
  };
  HRESULT result = E_FAIL;
  const auto words = readExtentWords<HRESULT>(read, E_FAIL, result);
  if (!words) return result;
  himetric = {static_cast<LONG>(words->cx), static_cast<LONG>(words->cy)};
  return S_OK;
}

HRESULT writeExtent(IStream& stream, SIZEL himetric) {
  const ExtentWords data{extentVersion, static_cast<std::uint32_t>(himetric.cx),
                         static_cast<std::uint32_t>(himetric.cy)};
  ULONG written = 0;
  const HRESULT result = stream.Write(&data, sizeof data, &written);
  if (FAILED(result)) return result;
  return written == sizeof data ? S_OK : STG_E_MEDIUMFULL;
}

}  // namespace av::ole
