#include "GaussianNoiseMsrKernel.inl"

namespace orlix::imaproc::glbmsr
{

extern const GaussianNoiseKernels gaussianNoiseKernels_sse2 = everyGaussianNoiseKernel<Domain::eIS_SSE2>;

} // namespace orlix::imaproc::glbmsr
