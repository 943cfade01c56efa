#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Processor/NormalizedCrossCorrelationMsr2d/NormalizedCrossCorrelationMsrLevels.hpp>

#include <cmath>

namespace orlix::imaproc::glbmsr
{

core::ProcessingResult NCCMerge::merge(std::span<const Ptr<NCCResult>> parts, NCCResult& merged)
{
    double squares1 = 0;
    double squares2 = 0;
    double products = 0;
    for (const Ptr<NCCResult>& part : parts) {
        squares1 += part->SumSquaredDev1;
        squares2 += part->SumSquaredDev2;
        products += part->Correlation * std::sqrt(part->SumSquaredDev1 * part->SumSquaredDev2);
    }
    merged.Correlation = products / std::sqrt(squares1 * squares2);
    merged.SumSquaredDev1 = squares2;
    return {};
}

} // namespace orlix::imaproc::glbmsr
