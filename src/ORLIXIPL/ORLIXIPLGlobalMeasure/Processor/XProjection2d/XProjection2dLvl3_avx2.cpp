#include "ColumnKernel.inl"

namespace orlix::imaproc::glbmsr
{

extern const ColumnKernels columnKernels_avx2 = everyColumnKernel<Domain::eIS_AVX2>;

} // namespace orlix::imaproc::glbmsr
