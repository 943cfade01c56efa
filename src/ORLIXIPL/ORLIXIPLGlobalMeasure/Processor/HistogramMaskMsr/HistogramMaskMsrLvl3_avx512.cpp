#include "../HistogramMsr/HistogramMsrKernel.inl"

namespace orlix::imaproc::glbmsr
{

extern const HistogramMaskKernels histogramMaskKernels_avx512 =
    everyType<MaskedRun, HistogramMaskKernels, Domain::eIS_AVX512>;

} // namespace orlix::imaproc::glbmsr
