#include "../HistogramMsr/HistogramMsrKernel.inl"

namespace orlix::imaproc::glbmsr
{

extern const HistogramMaskKernels histogramMaskKernels_sse2 =
    everyType<MaskedRun, HistogramMaskKernels, Domain::eIS_SSE2>;

} // namespace orlix::imaproc::glbmsr
