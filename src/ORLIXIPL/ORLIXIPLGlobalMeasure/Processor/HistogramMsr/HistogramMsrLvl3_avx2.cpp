#include "HistogramMsrKernel.inl"

namespace orlix::imaproc::glbmsr
{

extern const HistogramKernels histogramKernels_avx2 = everyType<Run, HistogramKernels, Domain::eIS_AVX2>;

} // namespace orlix::imaproc::glbmsr
