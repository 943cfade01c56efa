#include <framework/core/HugePages.hpp>

#include <sys/mman.h>

#include <cstdint>

namespace orlix::core
{

void useHugePages(void* memory, std::size_t bytes)
{
    constexpr std::uintptr_t page = 4096;
    constexpr std::size_t worthWhile = std::size_t{4} << 20;
    if (bytes < worthWhile) {
        return;
    }
    const std::uintptr_t begin = (reinterpret_cast<std::uintptr_t>(memory) + page - 1) / page * page;
    const std::uintptr_t end = (reinterpret_cast<std::uintptr_t>(memory) + bytes) / page * page;
    (void)madvise(reinterpret_cast<void*>(begin), end - begin, MADV_HUGEPAGE); // a hint: it may be refused
}

} // namespace orlix::core
