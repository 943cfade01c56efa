#pragma once

#include <framework/kernel/Run.hpp>
#include <framework/kernel/ValueTables.hpp>
#include <framework/process/KernelsByType.hpp>

namespace orlix::measures
{

using namespace imaproc;

/// Counts pixels by their place in the order of values: of 8 bits by their byte, of 16 bits all 65536 values, of 32
/// bits and of float pixels the upper 16 bits of a number that grows with the value, where -0 is 0. A NaN does not
/// count.
template <class T>
using CountKernel = void (*)(Run<T>, const ValueTables&);
template <class T>
using CountMaskKernel = void (*)(MaskedRun<T>, const ValueTables&);

using CountKernels = KernelsByType<CountKernel>;
using CountMaskKernels = KernelsByType<CountMaskKernel>;

const KernelTables<CountKernels>& getCountKernels();
const KernelTables<CountMaskKernels>& getCountMaskKernels();

} // namespace orlix::measures
