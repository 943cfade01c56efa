#include "ParaboloidKernel.inl"

namespace orlix::imaproc::glbmsr
{

extern const ParaboloidKernels paraboloidKernels_sse2 = everyParaboloidKernel<Domain::eIS_SSE2>;

} // namespace orlix::imaproc::glbmsr
