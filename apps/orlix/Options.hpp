#pragma once

#include <files/ImageFile.hpp>

#include <cstdlib>
#include <map>
#include <optional>
#include <string>
#include <vector>

namespace orlix::app
{

/// An image of a command line: a file, or several that are stacked.
struct ImageArgument
{
    std::string name; ///< as a report calls it
    std::vector<std::string> files{};
    std::string folder{}; ///< or pattern, that it was found by; empty: it was named itself
    std::string fault{};  ///< why there is none
};

/// The options of the command line, as they were given.
struct Options
{
    std::vector<std::string> images;         ///< words: files, folders and patterns
    std::string others;                      ///< the same for the second image
    std::vector<std::string> labelledImages; ///< and for images that the first one has labels for
    ImageArgument image;                     ///< what is measured now
    ImageArgument image2;
    std::vector<ImageArgument> labelled; ///< images that the first one has labels for
    ImageArgument mask;
    std::string masks; ///< a word, for one mask or one for each image; empty: none
    std::string per;   ///< empty: the verb's default
    std::string isa;
    std::string axis;
    std::string output;  ///< a file
    std::string outType; ///< empty: the image's type
    std::string plane;
    std::string region;
    std::string stack;     ///< an axis
    std::string as;        ///< a pixel type
    std::string saveState; ///< a file
    std::string nextPass;  ///< a file
    files::OpenOptions open{};
    files::Part part{};                            ///< what `plane` and `region` say
    std::map<std::string, std::string> parameters; ///< of the measure, by their options; empty where not given
    bool binary = false;
    bool gpu = false;
    unsigned threads = 0;
    std::size_t memory = 0; ///< for pixels; 0: what is needed
    bool json = false;
    bool csv = false;
    bool quiet = false;

    bool has(const std::string& parameter) const { return !text(parameter).empty(); }
    std::string text(const std::string& parameter) const
    {
        const auto found = parameters.find(parameter);
        return found == parameters.end() ? std::string{} : found->second;
    }
    /// A parameter that is a number.
    std::optional<double> number(const std::string& parameter) const
    {
        return has(parameter) ? std::optional{std::strtod(text(parameter).c_str(), nullptr)} : std::nullopt;
    }
};

} // namespace orlix::app
