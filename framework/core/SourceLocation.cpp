#include <framework/core/SourceLocation.hpp>

#include <filesystem>

namespace orlix::core
{

std::string getRelativeFromRoot(const std::string& path)
{
    // What precedes this file's own place in the tree is the root, however the compiler was called.
    static const std::filesystem::path root = std::filesystem::path{__FILE__}.parent_path().parent_path().parent_path();
    const std::filesystem::path relative = std::filesystem::path{path}.lexically_relative(root);
    const bool inside = !relative.empty() && *relative.begin() != "..";
    return inside ? relative.generic_string() : path;
}

} // namespace orlix::core
