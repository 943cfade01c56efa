#include <framework/process/ProcessorMessages.hpp>

namespace orlix::core
{

std::span<const Message> MessageMap<imaproc::eProcessorMessage>::texts()
{
    static constexpr Message table[] = {
        {0, "%1%"},
        {1, "%1%: %2% is not set"},
        {2, "%1%: %2%"},
        {3, "%1%: %2%"},
        {4, "%1% has no attribute %2%"},
        {5, "%1% holds %2% plans that are not those of %3%, which has %4%: pass a collection of just these plans, or "
            "leave it unset"},
        {6, "%1%: %2% is empty (%3%): an image with pixels is needed"},
        {7, "%1% has no kernel for %2% pixels"},
        {8, "%1% has no %2% kernel for %3% pixels: there are %4%"},
        {9, "The run was cancelled"},
        {10, "%1% is already running: wait for it first"},
        {11, "%1%: %2%"},
        {12, "%1% was run before it was initialised: call init first"},
        {13, "%1%: the strips of its inputs differ in size"},
        {14, "%1% runs asynchronously only where a shared pointer holds it"},
        {15, "%1% has %2% pixels, but %3% has %4%: both need the same size"},
        {16, "%1% is an image of %2%: one of %3% is needed for %4% of %5%"},
        {17, "%1% is a %2% image, but %3% a %4% image: both need the same pixel type, so convert one of them"},
        {18, "%1%: position %2% of %3% lies outside the image of %4%"},
        {19, "%1%: %2% lies on a GPU: activate GPU support, where the measure runs there, or copy it to the host"},
        {20, "%1%: the results of all plans need more than the memory limit of %2% MiB: measure fewer plans at once"},
        {33, "%1% is not initialised: call init before its attributes are set or read"},
    };
    return table;
}

} // namespace orlix::core
