#include "../HistogramMsr/HistogramMsrKernel.inl"

namespace orlix::imaproc::glbmsr
{

extern const HistogramMaskKernels histogramMaskKernels_avx2 =
    everyType<MaskedRun, HistogramMaskKernels, Domain::eIS_AVX2>;

} // namespace orlix::imaproc::glbmsr
