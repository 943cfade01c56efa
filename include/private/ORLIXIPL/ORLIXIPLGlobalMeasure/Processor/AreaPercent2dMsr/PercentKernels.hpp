#pragma once

#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Kernel/Run.hpp>

namespace orlix::imaproc::glbmsr
{

/// What the counting of values needs beside the tables of histograms.
template <class T>
struct LabelKernel
{
    std::uint32_t (*largest)(Run<T>);
    /// Labels times mask bytes.
    void (*multiply)(MaskedRun<T>, std::uint32_t* products);
};

struct PercentKernels
{
    std::uint64_t (*sum)(Run<std::uint8_t>);
    /// Of the low bytes of pixels times mask bytes.
    std::uint64_t (*sumOfProducts)(MaskedRun<std::uint8_t>);
    LabelKernel<std::uint8_t> uint8;
    LabelKernel<std::uint16_t> uint16;
    LabelKernel<std::uint32_t> uint32;
};

// One table per kernel file, each usable only where its instruction set is.
extern const PercentKernels percentKernels_generic;
extern const PercentKernels percentKernels_sse2;
extern const PercentKernels percentKernels_avx2;
extern const PercentKernels percentKernels_avx512;

} // namespace orlix::imaproc::glbmsr
