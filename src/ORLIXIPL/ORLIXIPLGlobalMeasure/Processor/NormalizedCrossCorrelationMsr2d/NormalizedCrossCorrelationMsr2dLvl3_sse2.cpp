#include "DeviationKernel.inl"

namespace orlix::imaproc::glbmsr
{

extern const DeviationKernels deviationKernels_sse2 = everyDeviationKernel<Domain::eIS_SSE2>;

} // namespace orlix::imaproc::glbmsr
