#include "HistogramMsrKernel.inl"

namespace orlix::imaproc::glbmsr
{

extern const HistogramKernels histogramKernels_avx512 = everyType<Run, HistogramKernels, Domain::eIS_AVX512>;

} // namespace orlix::imaproc::glbmsr
