#include "HistogramMsrKernel.inl"

namespace orlix::imaproc::glbmsr
{

extern const HistogramKernels histogramKernels_avx = floatAlone<Run, HistogramKernels, Domain::eIS_AVX>;

} // namespace orlix::imaproc::glbmsr
