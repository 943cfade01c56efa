#include "HistogramMsrKernel.inl"

namespace orlix::imaproc::glbmsr
{

extern const HistogramKernels histogramKernels_sse2 = everyType<Run, HistogramKernels, Domain::eIS_SSE2>;

} // namespace orlix::imaproc::glbmsr
