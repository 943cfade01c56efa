#include "ColumnKernel.inl"

#include <algorithm>

namespace orlix::imaproc::glbmsr
{

namespace
{

/// One column after the other.
template <class T>
void columnMedianGeneric(Columns<T> columns, unsigned char* scratch, T* medians)
{
    auto* const keys = reinterpret_cast<Key<T>*>(scratch);
    auto* const middle = keys + columns.count / 2;
    for (std::size_t x = 0; x < columns.width; ++x) {
        for (std::size_t i = 0; i < columns.count; ++i) {
            keys[i] = toKey(columns.row(i)[x]);
        }
        std::nth_element(keys, middle, keys + columns.count);
        medians[x] = toPixel<T>(*middle);
    }
}

template <class T>
std::size_t scratchBytesGeneric(std::size_t, std::size_t count)
{
    return count * sizeof(T);
}

template <class T>
constexpr ColumnKernel<T> genericKernel{&columnSum<T, Domain::eIS_Generic>,
                                        &columnSquares<T, Domain::eIS_Generic>,
                                        &columnLeast<T, Domain::eIS_Generic>,
                                        &columnMost<T, Domain::eIS_Generic>,
                                        &columnMedianGeneric<T>,
                                        &scratchBytesGeneric<T>};

} // namespace

extern const ColumnKernels columnKernels_generic{{genericKernel<unsigned char>},  {genericKernel<signed char>},
                                                 {genericKernel<unsigned short>}, {genericKernel<short>},
                                                 {genericKernel<unsigned int>},   {genericKernel<int>},
                                                 {genericKernel<float>}};

} // namespace orlix::imaproc::glbmsr
