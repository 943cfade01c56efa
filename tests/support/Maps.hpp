#pragma once

#include <fstream>
#include <string>

namespace orlix::test
{

/// Whether a library of that name is loaded.
inline bool isMapped(const std::string& name)
{
    std::ifstream maps{"/proc/self/maps"};
    for (std::string line; std::getline(maps, line);) {
        if (line.find(name) != std::string::npos) {
            return true;
        }
    }
    return false;
}

} // namespace orlix::test
