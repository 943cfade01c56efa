#include <framework/core/Settings.hpp>

#include <algorithm>
#include <atomic>
#include <thread>

namespace orlix::core::settings
{

namespace
{

std::atomic<unsigned> nbThreads{0};
std::atomic<InstructionSetsIdentifier> forcedSets{InstructionSetsIdentifier{}};

} // namespace

void setNbThreads(unsigned threads)
{
    nbThreads = threads;
}

unsigned getNbThreads()
{
    static const unsigned processors = std::max(1u, std::thread::hardware_concurrency());
    const unsigned threads = nbThreads.load(std::memory_order_relaxed);
    return threads != 0 ? threads : processors;
}

void forceInstructionSets(InstructionSetsIdentifier sets)
{
    forcedSets = sets;
}

InstructionSetsIdentifier getForcedInstructionSets()
{
    return forcedSets.load(std::memory_order_relaxed);
}

} // namespace orlix::core::settings
