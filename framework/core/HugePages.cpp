#include <framework/core/HugePages.hpp>

#include <sys/mman.h>

#include <cstdint>

namespace orlix::core
{

void useHugePages(void* memory, std::size_t bytes)
{
    constexpr std::size_t page = 4096;
    constexpr std::size_t worthWhile = std::size_t{4} << 20;
    if (bytes < worthWhile) {
        return;
    }
    const std::size_t toPage = (page - reinterpret_cast<std::uintptr_t>(memory) % page) % page;
    // A hint: it may be refused.
    (void)madvise(static_cast<std::byte*>(memory) + toPage, (bytes - toPage) / page * page, MADV_HUGEPAGE);
}

} // namespace orlix::core
