#pragma once

#include <framework/core/Api.hpp>

#include <cstddef>
#include <vector>

namespace orlix::core
{

/// Asks for huge pages for memory that nobody has touched yet: the first touch of a page costs more than the writing of
/// it. What is too small for a huge page, and systems without them, stay as they are.
ORLIX_API void useHugePages(void* memory, std::size_t bytes);

template <class T>
void useHugePages(std::vector<T>& list)
{
    useHugePages(list.data(), list.size() * sizeof(T));
}

} // namespace orlix::core
