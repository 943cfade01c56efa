#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Processor/GaussianNoiseMsr/GaussianNoiseMsrLvl2.hpp>

#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Declare.hpp>

namespace orlix::imaproc::glbmsr
{

ProcessorClass GaussianNoiseMsrLvl2::processorClass = declare<GaussianNoiseMsrLvl2>("GaussianNoiseMsrLvl2", 8);

GaussianNoiseMsrLvl2::GaussianNoiseMsrLvl2() = default;
GaussianNoiseMsrLvl2::~GaussianNoiseMsrLvl2() = default;

} // namespace orlix::imaproc::glbmsr
