#pragma once

#include <framework/core/Api.hpp>
#include <framework/core/InstructionSet.hpp>

#include <cstddef>

/// The settings of the process, each callable from any thread; a change holds for what is started after it, strips
/// included.
namespace orlix::core::settings
{

/// The number of threads that measures may use together; 0, the default, is one per processor of the machine. Results
/// do not depend on it.
ORLIX_API void setNbThreads(unsigned threads);
/// Never 0.
ORLIX_API unsigned getNbThreads();

/// Runs every kernel in this set, but for classes that have a forced set of their own and for those that have generic
/// kernels only. An empty identifier releases it.
ORLIX_API void forceInstructionSets(InstructionSetsIdentifier sets);
ORLIX_API InstructionSetsIdentifier getForcedInstructionSets();

/// The bytes that the partial results of one result, such as those of a histogram of many bins, may take together; 0
/// stands for the default of 2 GiB. What needs more fails before it allocates.
ORLIX_API void setMemoryLimit(std::size_t bytes);
ORLIX_API std::size_t getMemoryLimit();

/// The bytes that pixels may take together which are fetched from sources: of images that are no buffers. 0, the
/// default, stands for what the images need: less than 350 MiB and four planes, and for medians along z or time, which
/// need all planes of some rows at once, a quarter of the machine's memory.
ORLIX_API void setPixelMemory(std::size_t bytes);
/// 0: as much as is needed.
ORLIX_API std::size_t getPixelMemory();

/// The machine's memory in bytes.
ORLIX_API std::size_t getMachineMemory();

} // namespace orlix::core::settings
