#include "StatsMsrKernel.inl"

namespace orlix::imaproc::glbmsr
{

extern const StatsKernels statsKernels_avx512vnni = smallIntegers<Run, StatsKernels>;

} // namespace orlix::imaproc::glbmsr
