#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Processor/PearsonCorrelationCoefficient2d/PearsonCorrelationCoefficientLevels.hpp>

namespace orlix::imaproc::glbmsr
{

core::ProcessingResult PearsonCCMerge::merge(std::span<const Ptr<PearsonCCResult>> parts, PearsonCCResult& merged)
{
    merged.PearsonCC = 0;
    for (const Ptr<PearsonCCResult>& part : parts) {
        merged.PearsonCC += part->PearsonCC;
    }
    return {};
}

} // namespace orlix::imaproc::glbmsr
