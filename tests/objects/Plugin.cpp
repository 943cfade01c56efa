// A plugin of a host that knows nothing of this project: it measures when it is asked, and leaves a run behind.

#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Processor/StatsMsr/StatsMsr.hpp>

using namespace orlix;
using namespace orlix::imaproc::glbmsr;

extern "C" ORLIX_API double measureSomething()
{
    const Ptr<const image::BaseImage> image =
        image::BaseImage::create(image::eImageBufferType::eIBT_UInt16, {1024, 1024});
    (void)statsMsr_async(image);
    return statsMsr(image)->Mean;
}
