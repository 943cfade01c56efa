#include <ORLIXIPL/ORLIXIPLGlobalMeasure/MeasureMessages.hpp>

namespace orlix::core
{

std::span<const Message> MessageMap<imaproc::glbmsr::eMeasureMessage>::texts()
{
    static constexpr Message table[] = {
        {0, "%1% has the BinWidth %2%: a width above 0 is needed"},
        {1, "%1% has no classes: a histogram with the frequencies of its classes and of a guard class is needed"},
        {2, "%1% ranges from %2% to %3%: %4% pixels need bounds from %5% to %6%"},
        {3, "%1% has classes of the width %2%: at least %3% is needed"},
        {4, "the image ranges from %1% to %2%: pass bounds of your own"},
        {5, "a range from %1% to %2% is too narrow for classes (of the width %3%): scale the pixels up"},
        {6, "%1% classes need %2% MiB, and the memory limit is %3% MiB: use wider classes or bounds of your own"},
        {7, "%1% has the BinWidth %2%, but neither UseBinWidth nor a number of classes: set UseBinWidth to true"},
        {8,
         "the labels range from %1% to %2%, which needs %3% MiB, and the memory limit is %4% MiB: number them from 0"},
        {9, "label %1% needs %2% MiB for the counts of all labels below it, and the memory limit is %3% MiB: number "
            "the labels from 0"},
        {10, "label %1% is beyond %2%, the highest that can be counted: number the labels from 0"},
        {11, "%1% samples need %2% MiB, and the memory limit is %3% MiB: take fewer"},
        {12, "%1% positions need %2% MiB, and the memory limit is %3% MiB: limit their number"},
    };
    return table;
}

} // namespace orlix::core
