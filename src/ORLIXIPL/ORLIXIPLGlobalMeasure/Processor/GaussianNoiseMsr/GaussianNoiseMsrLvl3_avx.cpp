#include "GaussianNoiseMsrKernel.inl"

namespace orlix::imaproc::glbmsr
{

extern const GaussianNoiseKernels gaussianNoiseKernels_avx = {
    {nullptr}, {nullptr}, {nullptr}, {nullptr}, {nullptr}, {nullptr}, {&addResponses<float, Domain::eIS_AVX>}};

} // namespace orlix::imaproc::glbmsr
