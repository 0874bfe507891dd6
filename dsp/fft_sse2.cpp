#include "dsp/fft_kernel_body.h"

namespace av::dsp {

constinit const FftKernel sse2FftKernel = FftKernelBody<2, 2, 3>::kernel("SSE2");

}  // namespace av::dsp
