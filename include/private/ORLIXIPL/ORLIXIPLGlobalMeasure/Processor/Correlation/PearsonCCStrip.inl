// The members of PearsonCCStrip; for the level 3 source files.

#pragma once

#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Declare.hpp>
#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Processor/Correlation/CorrelationTables.hpp>
#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Processor/PearsonCorrelationCoefficient2d/PearsonCorrelationCoefficientLevels.hpp>

#include <limits>
#include <numeric>

namespace orlix::imaproc::glbmsr
{

template <class Self, class Strip1, class Strip2>
void PearsonCCStrip<Self, Strip1, Strip2>::functionRegistration(AlgorithmFunctionSelector& selector)
{
    PearsonCCStrip::registerPairKernels(
        selector, [](auto, auto domain) { return getDeviationKernels().of(domain).addProducts != nullptr; });
}

template <class Self, class Strip1, class Strip2>
template <class T, core::eInstructionSet::domain D>
core::ProcessingResult PearsonCCStrip<Self, Strip1, Strip2>::genericProcessFunction(ProcessingInfo)
{
    // A constant image has no deviations: 0 / epsilon.
    const double factor = this->template value<InFactor>();
    const double divisor = factor == 0 ? factor + std::numeric_limits<float>::epsilon() : factor;
    double& result = this->template value<OutPearsonCCResult>().PearsonCC;
    result = 0;
    const DeviationKernels& kernels = getDeviationKernels().of(D);
    ProductSum sum;
    forRowsOfDeviations<double>(
        kernels, this->getParser(0), this->getParser(1), image::imageBufferTypeOf<T>,
        this->template attribute<Strip2>().get().image->getType(), this->template value<InImgMean1>(),
        this->template value<InImgMean2>(), [&] { sum = {}; },
        [&](const double* d1, const double* d2, std::size_t size) { kernels.addProducts(d1, d2, size, sum); },
        [&] {
            const double products = std::accumulate(std::begin(sum.products), std::end(sum.products), 0.0);
            result += products / divisor;
        });
    return {};
}

} // namespace orlix::imaproc::glbmsr
