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
    PearsonCCStrip::registerPairKernels(selector, []<class T>(std::type_identity<T>, auto domain) {
        return kernelOf<T>(getDeviationKernels().of(domain)).addCross != nullptr;
    });
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
    const auto kernel = kernelOf<T>(kernels);
    const SecondStrip second{kernels, this->getParser(1), this->template attribute<Strip2>().get().image->getType()};
    forRowsOfDeviations(this->getParser(0), second, this->template value<InImgMean1>(),
                        this->template value<InImgMean2>(), kernel.addProducts, kernel.addProductsOfPair,
                        [&](const ProductSum& sum) {
                            result += std::accumulate(std::begin(sum.products), std::end(sum.products), 0.0) / divisor;
                        });
    return {};
}

} // namespace orlix::imaproc::glbmsr
