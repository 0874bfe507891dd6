#include "dsp/hartley_kernel_body.h"

namespace av::dsp {

constinit const HartleyKernel avx512HartleyKernel = HartleyKernelBody<8>::kernel("AVX-512");

}  // namespace av::dsp
