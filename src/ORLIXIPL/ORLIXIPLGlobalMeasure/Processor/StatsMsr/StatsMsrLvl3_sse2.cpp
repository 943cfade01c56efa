#include "StatsMsrKernel.inl"

namespace orlix::imaproc::glbmsr
{

extern const StatsKernels statsKernels_sse2 = everyType<Domain::eIS_SSE2>;

} // namespace orlix::imaproc::glbmsr
