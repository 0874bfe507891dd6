#include "dsp/end_process.h"

#include <cstdio>
#include <cstdlib>

namespace av::dsp {

void endProcess(const std::string& message) noexcept {
  static_cast<void>(std::fputs(message.c_str(), stderr));
  static_cast<void>(std::fflush(stderr));
  std::exit(1);  // NOLINT(concurrency-mt-unsafe): whatever other threads do, this is the end
}

}  // namespace av::dsp
