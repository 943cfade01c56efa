#pragma once

#include <framework/core/Api.hpp>
#include <framework/core/InstructionSet.hpp>

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
/// kernels alone. An empty identifier releases it.
ORLIX_API void forceInstructionSets(InstructionSetsIdentifier sets);
ORLIX_API InstructionSetsIdentifier getForcedInstructionSets();

} // namespace orlix::core::settings
