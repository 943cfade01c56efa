#include <framework/process/AlgorithmFunctionSelector.hpp>

#include <algorithm>
#include <tuple>

namespace orlix::imaproc
{

using core::InstructionSetsIdentifier;
using image::DataTypeIdentifierColl;

void AlgorithmFunctionSelector::registerFunction(const AlgorithmFunctionIdentifier& identifier)
{
    const auto order = [](const AlgorithmFunctionIdentifier& a, const AlgorithmFunctionIdentifier& b) {
        return std::tie(a.dataTypes, b.efficiency) < std::tie(b.dataTypes, a.efficiency);
    };
    functions_.insert(std::upper_bound(functions_.begin(), functions_.end(), identifier, order), identifier);
    genericOnly_ = genericOnly_ && identifier.instructionSets == core::eInstructionSet::eIS_Generic;
}

std::vector<AlgorithmFunctionIdentifier>::const_iterator
AlgorithmFunctionSelector::findFirst(const DataTypeIdentifierColl& dataTypes) const
{
    return std::lower_bound(functions_.begin(), functions_.end(), dataTypes,
                            [](const AlgorithmFunctionIdentifier& function, const DataTypeIdentifierColl& types) {
                                return function.dataTypes < types;
                            });
}

const AlgorithmFunctionIdentifier* AlgorithmFunctionSelector::select(const DataTypeIdentifierColl& dataTypes,
                                                                     InstructionSetsIdentifier forced) const
{
    for (auto it = findFirst(dataTypes); it != functions_.end() && it->dataTypes == dataTypes; ++it) {
        if (forced.empty() || genericOnly_ || forced.contains(it->instructionSets)) {
            return &*it;
        }
    }
    return nullptr;
}

InstructionSetsIdentifier AlgorithmFunctionSelector::getInstructionSets(const DataTypeIdentifierColl& dataTypes) const
{
    InstructionSetsIdentifier all;
    for (auto it = findFirst(dataTypes); it != functions_.end() && it->dataTypes == dataTypes; ++it) {
        all = all | it->instructionSets;
    }
    return all;
}

} // namespace orlix::imaproc
