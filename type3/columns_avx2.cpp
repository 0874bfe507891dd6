#include "type3/column_kernel_body.h"

namespace av::type3 {

constinit const ColumnKernel avx2ColumnKernel = ColumnKernelBody<4>::kernel("AVX2");

}  // namespace av::type3
