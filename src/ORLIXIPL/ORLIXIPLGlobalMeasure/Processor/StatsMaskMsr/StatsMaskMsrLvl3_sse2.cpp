#include "../StatsMsr/StatsMsrKernel.inl"

namespace orlix::imaproc::glbmsr
{

extern const StatsMaskKernels statsMaskKernels_sse2 = everyType<MaskedRun, StatsMaskKernels, Domain::eIS_SSE2>;

} // namespace orlix::imaproc::glbmsr
