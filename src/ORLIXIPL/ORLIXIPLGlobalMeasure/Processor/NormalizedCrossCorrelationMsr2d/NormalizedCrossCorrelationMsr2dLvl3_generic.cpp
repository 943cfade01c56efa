#include "DeviationKernel.inl"

namespace orlix::imaproc::glbmsr
{

extern const DeviationKernels deviationKernels_generic = everyDeviationKernel<Domain::eIS_Generic>;

} // namespace orlix::imaproc::glbmsr
