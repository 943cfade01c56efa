#include "DeviationKernel.inl"

namespace orlix::imaproc::glbmsr
{

extern const DeviationKernels deviationKernels_avx512 = everyDeviationKernel<Domain::eIS_AVX512>;

} // namespace orlix::imaproc::glbmsr
