// Measures a volume that is nowhere in memory: a function says what its pixels are when they are needed.

#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Processor/StatsMsr/StatsMsr.hpp>

#include <algorithm>
#include <cstdio>

using namespace orlix;

int main()
{
    // 64 GB: plane z holds z everywhere. Any thread asks for a box: where it begins, and its sizes in x, y, z, c and t.
    const auto fetch = [](const image::Box& box, const image::PixelTarget& target) {
        for (std::size_t z = 0; z < box.size.z; ++z) {
            for (std::size_t y = 0; y < box.size.y; ++y) {
                std::fill_n(reinterpret_cast<float*>(target.row(y, z)), box.size.x, float(box.begin.z + z));
            }
        }
    };
    const auto volume = image::BaseImage::fromSource(fetch, image::eImageBufferType::eIBT_Float32, {4096, 4096, 1000});
    const auto first = volume->getSubImage({40, 0, 0}, image::ePlanKind::ePK_Plan2d);
    std::printf("plane 40: mean %g\n", imaproc::glbmsr::statsMsr(first)->Mean);
    return 0;
}
