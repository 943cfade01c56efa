#include "RowKernel.inl"

namespace orlix::imaproc::glbmsr
{

extern const RowKernels rowKernels_avx2 = everyRowKernel<Domain::eIS_AVX2>;

} // namespace orlix::imaproc::glbmsr
