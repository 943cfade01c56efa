#include <framework/image/ImageMessages.hpp>

namespace orlix::core
{

std::span<const Message> MessageMap<image::eImageMessage>::texts()
{
    static constexpr Message table[] = {
        {0, "An image of %1% is too large: a side must be below 2^32 and all pixels below 2^62 bytes"},
        {1, "An image of %1% cannot wrap a null buffer"},
        {2, "The buffer is not aligned to the %1% bytes of a %2% pixel: copy it into an image of its own"},
        {3, "The %1% stride of %2% bytes is no multiple of the %3% bytes of a %4% pixel"},
        {4, "There is no plan %1% (z, c, t) in an image of %2%"},
        {5, "The archive holds %1% bytes of pixels where %2% are needed"},
        {6, "\"%1%\" is no pixel type"},
        {7, "The pixels lie on a GPU: copy them to the host first"},
        {8, "An image of %1% cannot come from no source"},
        {9, "The pixels of an image of %1% need %2% MiB of memory, and this machine has %3%"},
    };
    return table;
}

} // namespace orlix::core
