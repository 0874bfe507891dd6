#include "dsp/hartley_kernel_body.h"

namespace av::dsp {

constinit const HartleyKernel sse2HartleyKernel = HartleyKernelBody<2>::kernel("SSE2");

}  // namespace av::dsp
