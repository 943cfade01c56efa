#pragma once

#include <framework/process/KernelsByType.hpp>

#include <cstddef>

namespace orlix::imaproc::glbmsr
{

/// How numbers and pixels become each other. All sets give the same bits.
template <class T>
struct PixelWriter
{
    /// Integers: rounded half away from zero (0.5 is added with the sign of the number, the rest cut off) and limited
    /// to the range of T; NaN becomes 0. Float: narrowed.
    void (*write)(const double* numbers, std::size_t size, T* pixels);
    void (*read)(const T* pixels, std::size_t size, double* numbers);
};

/// What sums become; in place of them.
struct ProjectionFinish
{
    void (*mean)(double* sums, std::size_t size, double count);
    void (*variance)(double* sums, const double* squares, std::size_t size, double count); ///< (q - s s / n) / n
    void (*deviation)(double* sums, const double* squares, std::size_t size, double count);
};

struct PixelWriterKernels : KernelsByType<PixelWriter>
{
    ProjectionFinish finish;
};

const KernelTables<PixelWriterKernels>& getPixelWriterKernels();

} // namespace orlix::imaproc::glbmsr
