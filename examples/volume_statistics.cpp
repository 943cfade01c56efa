// Measures a volume that lies in the caller's own memory, without a copy: as a whole, plane by plane, and
// asynchronously.

#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Processor/StatsMsr/StatsMsr.hpp>
#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Processor/StatsMsr2d/StatsMsr2d.hpp>

#include <framework/process/BaseProcessingException.hpp>

#include <cstdio>
#include <vector>

using namespace orlix;
using namespace orlix::imaproc;

int main()
{
    // 64 planes of 256 x 256 16-bit pixels.
    const image::ImageGeometry size{256, 256, 64};
    const auto pixels = makePtr<std::vector<unsigned short>>(size.nbPixels());
    for (std::size_t i = 0; i < pixels->size(); ++i) {
        (*pixels)[i] = static_cast<unsigned short>(i / (256 * 256) * 100 + i % 7);
    }

    // The image keeps `pixels` alive; pass strides as well where rows or planes do not touch.
    const Ptr<const image::BaseImage> volume = image::BaseImage::wrap(
        static_cast<const void*>(pixels->data()), image::eImageBufferType::eIBT_UInt16, size, pixels);

    const auto whole = glbmsr::statsMsr(volume);
    std::printf("volume:   %llu voxels, mean %.3f, deviation %.3f\n", static_cast<unsigned long long>(whole->NbPixels),
                whole->Mean, whole->StdDev);

    const auto planes = glbmsr::multiSlice_statsMsr2d(volume);
    std::printf("plane 10: mean %.3f, from %g to %g\n", planes->getStorage({10, 0, 0})->Mean,
                planes->getStorage({10, 0, 0})->Min, planes->getStorage({10, 0, 0})->Max);

    const auto running = glbmsr::statsMsr_async(volume);
    // ... something else ...
    if (const auto result = running->wait(); !result) {
        std::fprintf(stderr, "%s\n", result.getMessage().c_str());
        return 1;
    }
    std::printf("the same: mean %.3f\n", glbmsr::getAsyncProcessorOutput(running)->Mean);

    try {
        glbmsr::statsMsr(nullptr);
    } catch (const ORLIXBaseProcessingException& error) {
        std::printf("no image: %s\n", error.what());
    }
}
