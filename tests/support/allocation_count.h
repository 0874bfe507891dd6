#pragma once

#include <cstdint>

namespace av::test {

/// False under AddressSanitizer, whose own operators new and delete stay in place: they know more.
extern const bool allocationsAreCounted;

/// How often this program has called operator new, on all threads together.
std::uint64_t allocationCount() noexcept;

}  // namespace av::test
