#include "DeviationKernel.inl"

namespace orlix::imaproc::glbmsr
{

extern const DeviationKernels deviationKernels_avx2 = everyDeviationKernel<Domain::eIS_AVX2>;

} // namespace orlix::imaproc::glbmsr
