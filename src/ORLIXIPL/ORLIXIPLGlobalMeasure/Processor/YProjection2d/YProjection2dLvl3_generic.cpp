#include "RowKernel.inl"

#include <algorithm>

namespace orlix::imaproc::glbmsr
{

namespace
{

template <class T>
T rowMedianGeneric(Run<T> run, unsigned char* scratch)
{
    auto* const keys = reinterpret_cast<Key<T>*>(scratch);
    std::transform(run.pixels, run.pixels + run.size, keys, [](T pixel) { return toKey(pixel); });
    std::nth_element(keys, keys + run.size / 2, keys + run.size);
    return toPixel<T>(keys[run.size / 2]);
}

template <class T>
constexpr RowKernel<T> genericKernel{&accumulate<Run<T>, Domain::eIS_Generic, Figures::Sum>,
                                     &accumulate<Run<T>, Domain::eIS_Generic, Figures::Sums>,
                                     &accumulate<Run<T>, Domain::eIS_Generic, Figures::Extremes>, &rowMedianGeneric<T>};

} // namespace

extern const RowKernels rowKernels_generic{{genericKernel<unsigned char>},  {genericKernel<signed char>},
                                           {genericKernel<unsigned short>}, {genericKernel<short>},
                                           {genericKernel<unsigned int>},   {genericKernel<int>},
                                           {genericKernel<float>}};

} // namespace orlix::imaproc::glbmsr
