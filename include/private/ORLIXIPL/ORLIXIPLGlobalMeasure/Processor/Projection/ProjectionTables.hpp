#pragma once

#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Kernel/KernelTables.hpp>
#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Processor/Projection/ColumnKernels.hpp>
#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Processor/Projection/PixelWriters.hpp>
#include <ORLIXIPL/ORLIXIPLGlobalMeasure/Processor/Projection/RowKernels.hpp>

#include <framework/attribute/Projection.hpp>

#include <type_traits>
#include <vector>

/// What the projections share.
namespace orlix::imaproc::glbmsr
{

const KernelTables<ColumnKernels>& getColumnKernels();
const KernelTables<RowKernels>& getRowKernels();
const KernelTables<PixelWriters>& getPixelWriters(); ///< no AVX

/// The set whose kernels stand behind medians that are registered as generic alone: the best of this machine, or of the
/// forced sets, if there are any.
core::eInstructionSet::domain chooseMedianSet(core::InstructionSetsIdentifier forced);

/// The numbers of strips, one after the other.
std::vector<double> concatenate(const std::vector<Ptr<attr::Doubles>>& parts);

/// Calls `visit` with a std::type_identity of the class of a statistic. The classes stand in the order of the
/// enumeration; any value beyond it stands for the first.
template <class First, class... Others, class Visitor>
void visitStatistic(attr::eProjStatType statistic, Visitor visit)
{
    auto value = static_cast<unsigned>(statistic);
    const auto visitNext = [&]<class Lvl3>(std::type_identity<Lvl3> type) {
        if (--value != 0) {
            return false;
        }
        visit(type);
        return true;
    };
    if (!(visitNext(std::type_identity<Others>{}) || ...)) {
        visit(std::type_identity<First>{});
    }
}

} // namespace orlix::imaproc::glbmsr
