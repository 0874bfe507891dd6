#include "type3/column_kernel_body.h"

namespace av::type3 {

constinit const ColumnKernel avx512ColumnKernel = ColumnKernelBody<8>::kernel("AVX-512");

}  // namespace av::type3
