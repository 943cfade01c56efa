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
    NCCStrip::registerPairKernels(
        selector, [](auto, auto domain) { return getDeviationKernels().of(domain).addProducts != nullptr; });
}

template <class Self, class Strip1, class Strip2>
template <class T, core::eInstructionSet::domain D>
core::ProcessingResult NCCStrip<Self, Strip1, Strip2>::genericProcessFunction(ProcessingInfo)
{
    NCCResult& result = this->template value<OutNCCResult>();
    result = {};
    products_ = 0;
    const DeviationKernels& kernels = getDeviationKernels().of(D);
    CrossSums sums;
    forRowsOfDeviations<float>(
        kernels, this->getParser(0), this->getParser(1), image::imageBufferTypeOf<T>,
        this->template attribute<Strip2>().get().image->getType(), this->template value<InOffset1>(),
        this->template value<InOffset2>(), [&] { sums = {}; },
        [&](const float* d1, const float* d2, std::size_t size) { kernels.addSquaresAndProducts(d1, d2, size, sums); },
        [&] {
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
