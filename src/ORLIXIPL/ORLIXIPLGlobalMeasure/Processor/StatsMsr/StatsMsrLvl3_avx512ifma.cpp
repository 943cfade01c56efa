#include "StatsMsrKernel.inl"

namespace orlix::imaproc::glbmsr
{

extern const StatsKernels statsKernels_avx512ifma{{nullptr},
                                                  {nullptr},
                                                  {nullptr},
                                                  {nullptr},
                                                  {&accumulate<unsigned int, Domain::eIS_AVX512>},
                                                  {&accumulate<int, Domain::eIS_AVX512>},
                                                  {nullptr}};

} // namespace orlix::imaproc::glbmsr
