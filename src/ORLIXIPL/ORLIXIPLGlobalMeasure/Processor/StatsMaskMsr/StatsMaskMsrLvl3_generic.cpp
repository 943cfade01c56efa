#include "../StatsMsr/StatsMsrKernel.inl"

namespace orlix::imaproc::glbmsr
{

extern const StatsMaskKernels statsMaskKernels_generic = everyType<MaskedRun, StatsMaskKernels, Domain::eIS_Generic>;

} // namespace orlix::imaproc::glbmsr
