#include "dsp/hartley_kernel_body.h"

namespace av::dsp {

constinit const HartleyKernel avx2HartleyKernel = HartleyKernelBody<4>::kernel("AVX2");

}  // namespace av::dsp
