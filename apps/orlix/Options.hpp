#pragma once

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
    std::string stat;
    std::string output;        ///< a file
    std::string outType;       ///< empty: the image's type
    std::optional<double> min; ///< min and max are both given, or neither
    std::optional<double> max;
    std::optional<double> binWidth;
    std::optional<unsigned> classes;
    std::optional<unsigned> samples;
    std::string bandwidth; ///< a rule or a number; empty: the library's own rule
    std::optional<unsigned> seed;
    std::optional<unsigned> limit;
    std::optional<double> peak;
    bool binary = false;
    bool gpu = false;
    unsigned threads = 0;
    bool json = false;
    bool quiet = false;
};

} // namespace orlix::app
