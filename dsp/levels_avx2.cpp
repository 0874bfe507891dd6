#include "dsp/level_kernel_body.h"

namespace av::dsp {

constinit const LevelKernel avx2LevelKernel = LevelKernelBody<4>::kernel("AVX2");

}  // namespace av::dsp
