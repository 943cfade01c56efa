#include "ParaboloidKernel.inl"

namespace orlix::imaproc::glbmsr
{

extern const ParaboloidKernels paraboloidKernels_avx512 = everyParaboloidKernel<Domain::eIS_AVX512>;

} // namespace orlix::imaproc::glbmsr
