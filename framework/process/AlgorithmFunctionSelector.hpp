#pragma once

#include <framework/core/Api.hpp>
#include <framework/core/InstructionSet.hpp>
#include <framework/core/ProcessingResult.hpp>
#include <framework/image/PixelType.hpp>

#include <cstddef>
#include <vector>

namespace orlix::imaproc
{

class BaseProcessingAlgorithm;

/// The pixels that a kernel finds in its strip: `size` of them, in runs of `rowSize` that lie gapless in memory.
struct ProcessingInfo
{
    std::size_t size = 0;
    std::size_t rowSize = 0;

    std::size_t nbRuns() const { return rowSize == 0 ? 0 : size / rowSize; }
};

using AlgorithmFunction = core::ProcessingResult (BaseProcessingAlgorithm::*)(ProcessingInfo);

/// The efficiency of a kernel: it rises with the domain.
constexpr unsigned getEfficiency(core::eInstructionSet::domain set)
{
    return 100 * (set + 1);
}

/// A kernel: what it takes, what it needs, how good it is, and itself.
struct AlgorithmFunctionIdentifier
{
    image::DataTypeIdentifierColl dataTypes;
    core::InstructionSetsIdentifier instructionSets;
    unsigned efficiency = 0;
    AlgorithmFunction function = nullptr;
};

/// The kernels of one level 3 class. It is filled while its library loads, and only read afterwards.
class ORLIX_API AlgorithmFunctionSelector
{
public:
    /// Whether this machine can run kernels that need these sets.
    static bool isSupported(core::InstructionSetsIdentifier sets) { return core::isAvailable(sets); }

    void registerFunction(const AlgorithmFunctionIdentifier& identifier);

    /// The most efficient kernel for these types, among those of the forced sets if there are any; else null. A class
    /// whose kernels are all generic takes no notice of forced sets.
    const AlgorithmFunctionIdentifier* select(const image::DataTypeIdentifierColl& dataTypes,
                                              core::InstructionSetsIdentifier forced) const;

    /// The sets of the kernels for these types.
    core::InstructionSetsIdentifier getInstructionSets(const image::DataTypeIdentifierColl& dataTypes) const;

    /// By types, the most efficient first.
    const std::vector<AlgorithmFunctionIdentifier>& getFunctions() const { return functions_; }

private:
    std::vector<AlgorithmFunctionIdentifier>::const_iterator
    findFirst(const image::DataTypeIdentifierColl& dataTypes) const;

    std::vector<AlgorithmFunctionIdentifier> functions_;
    bool genericOnly_ = true;
};

} // namespace orlix::imaproc
