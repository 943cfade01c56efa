#pragma once

#include <files/ImageReader.hpp>

#include <cstddef>
#include <string>
#include <vector>

namespace orlix::files
{

/// One axis of a nesting: its letter (z, c or t) and its size.
struct Level
{
    char axis;
    std::size_t size;
};

/// Where the pages of a file lie on the axes z, c and t.
struct Nesting
{
    std::size_t z = 1;
    std::size_t c = 1; ///< in channels of pages; a page of several samples holds as many channels
    std::size_t t = 1;
    std::vector<std::size_t> pages{}; ///< the page of every plan, z fastest, then c, then t
    std::string letters{};            ///< of the axes, slowest first: "TCZ"
    std::string rule{};               ///< what gave them, in words
    AxesBy by = AxesBy::File;

    std::size_t nbPlans() const { return z * c * t; }
};

/// The number of pages; the largest number where there are more.
std::size_t countPages(const std::vector<Level>& levels);
/// Pages that nest as `levels` tell, fastest first.
Nesting nest(const std::vector<Level>& levels, const std::string& rule, AxesBy by = AxesBy::File);
/// The nesting that `order` ("z=4,c=2,t=3", fastest first) states. Throws OptionError where it makes no sense or does
/// not fit the pages of the file.
Nesting nestByOption(const std::string& order, std::size_t pages, const std::string& file);

/// Shows a reader whose z are pages, and whose channels are the samples of a page, as an image with the axes of a
/// nesting.
ReaderPtr nestPages(ReaderPtr pages, const Nesting& nesting);
/// Shows the plans of any image, in the order in which they are stored, in another nesting.
ReaderPtr nestPlans(ReaderPtr image, const std::string& order);

} // namespace orlix::files
