#include "ColumnKernel.inl"

namespace orlix::imaproc::glbmsr
{

extern const ColumnKernels columnKernels_avx512 = everyColumnKernel<Domain::eIS_AVX512>;

} // namespace orlix::imaproc::glbmsr
