#include "dsp/level_kernel_body.h"

namespace av::dsp {

constinit const LevelKernel avx512LevelKernel = LevelKernelBody<8>::kernel("AVX-512");

}  // namespace av::dsp
