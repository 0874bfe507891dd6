#include "type3/column_kernel_body.h"

namespace av::type3 {

constinit const ColumnKernel sse2ColumnKernel = ColumnKernelBody<2>::kernel("SSE2");

}  // namespace av::type3
