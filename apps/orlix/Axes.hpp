#pragma once

#include <cstddef>
#include <string>
#include <vector>

namespace orlix::app
{

/// Where the pages of a file lie on the axes z, c and t.
struct Axes
{
    struct Place
    {
        std::size_t z = 0;
        std::size_t c = 0; ///< in channels of pages; a page of several samples holds as many channels
        std::size_t t = 0;
    };

    std::size_t z = 1;
    std::size_t c = 1;
    std::size_t t = 1;
    std::vector<std::size_t> pages; ///< the page of every plan, z fastest, then c, then t

    std::size_t nbPlans() const { return z * c * t; }
};

/// What a file says of itself.
struct PageFacts
{
    std::size_t pages = 1;
    std::size_t samples = 1; ///< per pixel
    std::string description; ///< of the first page: ImageJ's or OME's text, or anything
    std::string fileName;    ///< without folder
};

/// The axes that `order` ("z=4,c=2,t=3", fastest first) states, if it is not empty; else those of the description; else
/// all pages lie on z. Throws UsageError where the order makes no sense or does not fit the pages, FileError where the
/// description does not.
Axes findAxes(const PageFacts& facts, const std::string& order);

/// The number of images of an ImageJ description; 0 if it is none.
std::size_t countImageJImages(const std::string& description);

} // namespace orlix::app
