#include "GaussianNoiseMsrKernel.inl"

namespace orlix::imaproc::glbmsr
{

extern const GaussianNoiseKernels gaussianNoiseKernels_avx512 = everyGaussianNoiseKernel<Domain::eIS_AVX512>;

} // namespace orlix::imaproc::glbmsr
