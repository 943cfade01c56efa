#pragma once

#include <files/Format.hpp>
#include <files/Nesting.hpp>

#include <functional>
#include <string>
#include <vector>

namespace orlix::files
{

/// What the description of a file's first page says of its pages.
struct StatedAxes
{
    std::size_t images = 0;      ///< stated, if any; there may be fewer pages, with the pixels of all behind the first
    std::vector<Level> levels{}; ///< fastest first; empty: not stated
    std::string rule{};
    double spacing = 0; ///< along z
    std::string unit{};
    Scale scale{};
};

/// Reads what ImageJ, or tifffile ("shaped" JSON), wrote. `pagePixels`: of one page, with its samples. Throws
/// FileError.
StatedAxes parseDescription(const Source& source, const std::string& description, std::size_t pagePixels);

/// The nesting of `pages` pages: that of the options, else the stated one, else all pages lie on z. Throws FileError
/// where the stated one does not fit, OptionError where that of the options does not.
Nesting findNesting(const Source& source, const StatedAxes& stated, std::size_t pages);

/// A page of a file, by its number: of all, or of those that are not reduced versions of others.
struct PageRef
{
    std::string path; ///< of the file
    std::size_t page = 0;
    bool countsAll = false;

    friend bool operator==(const PageRef&, const PageRef&) = default;
};

/// One image of an OME file, or set of files.
struct OmeImage
{
    std::string name;
    std::size_t x = 0;
    std::size_t y = 0;
    Nesting nesting{};            ///< its pages are those of `pages`
    std::vector<PageRef> pages{}; ///< a page each for the plans, z fastest, then c, then t
    ImageFacts facts{};           ///< but for the size of pixels, nothing
    std::string fault{};          ///< why it cannot be read, if it cannot
};

bool isOme(const std::string& description);

/// Parses OME-XML of a file with so many pages. `samplesOf` tells the samples of a page's pixels, which use up
/// channels. Throws FileError.
std::vector<OmeImage> parseOme(const Source& source, const std::string& xml, std::size_t nbPages,
                               const std::function<std::size_t(const PageRef&)>& samplesOf);

} // namespace orlix::files
