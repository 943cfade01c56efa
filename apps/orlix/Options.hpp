#pragma once

#include <cstdlib>
#include <map>
#include <optional>
#include <string>

namespace orlix::app
{

/// The options of the command line, as they were given.
struct Options
{
    std::string image;
    std::string image2;
    std::string mask;
    std::string pages;
    std::string per; ///< empty: the verb's default
    std::string isa;
    std::string axis;
    std::string output;  ///< a file
    std::string outType; ///< empty: the image's type
    std::optional<unsigned> seed;
    std::optional<double> peak;
    std::map<std::string, std::string> parameters; ///< of the measure, by their options; empty where not given
    bool binary = false;
    bool gpu = false;
    unsigned threads = 0;
    bool json = false;
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
