#pragma once

#include <framework/kernel/Run.hpp>

#include <framework/process/KernelsByType.hpp>

namespace orlix::imaproc::glbmsr
{

/// What the counting of values needs beside the tables of histograms.
template <class T>
struct LabelKernel
{
    std::uint32_t (*largest)(Run<T>);
    /// The labels of the pixels that count; 0 for others.
    void (*select)(MaskedRun<T>, std::uint32_t* labels);
};

struct PercentKernels
{
    std::uint64_t (*sum)(Run<std::uint8_t>);
    std::uint64_t (*sumSelected)(MaskedRun<std::uint8_t>);
    LabelKernel<std::uint8_t> uint8;
    LabelKernel<std::uint16_t> uint16;
    LabelKernel<std::uint32_t> uint32;
};

const KernelTables<PercentKernels>& getPercentKernels();

} // namespace orlix::imaproc::glbmsr
