// The members of PearsonCCStrip; for the level 3 source files.

#pragma once

#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Declare.hpp>
#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Processor/Correlation/CorrelationTables.hpp>
#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Processor/PearsonCorrelationCoefficient2d/PearsonCorrelationCoefficientLevels.hpp>

#include <limits>

namespace orlix::imaproc::glbmsr
{

template <class Self, class Strip1, class Strip2>
void PearsonCCStrip<Self, Strip1, Strip2>::functionRegistration(AlgorithmFunctionSelector& selector)
{
    PearsonCCStrip::registerPairKernels(selector, []<class T>(std::type_identity<T>, auto domain) {
        return kernelOf<T>(getDeviationKernels().of(domain)).readFloats != nullptr;
    });
}

template <class Self, class Strip1, class Strip2>
template <class T, core::eInstructionSet::domain D>
core::ProcessingResult PearsonCCStrip<Self, Strip1, Strip2>::genericProcessFunction(ProcessingInfo info)
{
    const DeviationKernels& kernels = getDeviationKernels().of(D);
    const SecondStrip second{kernels, this->getParser(1), this->template attribute<Strip2>().get().image->getType()};
    const DeviationSums sums = sumDeviations<T>(kernelOf<T>(kernels).products, this->getParser(0), second, info,
                                                this->template value<InImgMean1>(), this->template value<InImgMean2>());
    // A constant image has no deviations: 0 / epsilon.
    const double factor = this->template value<InFactor>();
    this->template value<OutPearsonCCResult>().PearsonCC =
        sums.products / (factor == 0 ? factor + std::numeric_limits<float>::epsilon() : factor);
    return {};
}

} // namespace orlix::imaproc::glbmsr
