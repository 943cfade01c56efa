#include "PercentKernel.inl"

namespace orlix::imaproc::glbmsr
{

extern const PercentKernels percentKernels_sse2 = everyPercentKernel<Domain::eIS_SSE2>;

} // namespace orlix::imaproc::glbmsr
