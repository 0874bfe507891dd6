#include "dsp/level_kernel_body.h"

namespace av::dsp {

constinit const LevelKernel sse2LevelKernel = LevelKernelBody<2>::kernel("SSE2");

}  // namespace av::dsp
