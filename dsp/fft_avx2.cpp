#include "dsp/fft_kernel_body.h"

namespace av::dsp {

constinit const FftKernel avx2FftKernel = FftKernelBody<4, 2, 3>::kernel("AVX2");

}  // namespace av::dsp
