#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Processor/GaussianNoiseMsr/GaussianNoiseMsrLvl1.hpp>

#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Declare.hpp>

namespace orlix::imaproc::glbmsr
{

ProcessorClass GaussianNoiseMsrLvl1::processorClass = declare<GaussianNoiseMsrLvl1>("GaussianNoiseMsrLvl1", 7);

GaussianNoiseMsrLvl1::GaussianNoiseMsrLvl1() = default;
GaussianNoiseMsrLvl1::~GaussianNoiseMsrLvl1() = default;

} // namespace orlix::imaproc::glbmsr
