#include "ColumnKernel.inl"

namespace orlix::imaproc::glbmsr
{

extern const ColumnKernels columnKernels_avx{
    {},
    {},
    {},
    {},
    {},
    {},
    {{&columnSum<float, Domain::eIS_AVX>, &columnSquares<float, Domain::eIS_AVX>, &columnLeast<float, Domain::eIS_AVX>,
      &columnMost<float, Domain::eIS_AVX>, nullptr, nullptr}}};

} // namespace orlix::imaproc::glbmsr
