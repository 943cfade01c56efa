#include "StatsMsrKernel.inl"

namespace orlix::imaproc::glbmsr
{

extern const StatsKernels statsKernels_sse2 = everyType<Run, StatsKernels, Domain::eIS_SSE2>;

} // namespace orlix::imaproc::glbmsr
