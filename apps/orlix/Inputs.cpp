#include <orlix/Inputs.hpp>

#include <orlix/Errors.hpp>

#include <files/Names.hpp>

#include <framework/core/Settings.hpp>

#include <algorithm>
#include <cctype>
#include <charconv>
#include <cmath>
#include <filesystem>
#include <glob.h>
#include <limits>
#include <sstream>

namespace orlix::app
{

namespace fs = std::filesystem;
using files::ImageFacts;
using image::BaseImage;
using image::eImageBufferType;

namespace
{

/// The images in a folder and those below it. Links to folders are not followed, hidden files are passed over.
void listFolder(const fs::path& folder, std::vector<std::string>& found)
{
    std::vector<std::string> names;
    std::error_code error;
    for (const auto& entry : fs::directory_iterator{folder, error}) {
        if (const std::string name = entry.path().filename().string(); !name.starts_with(".")) {
            names.push_back(name);
        }
    }
    if (error) {
        throw FileError{folder.string() + ": " + error.message()};
    }
    std::sort(names.begin(), names.end(), files::isNaturallyLess);
    for (const std::string& name : names) {
        const std::string path = (folder / name).string();
        if (fs::is_directory(path, error)) {
            if (files::isImageFolder(path)) {
                found.push_back(path);
            } else if (!fs::is_symlink(path, error)) {
                listFolder(path, found);
            }
        } else {
            try {
                if (files::isImageFile(path)) {
                    found.push_back(path);
                }
            } catch (const FileError&) {
                found.push_back(path); // it may be one: whoever opens it says what is wrong
            }
        }
    }
}

std::vector<std::string> matchPattern(const std::string& pattern)
{
    ::glob_t matches{};
    std::vector<std::string> paths;
    if (::glob(pattern.c_str(), 0, nullptr, &matches) == 0) {
        paths.assign(matches.gl_pathv, matches.gl_pathv + matches.gl_pathc);
    }
    ::globfree(&matches);
    std::sort(paths.begin(), paths.end(), files::isNaturallyLess);
    return paths;
}

void listWord(const std::string& word, std::vector<ImageArgument>& images)
{
    std::error_code none;
    if (fs::is_directory(word, none) && !files::isImageFolder(word)) {
        std::vector<std::string> found;
        try {
            listFolder(word, found);
        } catch (const FileError& error) {
            images.push_back({word, {}, {}, error.what()});
            return;
        }
        for (const std::string& path : found) {
            images.push_back({path, {path}, word, {}});
        }
        if (found.empty()) {
            images.push_back({word, {}, {}, word + ": there is no image in this folder"});
        }
        return;
    }
    if (word != "-" && word.find_first_of("*?[") != std::string::npos && !fs::exists(word, none)) {
        const std::vector<std::string> matches = matchPattern(word);
        for (const std::string& path : matches) {
            listWord(path, images);
            images.back().folder = word;
        }
        if (matches.empty()) {
            images.push_back({word, {}, {}, word + ": no file matches this pattern"});
        }
        return;
    }
    images.push_back({word, {word}, {}, {}});
}

/// "3" or "10:20", with either end left out; none if it is neither.
std::optional<files::Range> parseRange(std::string_view text)
{
    const auto parse = [](std::string_view number, std::size_t otherwise) -> std::optional<std::size_t> {
        if (number.empty()) {
            return otherwise;
        }
        std::size_t value = 0;
        const auto [end, error] = std::from_chars(number.data(), number.data() + number.size(), value);
        return error == std::errc{} && end == number.data() + number.size() ? std::optional{value} : std::nullopt;
    };
    const std::size_t colon = text.find(':');
    if (colon == std::string_view::npos) {
        const auto index = text.empty() ? std::nullopt : parse(text, 0);
        return index ? std::optional{files::Range{*index, *index + 1}} : std::nullopt;
    }
    const auto begin = parse(text.substr(0, colon), 0);
    const auto end = parse(text.substr(colon + 1), files::Range{}.end);
    return begin && end && *begin < *end ? std::optional{files::Range{*begin, *end}} : std::nullopt;
}

std::vector<std::string> splitAtCommas(const std::string& text)
{
    std::vector<std::string> parts;
    std::istringstream stream{text};
    for (std::string part; std::getline(stream, part, ',');) {
        parts.push_back(part);
    }
    return parts;
}

files::ReaderPtr open(const ImageArgument& argument, const Options& options, const files::OpenOptions& how)
{
    if (!argument.fault.empty()) {
        throw FileError{argument.fault};
    }
    return options.stack.empty() ? files::openImage(argument.name, how)
                                 : files::openStack(argument.files, options.stack[0], how);
}

/// A mask; --pages and --axes may be meant for the image alone.
files::ReaderPtr openMask(const ImageArgument& mask, files::OpenOptions how)
{
    if (!mask.fault.empty()) {
        throw FileError{mask.fault};
    }
    try {
        return files::openImage(mask.name, how);
    } catch (const UsageError&) {
        how.pages.clear();
        how.axes.clear();
        return files::openImage(mask.name, how);
    }
}

/// An image in memory whose z, c or t may be 1 as one that repeats itself there.
Ptr<const BaseImage> repeat(const Ptr<const BaseImage>& image, const image::ImageGeometry& size)
{
    const image::ImageGeometry& own = image->getGeometry();
    image::ImageStrides strides = image->getStrides();
    strides.z = own.z == size.z ? strides.z : 0;
    strides.c = own.c == size.c ? strides.c : 0;
    strides.t = own.t == size.t ? strides.t : 0;
    return BaseImage::wrap(image->getRow(0), image->getType(), size, strides, image);
}

/// Notes which numbers are measured, where a header's scale makes two of each.
void noteScale(const Options& options, const ImageFacts& facts, Report& report)
{
    if (!options.open.scaled && !facts.scale.isIdentity()) {
        std::ostringstream scale;
        scale << facts.scale.slope << " * stored + " << facts.scale.intercept;
        report.notes.push_back(facts.path + ": its numbers stand for " + scale.str() +
                               "; the stored ones are measured (--scaled: what they stand for)");
    }
    if (options.open.scaled && !facts.convertedFrom) {
        report.notes.push_back(facts.path + ": its header gives no scale: the stored numbers are measured");
    }
}

/// An image that goes with another, repeated where it has fewer axes than that; `name` says what it is.
Ptr<const BaseImage> readAlong(files::ReaderPtr reader, const char* name, const Options& options,
                               const ImageFacts& image, const image::ImageGeometry& part, ImageSource& source)
{
    const ImageFacts facts = reader->getFacts();
    const image::ImageGeometry& own = facts.geometry;
    const image::ImageGeometry& size = image.geometry;
    const auto fits = [](std::size_t side, std::size_t whole) { return side == whole || side == 1; };
    if (own.x != size.x || own.y != size.y || !fits(own.z, size.z) || !fits(own.c, size.c) || !fits(own.t, size.t)) {
        throw FileError{facts.path + ": the " + name + " has " + toString(own) + ", but " + image.path + " has " +
                        toString(size) + ": both need the same size, or the " + name +
                        " one plane, channel or time for all"};
    }
    files::Part cut = options.part;
    cut.z = own.z == size.z ? cut.z : files::Range{};
    cut.c = own.c == size.c ? cut.c : files::Range{};
    cut.t = own.t == size.t ? cut.t : files::Range{};
    return source.readRepeated(std::move(reader), options, cut, part)->getBinaryAsNumbers();
}

bool isFloat(files::StoredType type)
{
    return type == files::StoredType::Float32 || type == files::StoredType::Float64 ||
           type == files::StoredType::Float16;
}

/// The mask as numbers 0 and 1.
Ptr<const BaseImage> readMask(const Options& options, const ImageFacts& image, const image::ImageGeometry& part,
                              Report& report, ImageSource& source)
{
    files::OpenOptions how = options.open;
    how.series.reset();
    how.scaled = false;
    how.as = eImageBufferType::eIBT_Binary;
    files::ReaderPtr reader = openMask(options.mask, how);
    const ImageFacts& facts = reader->getFacts();
    const files::StoredType stored = facts.convertedFrom.value_or(facts.type);
    if (isFloat(stored)) {
        throw FileError{facts.path + ": a " + getName(stored) + " image is no mask: convert it to an integer type"};
    }
    report.images.emplace_back("mask", describeImage(options.mask.name, getName(stored), facts.geometry));
    return readAlong(std::move(reader), "mask", options, image, part, source);
}

/// Labels: integers, which have 32 bits at most, or floats that --as makes some. None may change.
files::ReaderPtr openLabels(const Options& options)
{
    files::OpenOptions how = options.open;
    how.scaled = false;
    how.as.reset();
    files::OpenOptions look = how;
    look.listsSeries = true; // an image of any type
    const files::StoredType type = openMask(options.image, look)->getFacts().type;
    how.keepsValues = true;
    if (type == files::StoredType::Int64 || type == files::StoredType::UInt64) {
        how.as = type == files::StoredType::Int64 ? eImageBufferType::eIBT_Int32 : eImageBufferType::eIBT_UInt32;
    } else if (isFloat(type)) {
        how.as = options.open.as;
        if (!how.as || *how.as == eImageBufferType::eIBT_Float32) {
            throw FileError{options.image.name + ": labels are integers, but this image is " + getName(type) +
                            ": read it with --as int32"};
        }
    }
    return openMask(options.image, how);
}

/// Which part of the image it is, where it is not the whole.
void describePart(const files::Part& part, const image::ImageGeometry& whole, Json& image)
{
    const auto add = [&](const char* axis, const files::Range& range, std::size_t size) {
        const std::size_t end = std::min(range.end, size);
        if (range.begin != 0 || end != size) {
            image["part"][axis] = {range.begin, end};
        }
    };
    add("x", part.x, whole.x);
    add("y", part.y, whole.y);
    add("z", part.z, whole.z);
    add("c", part.c, whole.c);
    add("t", part.t, whole.t);
}

} // namespace

std::vector<ImageArgument> listImages(const std::vector<std::string>& words)
{
    std::vector<ImageArgument> images;
    for (const std::string& word : words) {
        listWord(word, images);
    }
    return images;
}

ImageArgument stackImages(const std::vector<ImageArgument>& images, const std::vector<std::string>& words)
{
    ImageArgument stack;
    stack.name = words.size() == 1 ? words[0] : words.front() + " ... " + words.back();
    for (const ImageArgument& image : images) {
        stack.fault = stack.fault.empty() ? image.fault : stack.fault;
        stack.files.insert(stack.files.end(), image.files.begin(), image.files.end());
    }
    std::stable_sort(stack.files.begin(), stack.files.end(), files::isNaturallyLess);
    return stack;
}

files::Part parsePart(const std::string& plane, const std::string& region)
{
    files::Part part;
    for (const std::string& each : splitAtCommas(plane)) {
        const auto range =
            each.size() > 2 && each[1] == '=' ? parseRange(std::string_view{each}.substr(2)) : std::nullopt;
        files::Range* const axis = each[0] == 'z'   ? &part.z
                                   : each[0] == 'c' ? &part.c
                                   : each[0] == 't' ? &part.t
                                                    : nullptr;
        if (!range || axis == nullptr) {
            throw UsageError{"--plane " + plane +
                             ": an index or a range of z, c or t is needed, such as z=3,c=1 or z=10:20"};
        }
        if (axis->begin != 0 || axis->end != files::Range{}.end) {
            throw UsageError{"--plane " + plane + ": each axis once"};
        }
        *axis = *range;
    }
    const std::vector<std::string> ranges = splitAtCommas(region);
    const auto x = ranges.size() == 2 ? parseRange(ranges[0]) : std::nullopt;
    const auto y = ranges.size() == 2 ? parseRange(ranges[1]) : std::nullopt;
    if (!region.empty() && (!x || !y)) {
        throw UsageError{"--region " + region + ": ranges of x and y are needed, such as 0:512,100:200"};
    }
    part.x = x.value_or(files::Range{});
    part.y = y.value_or(files::Range{});
    return part;
}

Report describeFile(const Options& options)
{
    files::OpenOptions how = options.open;
    how.listsSeries = true;
    const files::ReaderPtr reader = files::cutPart(open(options.image, options, how), options.part);
    const ImageFacts& facts = reader->getFacts();
    const image::ImageGeometry& size = facts.geometry;
    const auto known = [](double number) {
        return number != 0 && std::isfinite(number) ? Json(number) : Json(nullptr);
    };
    const auto text = [](const std::string& each) { return each.empty() ? Json(nullptr) : Json(each); };
    Json row = {
        {"type", getName(facts.type)},
        {"x", size.x},
        {"y", size.y},
        {"z", size.z},
        {"c", size.c},
        {"t", size.t},
        {"bytes", size.nbPixels() * getPixelSize(facts.type)},
        {"format", facts.format},
        {"axes", text(facts.axes)},
        {"axesFrom", text(facts.axesRule)},
        {"pixelSize",
         {{"x", known(facts.pixelSize[0])}, {"y", known(facts.pixelSize[1])}, {"z", known(facts.pixelSize[2])}}},
        {"unit", text(facts.unit)},
        {"compression", text(facts.compression)},
        {"slope", facts.scale.isIdentity() ? Json(nullptr) : Json(facts.scale.slope)},
        {"intercept", facts.scale.isIdentity() ? Json(nullptr) : Json(facts.scale.intercept)},
        {"series", facts.series.empty() ? Json(nullptr) : Json(facts.series)}};
    Report report{"info", {}, {row}, reader->getNotes()};
    report.images.emplace_back("image", describeImage(options.image.name, getName(facts.type), size));
    report.omitsUnknown = true;
    report.members = facts.members;
    return report;
}

image::ImageGeometry readSize(const Options& options)
{
    return open(options.image, options, options.open)->getFacts().geometry;
}

bool ImageSource::takesMemory(std::size_t bytes)
{
    constexpr std::size_t most = std::size_t{32} << 20;
    const std::size_t set = core::settings::getPixelMemory();
    const bool takes = bytes <= (set != 0 ? std::min(most, set / 4) : most) - inMemory_;
    inMemory_ += takes ? bytes : 0;
    return takes;
}

Ptr<const BaseImage> ImageSource::read(files::ReaderPtr reader, const Options& options, const files::Part& part)
{
    readers_.emplace_back(files::cutPart(std::move(reader), part, options.open.maxPixels));
    const Ptr<files::ImageReader>& cut = readers_.back();
    const ImageFacts& facts = cut->getFacts();
    return takesMemory(facts.geometry.nbPixels() * getPixelSize(facts.type))
               ? files::readImage(*cut)
               : BaseImage::fromSource(cut, files::findImageType(facts.type).value(), facts.geometry);
}

Ptr<const BaseImage> ImageSource::readRepeated(files::ReaderPtr reader, const Options& options, const files::Part& part,
                                               const image::ImageGeometry& size)
{
    files::ReaderPtr cut = files::cutPart(std::move(reader), part, options.open.maxPixels);
    const ImageFacts facts = cut->getFacts();
    if (facts.geometry == size) {
        return read(std::move(cut), options, {});
    }
    const std::size_t planes = facts.geometry.z * facts.geometry.c * facts.geometry.t;
    if (planes > 1 && !takesMemory(facts.geometry.nbPixels() * getPixelSize(facts.type))) {
        return read(files::repeatImage(std::move(cut), size), options, {});
    }
    readers_.emplace_back(std::move(cut)); // one plane is always kept
    return repeat(files::readImage(*readers_.back()), size);
}

void ImageSource::addNotes(Report& report) const
{
    for (const Ptr<files::ImageReader>& reader : readers_) {
        for (const std::string& note : reader->getNotes()) {
            report.notes.push_back(note);
        }
    }
}

double countBytes(const BaseImage& image)
{
    return static_cast<double>(image.getGeometry().nbPixels() * image.getPixelSize());
}

Inputs::Inputs(const Options& options, bool takesBinary)
{
    files::OpenOptions how = options.open;
    if (options.binary) {
        how.as = eImageBufferType::eIBT_Binary;
    }
    files::ReaderPtr reader = open(options.image, options, how);
    facts = reader->getFacts();
    const image::ImageGeometry whole = facts.geometry;
    origin = {options.part.x.begin, options.part.y.begin, options.part.z.begin, options.part.c.begin,
              options.part.t.begin};
    noteScale(options, facts, report);
    image = source.read(std::move(reader), options, options.part);
    image = takesBinary ? image : image->getBinaryAsNumbers();
    report.members = facts.members;
    report.images.emplace_back(
        "image", describeImage(options.image.name,
                               getName(options.binary ? facts.convertedFrom.value_or(facts.type) : facts.type),
                               image->getGeometry()));
    describePart(options.part, whole, report.images.back().second);
    if (!options.others.empty()) {
        files::ReaderPtr other = open(options.image2, options, options.open);
        const ImageFacts facts2 = other->getFacts();
        noteScale(options, facts2, report);
        if (!(facts2.geometry == whole)) {
            throw FileError{options.image2.name + ": the second image has " + toString(facts2.geometry) + ", but " +
                            options.image.name + " has " + toString(whole) + ": both need the same size"};
        }
        report.images.emplace_back("image2",
                                   describeImage(options.image2.name, getName(facts2.type), image->getGeometry()));
        image2 = source.read(std::move(other), options, options.part)->getBinaryAsNumbers();
    }
    if (!options.masks.empty()) {
        mask = readMask(options, facts, image->getGeometry(), report, source);
    }
}

LabelledInputs::LabelledInputs(const Options& options)
{
    files::ReaderPtr reader = openLabels(options);
    ImageFacts facts = reader->getFacts();
    report.members = facts.members;
    report.images.emplace_back(
        "image", describeImage(options.image.name, getName(facts.convertedFrom.value_or(facts.type)), facts.geometry));
    Json described = Json::array();
    for (const ImageArgument& image : options.labelled) {
        files::ReaderPtr other = open(image, options, options.open);
        const ImageFacts own = other->getFacts();
        noteScale(options, own, report);
        if (!images.empty() && !(own.geometry == facts.geometry)) {
            throw FileError{image.name + ": it has " + toString(own.geometry) + ", but " + facts.path + " has " +
                            toString(facts.geometry) + ": all images need the same size"};
        }
        facts = own;
        images.push_back(source.read(std::move(other), options, options.part)->getBinaryAsNumbers());
        described.push_back(describeImage(image.name, getName(own.type), images.back()->getGeometry()));
    }
    origin = {options.part.x.begin, options.part.y.begin, options.part.z.begin, options.part.c.begin,
              options.part.t.begin};
    labels = images.empty()
                 ? source.read(std::move(reader), options, options.part)->getBinaryAsNumbers()
                 : readAlong(std::move(reader), "label image", options, facts, images[0]->getGeometry(), source);
    describePart(options.part, facts.geometry, report.images.back().second);
    if (!images.empty()) {
        report.images.emplace_back("images", std::move(described));
    }
}

} // namespace orlix::app
