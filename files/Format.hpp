#pragma once

#include <files/ImageReader.hpp>

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace orlix::files
{

/// How a file is to be read.
struct OpenOptions
{
    std::string pages{};                         ///< how its pages nest, fastest first, as "z=4,c=2,t=3"
    std::string axes{};                          ///< of an array, slowest first, as "TCZYX"
    std::optional<std::size_t> series{};         ///< which of several images
    std::optional<image::eImageBufferType> as{}; ///< convert pixels to this type
    bool keepsValues = false;                    ///< a conversion that changes a pixel throws FileError
    bool scaled = false;                         ///< scale pixels as the header says
    bool listsSeries = false;                    ///< of several images the first is taken, where none is picked
    std::uint64_t maxPixels = std::uint64_t{1} << 40;
};

/// Where an image is to be found.
struct Source
{
    std::string path;    ///< of a file or folder
    std::string name;    ///< as the user calls it, in messages
    std::string inner{}; ///< the image in a file that holds several: "/path"
    std::string head{};  ///< the first bytes of a file; empty for a folder
    OpenOptions options{};

    [[noreturn]] void fail(const std::string& what) const;
    /// Facts to begin with.
    ImageFacts describe(const char* format) const;
    /// The image that the options pick of those that the file holds, a line each. Fails where they pick none of
    /// several; `otherwise`: how else one may be named.
    std::size_t chooseSeries(const std::vector<std::string>& series, const std::string& otherwise = {}) const;
};

/// A kind of file that may be read.
struct Format
{
    const char* name;
    /// Whether a file, or a folder, is of this kind.
    bool (*recognizes)(const Source& source);
    /// Throws FileError; null where the program was built without the format.
    ReaderPtr (*open)(const Source& source);
};

/// In the order in which a file is tried.
const std::vector<Format>& listFormats();

// What each source file offers; the build leaves out what it is told to.
ReaderPtr openTiff(const Source& source);
ReaderPtr openPng(const Source& source);
ReaderPtr openJpeg(const Source& source);
ReaderPtr openNifti(const Source& source);
ReaderPtr openNrrd(const Source& source);
ReaderPtr openMetaImage(const Source& source);
ReaderPtr openMrc(const Source& source);
ReaderPtr openNpy(const Source& source);
ReaderPtr openHdf5(const Source& source);
ReaderPtr openZarr(const Source& source);

} // namespace orlix::files
