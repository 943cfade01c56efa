#include "GaussianNoiseMsrKernel.inl"

namespace orlix::imaproc::glbmsr
{

extern const GaussianNoiseKernels gaussianNoiseKernels_generic = everyGaussianNoiseKernel<Domain::eIS_Generic>;

} // namespace orlix::imaproc::glbmsr
