// What is made of rows of pixels: parts of the statistics kernels, and the median.

#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Kernel/Selection.hpp>
#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Processor/Projection/RowKernels.hpp>

#include "../StatsMsr/StatsMsrKernel.inl"

namespace orlix::imaproc::glbmsr
{

namespace
{

/// The kernels of one type of a vector set.
template <class T, Domain::domain D>
constexpr RowKernel<T> rowKernel{&accumulate<Run<T>, D, Figures::Sum>, &accumulate<Run<T>, D, Figures::Sums>,
                                 &accumulate<Run<T>, D, Figures::Extremes>, &medianOfRow<T, D>};

template <Domain::domain D>
constexpr RowKernels everyRowKernel{
    {rowKernel<unsigned char, D>}, {rowKernel<signed char, D>}, {rowKernel<unsigned short, D>}, {rowKernel<short, D>},
    {rowKernel<unsigned int, D>},  {rowKernel<int, D>},         {rowKernel<float, D>}};

} // namespace

} // namespace orlix::imaproc::glbmsr
