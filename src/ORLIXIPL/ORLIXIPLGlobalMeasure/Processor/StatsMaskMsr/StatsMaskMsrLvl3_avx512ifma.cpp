#include "../StatsMsr/StatsMsrKernel.inl"

namespace orlix::imaproc::glbmsr
{

extern const StatsMaskKernels statsMaskKernels_avx512ifma = largeIntegers<MaskedRun, StatsMaskKernels>;

} // namespace orlix::imaproc::glbmsr
