#include "StatsMsrKernel.inl"

namespace orlix::imaproc::glbmsr
{

extern const StatsKernels statsKernels_avx512 = everyType<Run, StatsKernels, Domain::eIS_AVX512>;

} // namespace orlix::imaproc::glbmsr
