#include "dsp/fft_kernel_body.h"

namespace av::dsp {

constinit const FftKernel avx512FftKernel = FftKernelBody<8, 3, 3>::kernel("AVX-512");

}  // namespace av::dsp
