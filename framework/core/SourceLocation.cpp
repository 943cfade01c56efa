#include <framework/core/SourceLocation.hpp>

#include <filesystem>

namespace orlix::core
{

std::string getRelativeFromRoot(const std::string& path)
{
    // What precedes this file's own place in the tree is the root, however the compiler was called.
    static const std::filesystem::path root = std::filesystem::path{__FILE__}.parent_path().parent_path().parent_path();
    const std::filesystem::path relative = std::filesystem::path{path}.lexically_relative(root);
    if (!relative.empty() && *relative.begin() != "..") {
        return relative.generic_string();
    }
    // An installed header: its place below the folder that holds the headers.
    for (const char* const top : {"/framework/", "/ORLIXIPL/"}) {
        if (const std::size_t at = path.rfind(top); at != std::string::npos) {
            return path.substr(at + 1);
        }
    }
    return path;
}

} // namespace orlix::core
