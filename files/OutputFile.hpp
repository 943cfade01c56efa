#pragma once

#include <filesystem>
#include <string>

namespace orlix::files
{

/// A new file beside its target, which takes the target's place and mode when it is kept, and is gone otherwise.
class OutputFile
{
public:
    /// Throws FileError.
    explicit OutputFile(const std::filesystem::path& target);
    ~OutputFile();
    OutputFile(const OutputFile&) = delete;
    OutputFile& operator=(const OutputFile&) = delete;

    const std::string& getPath() const { return path_; }
    /// Throws FileError.
    void keep() const;

private:
    std::filesystem::path target_;
    std::string path_;
};

/// Removes the file of an OutputFile that is not kept yet; for signal handlers.
void removeUnfinishedFile();

/// Throws FileError where no file can be written: no folder, or something there that is no regular file.
void checkOutputPath(const std::string& path);

/// Writes a text file, whole or not at all. Throws FileError.
void writeText(const std::string& path, const std::string& text);

} // namespace orlix::files
