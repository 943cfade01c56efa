#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Processor/SimilarityMsr/SimilarityMsrLvl1.hpp>

#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Declare.hpp>

namespace orlix::imaproc::glbmsr
{

ProcessorClass SimilarityMsrLvl1::processorClass = declare<SimilarityMsrLvl1>("SimilarityMsrLvl1", 66);

SimilarityMsrLvl1::SimilarityMsrLvl1() = default;
SimilarityMsrLvl1::~SimilarityMsrLvl1() = default;

Rule SimilarityMsrLvl1::makeRule() const
{
    return MergedLvl1::makeRule() && matchType(attribute<InImg1>(), attribute<InImg2>());
}

} // namespace orlix::imaproc::glbmsr
