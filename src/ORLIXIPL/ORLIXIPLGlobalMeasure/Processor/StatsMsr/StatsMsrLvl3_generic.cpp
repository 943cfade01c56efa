#include "StatsMsrKernel.inl"

namespace orlix::imaproc::glbmsr
{

extern const StatsKernels statsKernels_generic = everyType<Run, StatsKernels, Domain::eIS_Generic>;

} // namespace orlix::imaproc::glbmsr
