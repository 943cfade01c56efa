#pragma once

#include <orlix/Options.hpp>
#include <orlix/Output.hpp>

#include <framework/image/BaseImage.hpp>

namespace orlix::app
{

/// The images that words of a command line stand for, in natural order where a word stands for several: a file, a
/// pattern, a folder with all that it holds, or "-".
std::vector<ImageArgument> listImages(const std::vector<std::string>& words);
/// All of them as one image.
ImageArgument stackImages(const std::vector<ImageArgument>& images, const std::vector<std::string>& words);

/// Parses --plane and --region. Throws UsageError.
files::Part parsePart(const std::string& plane, const std::string& region);

/// What an image says of itself, without its pixels, and of several the first one.
Report describeFile(const Options& options);

/// The size of the image, before any part is cut out of it.
image::ImageGeometry readSize(const Options& options);

/// Images as they are measured: small ones in memory, of others what is needed when it is needed.
class ImageSource
{
public:
    /// A part of an image. Throws FileError.
    Ptr<const image::BaseImage> read(files::ReaderPtr reader, const Options& options, const files::Part& part);
    /// The same of one that may have fewer axes than the image that it goes with, which has this size.
    Ptr<const image::BaseImage> readRepeated(files::ReaderPtr reader, const Options& options, const files::Part& part,
                                             const image::ImageGeometry& size);
    /// What a user should know of the pixels that were read; called when all were.
    void addNotes(Report& report) const;

private:
    bool takesMemory(std::size_t bytes);

    std::size_t inMemory_ = 0; // bytes
    std::vector<Ptr<files::ImageReader>> readers_;
};

double countBytes(const image::BaseImage& image);

/// The images of one result, with what a report says of them.
struct Inputs
{
    /// A binary image stays one where the measure knows them. Throws FileError.
    explicit Inputs(const Options& options, bool takesBinary = false);

    Ptr<const image::BaseImage> image;
    Ptr<const image::BaseImage> image2; ///< null: none
    Ptr<const image::BaseImage> mask;   ///< null: none
    files::ImageFacts facts;            ///< of the image
    files::Position origin{};           ///< of the part that is measured, in the image
    Report report;
    ImageSource source;
};

/// A label image, and others of the same size.
struct LabelledInputs
{
    /// Throws FileError.
    explicit LabelledInputs(const Options& options);

    Ptr<const image::BaseImage> labels;
    std::vector<Ptr<const image::BaseImage>> images;
    files::Position origin{}; ///< of the part that is measured, in the images
    Report report;
    ImageSource source;
};

} // namespace orlix::app
