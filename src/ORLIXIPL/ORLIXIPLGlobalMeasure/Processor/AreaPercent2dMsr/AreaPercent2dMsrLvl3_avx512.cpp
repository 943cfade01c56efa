#include "PercentKernel.inl"

namespace orlix::imaproc::glbmsr
{

extern const PercentKernels percentKernels_avx512 = everyPercentKernel<Domain::eIS_AVX512>;

} // namespace orlix::imaproc::glbmsr
