#include "StatsMsrKernel.inl"

namespace orlix::imaproc::glbmsr
{

extern const StatsKernels statsKernels_avx512vnni{{&accumulate<unsigned char, Domain::eIS_AVX512>},
                                                  {&accumulate<signed char, Domain::eIS_AVX512>},
                                                  {&accumulate<unsigned short, Domain::eIS_AVX512>},
                                                  {&accumulate<short, Domain::eIS_AVX512>},
                                                  {nullptr},
                                                  {nullptr},
                                                  {nullptr}};

} // namespace orlix::imaproc::glbmsr
