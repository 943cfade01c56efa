#pragma once

#include <files/StoredType.hpp>

#include <framework/core/Ptr.hpp>
#include <framework/image/Geometry.hpp>
#include <framework/image/PixelSource.hpp>

#include <array>
#include <cstddef>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <vector>

/// Image files of many formats, seen as images that are read by boxes.
namespace orlix::files
{

using image::Box;
using image::PixelTarget;
using image::Position;

/// How the numbers of a file are shown.
enum class Photometric
{
    BlackIsZero,
    WhiteIsZero,
    Rgb, ///< the channels are red, green and blue
    Palette
};

/// What gave an image its axes.
enum class AxesBy
{
    File,
    Guess, ///< the number of dimensions, or that there are pages
    Axes,  ///< the option --axes
    Pages  ///< the option --pages
};

/// What a file says of an image in it.
struct ImageFacts
{
    std::string path;   ///< as the user named it
    std::string format; ///< "TIFF"
    StoredType type = StoredType::UInt8;
    std::optional<StoredType> convertedFrom{}; ///< the type in the file, where it is another
    image::ImageGeometry geometry{};
    std::string axes; ///< as they are stored, slowest first: "TCZYX"
    AxesBy axesBy = AxesBy::File;
    std::string axesRule;              ///< what gave them: "OME-XML"
    std::array<double, 3> pixelSize{}; ///< along x, y and z, in `unit`; 0 where the file does not tell
    std::string unit{};                ///< "um"; empty: not told
    std::string compression = "none";
    Scale scale{}; ///< of the stored numbers
    Photometric photometric = Photometric::BlackIsZero;
    std::vector<std::string> series{};  ///< the images of the file, a line each; empty: this is the only one
    std::vector<std::string> members{}; ///< the files that the image lies in, if there are others than `path`
};

/// Sets the size of pixels along x, y or z (0, 1, 2), in the unit that the first one came in; 0 where it cannot be told
/// in that unit. Micrometres are "um", whatever the file calls them.
void setPixelSize(ImageFacts& facts, std::size_t axis, double size, const std::string& unit);

/// One image of a file: a source of pixels of the stored type, which throws FileError. Wrappers that show a part, a
/// conversion, or a stack of others are such images again.
class ImageReader : public image::PixelSource
{
public:
    const ImageFacts& getFacts() const { return facts_; }
    image::SourceLayout getLayout() const override { return layout_; }

    /// What a user should know of the file, and of the pixels that were read, a line each. Any thread calls it.
    virtual std::vector<std::string> getNotes() const;

protected:
    [[noreturn]] void fail(const std::string& what) const;
    /// On any thread.
    void note(const std::string& text);

    ImageFacts facts_;
    image::SourceLayout layout_;

private:
    mutable std::mutex mutex_;
    std::vector<std::string> notes_;
};

using ReaderPtr = std::unique_ptr<ImageReader>;

/// An axis of pixels in memory or in a file: how many, and how far apart, in bytes.
struct Stretch
{
    std::size_t count = 1;
    std::int64_t from = 0;
    std::int64_t to = 0;
};

/// Copies pixels from one arrangement of five axes into another.
void copyPixels(const std::byte* from, std::byte* to, std::size_t pixelSize, const std::array<Stretch, 5>& axes);

/// Calls `visit(plan, target)` for every plan of a box: the plan's place in the image, and where its rows go.
template <class Visit>
void forEachPlan(const Box& box, const PixelTarget& target, Visit visit)
{
    for (std::size_t t = 0; t < box.size.t; ++t) {
        for (std::size_t c = 0; c < box.size.c; ++c) {
            for (std::size_t z = 0; z < box.size.z; ++z) {
                visit(Position{box.begin.x, box.begin.y, box.begin.z + z, box.begin.c + c, box.begin.t + t},
                      PixelTarget{target.row(0, z, c, t), target.strides});
            }
        }
    }
}

} // namespace orlix::files
