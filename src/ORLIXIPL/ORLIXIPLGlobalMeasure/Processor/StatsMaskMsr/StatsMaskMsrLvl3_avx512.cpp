#include "../StatsMsr/StatsMsrKernel.inl"

namespace orlix::imaproc::glbmsr
{

extern const StatsMaskKernels statsMaskKernels_avx512 = everyType<MaskedRun, StatsMaskKernels, Domain::eIS_AVX512>;

} // namespace orlix::imaproc::glbmsr
