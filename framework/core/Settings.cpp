#include <framework/core/Settings.hpp>

#include <algorithm>
#include <atomic>
#include <thread>
#include <unistd.h>

namespace orlix::core::settings
{

namespace
{

std::atomic<unsigned> nbThreads{0};
std::atomic<InstructionSetsIdentifier> forcedSets{InstructionSetsIdentifier{}};

constexpr std::size_t defaultMemoryLimit = std::size_t{2} << 30;
std::atomic<std::size_t> memoryLimit{defaultMemoryLimit};
std::atomic<std::size_t> pixelMemory{0};

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

void setMemoryLimit(std::size_t bytes)
{
    memoryLimit = bytes != 0 ? bytes : defaultMemoryLimit;
}

std::size_t getMemoryLimit()
{
    return memoryLimit.load(std::memory_order_relaxed);
}

void setPixelMemory(std::size_t bytes)
{
    pixelMemory = bytes;
}

std::size_t getPixelMemory()
{
    return pixelMemory.load(std::memory_order_relaxed);
}

std::size_t getMachineMemory()
{
    return static_cast<std::size_t>(::sysconf(_SC_PHYS_PAGES)) * static_cast<std::size_t>(::sysconf(_SC_PAGE_SIZE));
}

} // namespace orlix::core::settings
