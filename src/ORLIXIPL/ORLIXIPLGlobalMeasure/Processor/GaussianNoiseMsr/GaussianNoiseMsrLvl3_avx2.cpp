#include "GaussianNoiseMsrKernel.inl"

namespace orlix::imaproc::glbmsr
{

extern const GaussianNoiseKernels gaussianNoiseKernels_avx2 = everyGaussianNoiseKernel<Domain::eIS_AVX2>;

} // namespace orlix::imaproc::glbmsr
