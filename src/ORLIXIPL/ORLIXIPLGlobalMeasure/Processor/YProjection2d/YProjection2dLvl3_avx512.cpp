#include "RowKernel.inl"

namespace orlix::imaproc::glbmsr
{

extern const RowKernels rowKernels_avx512 = everyRowKernel<Domain::eIS_AVX512>;

} // namespace orlix::imaproc::glbmsr
