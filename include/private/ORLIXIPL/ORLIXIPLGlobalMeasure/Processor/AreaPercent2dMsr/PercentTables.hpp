#pragma once

#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Kernel/KernelTables.hpp>
#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Processor/AreaPercent2dMsr/PercentKernels.hpp>

#include <framework/core/ProcessingResult.hpp>

#include <cstddef>
#include <cstdint>

namespace orlix::imaproc::glbmsr
{

const KernelTables<PercentKernels>& getPercentKernels();

template <class T>
const LabelKernel<T>& labelKernelOf(const PercentKernels& kernels)
{
    if constexpr (sizeof(T) == 1) {
        return kernels.uint8;
    } else if constexpr (sizeof(T) == 2) {
        return kernels.uint16;
    } else {
        return kernels.uint32;
    }
}

/// Whether `nbStrips` lists of counts of all labels up to `largest` fit the memory limit, with what is needed on the
/// way; if not, the failure names the label.
core::ProcessingResult checkLabel(std::uint32_t largest, std::size_t nbStrips);

} // namespace orlix::imaproc::glbmsr
