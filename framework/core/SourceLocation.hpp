#pragma once

#include <framework/core/Api.hpp>

#include <string>

namespace orlix::core
{

struct SourceLocation
{
    const char* file = "";
    const char* function = ""; ///< with its signature
    int line = 0;
};

/// `path` relative to the root of the source tree, or as it is if it lies outside.
ORLIX_API std::string getRelativeFromRoot(const std::string& path);

} // namespace orlix::core

#define ORLIX_HERE (::orlix::core::SourceLocation{__FILE__, __PRETTY_FUNCTION__, __LINE__})
