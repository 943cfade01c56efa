#include "../StatsMsr/StatsMsrKernel.inl"

namespace orlix::imaproc::glbmsr
{

extern const StatsMaskKernels statsMaskKernels_avx512vnni = smallIntegers<MaskedRun, StatsMaskKernels>;

} // namespace orlix::imaproc::glbmsr
