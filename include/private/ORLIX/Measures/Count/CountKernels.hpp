#pragma once

#include <framework/kernel/Run.hpp>
#include <framework/kernel/ValueTables.hpp>
#include <framework/process/KernelsByType.hpp>

namespace orlix::measures
{

using namespace imaproc;

/// Counts pixels by their place in the order of values: of 8 bits by their byte, of 16 bits by value, of 32 bits and of
/// float pixels by the upper 16 bits of a number that grows with the value, where -0 is 0. A NaN does not count.
template <class T>
using CountKernel = void (*)(Run<T>, const ValueTables&);
template <class T>
using CountMaskKernel = void (*)(MaskedRun<T>, const ValueTables&);

using CountKernels = KernelsByType<CountKernel>;
using CountMaskKernels = KernelsByType<CountMaskKernel>;

/// What pixels of 32 bits are looked for: those whose number begins with one of a few prefixes.
struct Prefixes
{
    static constexpr std::size_t most = 16;

    std::uint32_t prefix[most]; ///< those that are not needed repeat the first one
    std::size_t size;
    unsigned shift; ///< by which a number is a prefix
};

/// Writes the numbers of the pixels that are found, and tells how many; there is room for all of the run.
template <class T>
using FindKernel = std::size_t (*)(Run<T>, const Prefixes&, std::uint32_t* found);
template <class T>
using FindMaskKernel = std::size_t (*)(MaskedRun<T>, const Prefixes&, std::uint32_t* found);

using FindKernels = KernelsByType<FindKernel>; ///< of 32 bits only
using FindMaskKernels = KernelsByType<FindMaskKernel>;

const KernelTables<CountKernels>& getCountKernels();
const KernelTables<CountMaskKernels>& getCountMaskKernels();
const KernelTables<FindKernels>& getFindKernels();
const KernelTables<FindMaskKernels>& getFindMaskKernels();

} // namespace orlix::measures
