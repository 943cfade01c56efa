#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Processor/SimilarityMsr/SimilarityMsrLvl2.hpp>

#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Declare.hpp>

namespace orlix::imaproc::glbmsr
{

ProcessorClass SimilarityMsrLvl2::processorClass = declare<SimilarityMsrLvl2>("SimilarityMsrLvl2", 67);

SimilarityMsrLvl2::SimilarityMsrLvl2() = default;
SimilarityMsrLvl2::~SimilarityMsrLvl2() = default;

Rule SimilarityMsrLvl2::makeRule() const
{
    return StripsLvl2::makeRule() && matchType(attribute<InSubImg2d1>(), attribute<InSubImg2d2>());
}

} // namespace orlix::imaproc::glbmsr
