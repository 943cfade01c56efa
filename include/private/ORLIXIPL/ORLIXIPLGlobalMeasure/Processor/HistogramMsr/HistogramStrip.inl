// The members of HistogramStrip that need the kernels; for the level 3 source files.

#pragma once

#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Declare.hpp>
#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Kernel/StripRuns.hpp>
#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Processor/HistogramMsr/HistogramKernelTables.hpp>
#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Processor/HistogramMsr/HistogramLevels.hpp>

namespace orlix::imaproc::glbmsr
{

template <class Self, class Out, class Strip, class... Mask>
const auto& HistogramStrip<Self, Out, Strip, Mask...>::getKernels()
{
    if constexpr (isMasked) {
        return getHistogramMaskKernels();
    } else {
        return getHistogramKernels();
    }
}

template <class Self, class Out, class Strip, class... Mask>
void HistogramStrip<Self, Out, Strip, Mask...>::functionRegistration(AlgorithmFunctionSelector& selector)
{
    HistogramStrip::registerKernels(selector, []<class T>(std::type_identity<T>, core::eInstructionSet::domain domain) {
        return kernelOf<T>(getKernels().of(domain)) != nullptr;
    });
}

template <class Self, class Out, class Strip, class... Mask>
template <class T, core::eInstructionSet::domain D>
core::ProcessingResult HistogramStrip<Self, Out, Strip, Mask...>::genericProcessFunction(ProcessingInfo info)
{
    // Rules may be switched off; the bounds of the vector are not.
    if (core::ProcessingResult result = checkHasClasses(this->template attribute<Out>(), this->template value<Out>());
        !result) {
        return result;
    }
    StripCounts counts{this->template value<Out>(), image::imageBufferTypeOf<T>, info.size, isMasked, tables_};
    const auto kernel = kernelOf<T>(getKernels().of(D));
    const auto add = [&](const auto& run) { counts.add(kernel, run); };
    if constexpr (isMasked) {
        forEachRun<T>(info, this->getParser(0), this->getParser(1), add);
    } else {
        forEachRun<T>(info, this->getParser(0), add);
    }
    counts.flush();
    return {};
}

} // namespace orlix::imaproc::glbmsr
