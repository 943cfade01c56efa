#include "RowKernel.inl"

namespace orlix::imaproc::glbmsr
{

extern const RowKernels rowKernels_sse2 = everyRowKernel<Domain::eIS_SSE2>;

} // namespace orlix::imaproc::glbmsr
