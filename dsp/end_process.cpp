#include "dsp/end_process.h"

#include <cstdio>
#include <cstdlib>

namespace av::dsp {

void endProcess(const char* format, std::int32_t value) noexcept {
  std::fprintf(stderr, format, static_cast<int>(value));
  std::fflush(stderr);
  std::exit(1);
}

}  // namespace av::dsp
