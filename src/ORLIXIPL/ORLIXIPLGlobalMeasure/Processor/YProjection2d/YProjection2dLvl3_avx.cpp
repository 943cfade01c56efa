#include "RowKernel.inl"

namespace orlix::imaproc::glbmsr
{

extern const RowKernels rowKernels_avx{
    {},
    {},
    {},
    {},
    {},
    {},
    {{&accumulate<Run<float>, Domain::eIS_AVX, Figures::Sum>, &accumulate<Run<float>, Domain::eIS_AVX, Figures::Sums>,
      &accumulate<Run<float>, Domain::eIS_AVX, Figures::Extremes>, nullptr}}};

} // namespace orlix::imaproc::glbmsr
