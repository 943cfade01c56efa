#include "StatsMsrKernel.inl"

namespace orlix::imaproc::glbmsr
{

extern const StatsKernels statsKernels_avx{
    {nullptr}, {nullptr}, {nullptr}, {nullptr}, {nullptr}, {nullptr}, {&accumulate<Run<float>, Domain::eIS_AVX>}};

} // namespace orlix::imaproc::glbmsr
