#include "../StatsMsr/StatsMsrKernel.inl"

namespace orlix::imaproc::glbmsr
{

extern const StatsMaskKernels statsMaskKernels_avx2 = everyType<MaskedRun, StatsMaskKernels, Domain::eIS_AVX2>;

} // namespace orlix::imaproc::glbmsr
