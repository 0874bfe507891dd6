// What libFuzzer calls, for the target that this file is compiled for.

#include "fuzz/targets.h"

#include <cstddef>
#include <cstdint>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  av::fuzz::AV_FUZZ_TARGET(av::fuzz::Bytes(data, size));
  return 0;
}
