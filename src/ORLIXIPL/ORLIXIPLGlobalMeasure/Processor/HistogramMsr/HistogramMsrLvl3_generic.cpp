#include "HistogramMsrKernel.inl"

namespace orlix::imaproc::glbmsr
{

extern const HistogramKernels histogramKernels_generic = everyType<Run, HistogramKernels, Domain::eIS_Generic>;

} // namespace orlix::imaproc::glbmsr
