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
        {6, "%1% has the BinWidth %2%: a width above 0 is needed"},
        {7, "%1% has no classes: a histogram with the frequencies of its classes and of a guard class is needed"},
        {8, "%1% ranges from %2% to %3%: %4% pixels need bounds from %5% to %6%"},
        {9, "%1% has classes of the width %2%: at least %3% is needed"},
        {10, "the image ranges from %1% to %2%: pass bounds of your own"},
        {11, "a range from %1% to %2% is too narrow for classes (of the width %3%): scale the pixels up"},
        {12, "%1% classes need %2% MiB, and the memory limit is %3% MiB: use wider classes or bounds of your own"},
        {13,
         "the labels range from %1% to %2%, which needs %3% MiB, and the memory limit is %4% MiB: number them from 0"},
        {14, "%1% does not take a %2% image: make it binary, 1 where a pixel is set and 0 elsewhere"},
        {15, "label %1% needs %2% MiB for the counts of all labels below it, and the memory limit is %3% MiB: number "
             "the labels from 0"},
        {16, "%1% samples need %2% MiB, and the memory limit is %3% MiB: take fewer"},
        {17, "label %1% is beyond %2%, the highest that can be counted: number the labels from 0"},
        {18, "%1% positions need %2% MiB, and the memory limit is %3% MiB: limit their number"},
        {19, "The archive's \"%1%\" has %2% numbers: a multiple of %3% is needed"},
        {20, "%1% has the BinWidth %2%, but neither UseBinWidth nor a number of classes: set UseBinWidth to true"},
    };
    return table;
}

} // namespace orlix::core
