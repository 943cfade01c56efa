#include "StatsMsrKernel.inl"

namespace orlix::imaproc::glbmsr
{

extern const StatsKernels statsKernels_avx2 = everyType<Run, StatsKernels, Domain::eIS_AVX2>;

} // namespace orlix::imaproc::glbmsr
