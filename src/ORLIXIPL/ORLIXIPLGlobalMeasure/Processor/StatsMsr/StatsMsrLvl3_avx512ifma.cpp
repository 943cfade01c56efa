#include "StatsMsrKernel.inl"

namespace orlix::imaproc::glbmsr
{

extern const StatsKernels statsKernels_avx512ifma = largeIntegers<Run, StatsKernels>;

} // namespace orlix::imaproc::glbmsr
