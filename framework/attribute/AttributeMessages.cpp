#include <framework/attribute/AttributeMessages.hpp>

namespace orlix::core
{

std::span<const Message> MessageMap<imaproc::attr::eAttributeMessage>::texts()
{
    static constexpr Message table[] = {
        {0, "%1% does not take a %2% image: convert it to one of %3%"},
        {1, "%1% is an image of %2%: %3% is needed"},
        {2, "%1% starts at %2% and counts %3%, but the image has %4% %5%"},
        {3, "The archive has no strip \"%1%\""},
        {4, "The archive lacks element %1% of a %2%"},
        {5, "A %1% cannot hold an element of the class %2%"},
        {6, "%1% does not take a %2% image: make it binary, 1 where a pixel is set and 0 elsewhere"},
        {7, "The archive's \"%1%\" has %2% numbers: a multiple of %3% is needed"},
        {8, "%1% does not take %2%"},
    };
    return table;
}

} // namespace orlix::core
