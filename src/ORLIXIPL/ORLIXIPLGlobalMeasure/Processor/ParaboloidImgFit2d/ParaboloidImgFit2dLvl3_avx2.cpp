#include "ParaboloidKernel.inl"

namespace orlix::imaproc::glbmsr
{

extern const ParaboloidKernels paraboloidKernels_avx2 = everyParaboloidKernel<Domain::eIS_AVX2>;

} // namespace orlix::imaproc::glbmsr
