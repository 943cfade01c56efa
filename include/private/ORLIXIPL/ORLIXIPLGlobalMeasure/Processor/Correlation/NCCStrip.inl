// The members of NCCStrip; for the level 3 source files.

#pragma once

#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Declare.hpp>
#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Processor/Correlation/CorrelationTables.hpp>
#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Processor/NormalizedCrossCorrelationMsr2d/NormalizedCrossCorrelationMsrLevels.hpp>

#include <cmath>

namespace orlix::imaproc::glbmsr
{

template <class Self, class Strip1, class Strip2>
void NCCStrip<Self, Strip1, Strip2>::functionRegistration(AlgorithmFunctionSelector& selector)
{
    NCCStrip::registerPairKernels(selector, []<class T>(std::type_identity<T>, auto domain) {
        return kernelOf<T>(getDeviationKernels().of(domain)).readFloats != nullptr;
    });
}

template <class Self, class Strip1, class Strip2>
template <class T, core::eInstructionSet::domain D>
core::ProcessingResult NCCStrip<Self, Strip1, Strip2>::genericProcessFunction(ProcessingInfo info)
{
    const DeviationKernels& kernels = getDeviationKernels().of(D);
    const SecondStrip second{kernels, this->getParser(1), this->template attribute<Strip2>().get().image->getType()};
    const DeviationSums sums = sumDeviations<T>(kernelOf<T>(kernels).cross, this->getParser(0), second, info,
                                                this->template value<InOffset1>(), this->template value<InOffset2>());
    NCCResult& result = this->template value<OutNCCResult>();
    result.SumSquaredDev1 = sums.squares1;
    result.SumSquaredDev2 = sums.squares2;
    products_ = sums.products;
    return {};
}

template <class Self, class Strip1, class Strip2>
core::ProcessingResult NCCStrip<Self, Strip1, Strip2>::postProcess()
{
    NCCResult& result = this->template value<OutNCCResult>();
    // On purpose: NaN where a strip is constant at its offset.
    result.Correlation = products_ / std::sqrt(result.SumSquaredDev1 * result.SumSquaredDev2);
    return {};
}

} // namespace orlix::imaproc::glbmsr
