#include "ColumnKernel.inl"

namespace orlix::imaproc::glbmsr
{

extern const ColumnKernels columnKernels_sse2 = everyColumnKernel<Domain::eIS_SSE2>;

} // namespace orlix::imaproc::glbmsr
