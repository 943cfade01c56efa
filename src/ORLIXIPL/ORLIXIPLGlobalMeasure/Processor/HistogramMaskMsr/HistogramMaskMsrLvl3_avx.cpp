#include "../HistogramMsr/HistogramMsrKernel.inl"

namespace orlix::imaproc::glbmsr
{

extern const HistogramMaskKernels histogramMaskKernels_avx =
    floatAlone<MaskedRun, HistogramMaskKernels, Domain::eIS_AVX>;

} // namespace orlix::imaproc::glbmsr
