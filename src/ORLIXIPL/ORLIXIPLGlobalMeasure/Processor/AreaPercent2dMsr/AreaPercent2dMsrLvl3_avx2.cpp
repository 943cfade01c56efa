#include "PercentKernel.inl"

namespace orlix::imaproc::glbmsr
{

extern const PercentKernels percentKernels_avx2 = everyPercentKernel<Domain::eIS_AVX2>;

} // namespace orlix::imaproc::glbmsr
