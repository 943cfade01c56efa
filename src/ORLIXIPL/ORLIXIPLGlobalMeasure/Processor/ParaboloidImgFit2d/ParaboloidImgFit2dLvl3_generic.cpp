#include "ParaboloidKernel.inl"

namespace orlix::imaproc::glbmsr
{

extern const ParaboloidKernels paraboloidKernels_generic = everyParaboloidKernel<Domain::eIS_Generic>;

} // namespace orlix::imaproc::glbmsr
