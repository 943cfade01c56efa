// The members of NCCStrip; for the level 3 source files.

#pragma once

#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Declare.hpp>
#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Processor/Correlation/CorrelationTables.hpp>
#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Processor/NormalizedCrossCorrelationMsr2d/NormalizedCrossCorrelationMsrLevels.hpp>

#include <cmath>

namespace orlix::imaproc::glbmsr
{

/// By halves in single precision, then in double; in the same order everywhere.
inline double addLanes(float (&lane)[CrossSums::lanes])
{
    for (std::size_t width = CrossSums::lanes / 2; width >= 8; width /= 2) {
        for (std::size_t k = 0; k < width; ++k) {
            lane[k] += lane[k + width];
        }
    }
    double sum = 0;
    for (std::size_t k = 0; k < 8; ++k) {
        sum += lane[k];
    }
    return sum;
}

template <class Self, class Strip1, class Strip2>
void NCCStrip<Self, Strip1, Strip2>::functionRegistration(AlgorithmFunctionSelector& selector)
{
    NCCStrip::registerPairKernels(selector, []<class T>(std::type_identity<T>, auto domain) {
        return kernelOf<T>(getDeviationKernels().of(domain)).addCross != nullptr;
    });
}

template <class Self, class Strip1, class Strip2>
template <class T, core::eInstructionSet::domain D>
core::ProcessingResult NCCStrip<Self, Strip1, Strip2>::genericProcessFunction(ProcessingInfo)
{
    NCCResult& result = this->template value<OutNCCResult>();
    result = {};
    products_ = 0;
    const DeviationKernels& kernels = getDeviationKernels().of(D);
    const auto kernel = kernelOf<T>(kernels);
    const SecondStrip second{kernels, this->getParser(1), this->template attribute<Strip2>().get().image->getType()};
    forRowsOfDeviations(this->getParser(0), second, this->template value<InOffset1>(),
                        this->template value<InOffset2>(), kernel.addCross, kernel.addCrossOfPair,
                        [&](CrossSums& sums) {
                            result.SumSquaredDev1 += addLanes(sums.squares1);
                            result.SumSquaredDev2 += addLanes(sums.squares2);
                            products_ += addLanes(sums.products);
                        });
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
