#include "../HistogramMsr/HistogramMsrKernel.inl"

namespace orlix::imaproc::glbmsr
{

extern const HistogramMaskKernels histogramMaskKernels_generic =
    everyType<MaskedRun, HistogramMaskKernels, Domain::eIS_Generic>;

} // namespace orlix::imaproc::glbmsr
