#include <framework/gpu/GpuMessages.hpp>

namespace orlix::core
{

std::span<const Message> MessageMap<gpu::eGpuMessage>::texts()
{
    static constexpr Message table[] = {
        {0, "GPU support is not available: %1%"},
        {1, "%1% failed: %2%"},
        {2, "There is no GPU %1%: this machine has %2%"},
        {3, "%1% does not lie on a GPU: copy it there first"},
        {4, "%1% has no kernel for %2% pixels"},
        {5, "%1% lies on GPU %2%, but GPU %3% is selected: activate that one, or copy the image to this one"},
        {6, "The pointer to wrap leads to no memory of a GPU"},
    };
    return table;
}

} // namespace orlix::core
