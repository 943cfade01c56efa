#include "PercentKernel.inl"

namespace orlix::imaproc::glbmsr
{

extern const PercentKernels percentKernels_generic = everyPercentKernel<Domain::eIS_Generic>;

} // namespace orlix::imaproc::glbmsr
