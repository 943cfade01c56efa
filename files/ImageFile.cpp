#include <files/ImageFile.hpp>

#include <files/Bytes.hpp>
#include <files/Errors.hpp>
#include <files/Nesting.hpp>
#include <files/SeenSet.hpp>

#include <algorithm>
#include <cctype>
#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <filesystem>
#include <functional>
#include <mutex>
#include <set>
#include <unistd.h>

namespace orlix::files
{

namespace fs = std::filesystem;

namespace
{

/// Converts pixels while they are read.
class ConvertedReader final : public ImageReader
{
public:
    ConvertedReader(ReaderPtr inner, StoredType type, bool isScaled, bool keepsValues)
        : inner_{std::move(inner)}, from_{inner_->getFacts().type}, isScaled_{isScaled}, keepsValues_{keepsValues}
    {
        facts_ = inner_->getFacts();
        layout_ = inner_->getLayout();
        facts_.type = type;
        facts_.convertedFrom = from_;
        const image::ImageGeometry& size = facts_.geometry;
        const std::size_t columns = columnOf(size.x) + 1;
        rows_ = std::make_unique<SeenSet>(columns * size.y * size.z * size.c * size.t);
        changed_ = std::make_unique<SeenSet>(columns * size.y * size.z * size.c * size.t);
        if (isScaled_) {
            scale_ = facts_.scale;
            facts_.scale = {};
        }
    }

    void fetch(const Box& box, const PixelTarget& target) override
    {
        // Blocks of planes, or of rows of one, in the order of the file; what is decoded together stays so.
        const image::ImageGeometry& size = box.size;
        const std::size_t pixelSize = getPixelSize(from_);
        const std::string& axes = facts_.axes;
        const bool isInterleaved = axes.ends_with('S') || axes.ends_with('C');
        const std::size_t channels = isInterleaved ? size.c : 1;
        const std::size_t rowBytes = size.x * channels * pixelSize;
        constexpr std::size_t blockBytes = std::size_t{16} << 20;
        const std::size_t together = std::max<std::size_t>(1, layout_.block.y);
        const std::size_t rows =
            std::clamp<std::size_t>(std::max<std::size_t>(1, blockBytes / (rowBytes * together)) * together, 1, size.y);
        const bool isZFastest = axes.find("ZY") != std::string::npos && rows == size.y;
        const std::size_t planes = layout_.block.z > 1 ? size.z
                                   : isZFastest ? std::clamp<std::size_t>(blockBytes / (rowBytes * rows), 1, size.z)
                                                : 1;
        std::vector<std::byte> block(rowBytes * rows * planes);
        const std::size_t layers = (size.z + planes - 1) / planes;
        const image::ImageGeometry grid{1, 1, layers, size.c / channels, size.t};
        for (std::size_t i = 0; i < grid.nbPixels(); ++i) {
            const Position at = locate(i, grid);
            for (std::size_t y = 0; y < size.y; y += rows) {
                Box part{{box.begin.x, box.begin.y + y, box.begin.z + at.z * planes, box.begin.c + at.c * channels,
                          box.begin.t + at.t},
                         {size.x, std::min(rows, size.y - y), std::min(planes, size.z - at.z * planes), channels, 1}};
                const PixelTarget pixels{block.data(), image::ImageStrides::contiguous(part.size, pixelSize)};
                inner_->fetch(part, pixels);
                for (std::size_t c = 0; c < channels; ++c) {
                    for (std::size_t z = 0; z < part.size.z; ++z) {
                        for (std::size_t row = 0; row < part.size.y; ++row) {
                            const std::uint64_t changed =
                                convert(pixels.row(row, z, c),
                                        target.row(y + row, at.z * planes + z, at.c * channels + c, at.t), size.x);
                            const Position& first = part.begin;
                            count({first.x, first.y + row, first.z + z, first.c + c, first.t}, size.x, changed);
                        }
                    }
                }
            }
        }
    }

    std::vector<std::string> getNotes() const override
    {
        std::vector<std::string> notes = inner_->getNotes();
        if (const std::uint64_t changed = changed_->getSum(); changed != 0) {
            notes.push_back(facts_.path + ": " + std::to_string(changed) + " of " + std::to_string(rows_->getSum()) +
                            " pixels changed their value when they were converted from " + getName(from_) + " to " +
                            getName(facts_.type));
        }
        return notes;
    }

private:
    /// The place in a grid of z, c and t of what is stored as number `i`.
    Position locate(std::size_t i, const image::ImageGeometry& grid) const
    {
        Position at;
        const auto take = [&](std::size_t& place, std::size_t count) {
            place = i % count;
            i /= count;
        };
        std::string axes = facts_.axes;
        std::replace(axes.begin(), axes.end(), 'S', 'C');
        for (const char axis : std::string_view{"ZCT"}) { // those that are not stored have one element
            axes.insert(0, axes.find(axis) == std::string::npos ? 1 : 0, axis);
        }
        std::size_t cTaken = 0;
        for (auto letter = axes.rbegin(); letter != axes.rend(); ++letter) {
            if (*letter == 'Z') {
                take(at.z, grid.z);
            } else if (*letter == 'C' && cTaken++ == 0) {
                take(at.c, grid.c);
            } else if (*letter == 'T') {
                take(at.t, grid.t);
            }
        }
        return at;
    }

    /// Which of the columns of what is decoded together a pixel is in.
    std::size_t columnOf(std::size_t x) const
    {
        return layout_.block.x > 1 ? (x + layout_.phase.x) / layout_.block.x : 0;
    }

    /// Each row of what is decoded together counts once, however often it is read.
    void count(const Position& row, std::size_t nbPixels, std::uint64_t nbChanged)
    {
        const image::ImageGeometry& size = facts_.geometry;
        const std::uint64_t line = ((row.t * size.c + row.c) * size.z + row.z) * size.y + row.y;
        const std::uint64_t number = line * (columnOf(size.x) + 1) + columnOf(row.x);
        rows_->add(number, nbPixels);
        if (nbChanged != 0) {
            changed_->add(number, nbChanged);
        }
    }

    /// Returns how many pixels changed their value.
    std::uint64_t convert(const std::byte* from, std::byte* to, std::size_t count) const
    {
        if (!isScaled_) {
            const std::size_t changed = convertPixels(from, from_, to, facts_.type, count);
            if (facts_.type == StoredType::Binary) { // which tells 0 from all else
                return 0;
            }
            if (keepsValues_ && changed != 0) {
                throw FileError{facts_.path + ": some of its " + getName(from_) + " values are none of " +
                                getName(facts_.type)};
            }
            return changed;
        }
        std::vector<double> scaled(count);
        scalePixels(from, from_, scaled.data(), count, scale_);
        const std::size_t changed = convertPixels(reinterpret_cast<const std::byte*>(scaled.data()),
                                                  StoredType::Float64, to, facts_.type, count);
        return facts_.type == StoredType::Float32 ? 0 : changed; // which rounds nearly all of them
    }

    ReaderPtr inner_;
    StoredType from_;
    bool isScaled_;
    bool keepsValues_;
    Scale scale_;
    std::unique_ptr<SeenSet> rows_;
    std::unique_ptr<SeenSet> changed_;
};

class PartReader final : public ImageReader
{
public:
    PartReader(ReaderPtr inner, const Box& box) : inner_{std::move(inner)}, begin_{box.begin}
    {
        facts_ = inner_->getFacts();
        facts_.geometry = box.size;
        layout_ = inner_->getLayout();
        Position& phase = layout_.phase;
        phase = {phase.x + begin_.x, phase.y + begin_.y, phase.z + begin_.z, phase.c + begin_.c, phase.t + begin_.t};
    }

    void fetch(const Box& box, const PixelTarget& target) override
    {
        const Position& at = box.begin;
        inner_->fetch({{begin_.x + at.x, begin_.y + at.y, begin_.z + at.z, begin_.c + at.c, begin_.t + at.t}, box.size},
                      target);
    }
    std::vector<std::string> getNotes() const override { return inner_->getNotes(); }

private:
    ReaderPtr inner_;
    Position begin_;
};

/// Several images behind each other. Those that were read last stay open.
class StackReader final : public ImageReader
{
public:
    StackReader(const std::vector<std::string>& paths, char axis, const OpenOptions& options)
        : paths_{paths}, options_{options}, axis_{axis}
    {
        std::set<std::string> members; // of sets that are in the stack already
        std::vector<std::string> all = std::move(paths_);
        paths_.clear();
        for (const std::string& path : all) {
            if (members.contains(identify(path))) {
                continue;
            }
            paths_.push_back(path);
            const std::shared_ptr<ImageReader> open = openImage(path, options_);
            const ImageFacts& facts = open->getFacts();
            for (const std::string& member : facts.members) {
                members.insert(identify(member));
            }
            if (ends_.empty()) {
                facts_ = facts;
                facts_.axes = std::string{static_cast<char>(std::toupper(axis))} + "YX";
                facts_.axesRule = "--stack";
                length(facts_.geometry) = 0;
            }
            image::ImageGeometry size = facts.geometry;
            length(size) = 0;
            image::ImageGeometry first = facts_.geometry;
            length(first) = 0;
            if (facts.scale.slope != facts_.scale.slope || facts.scale.intercept != facts_.scale.intercept) {
                throw FileError{path + ": its header scales numbers otherwise than that of " + paths_[0] +
                                ": images of one scale make a stack (or measure with --scaled)"};
            }
            if (!(size == first) || facts.type != facts_.type) {
                throw FileError{path + ": it is " + getName(facts.type) + ", " + toString(facts.geometry) + ", but " +
                                paths_[0] + " " + getName(facts_.type) + ", " + toString(openSize()) +
                                ": images of one type and size make a stack"};
            }
            image::ImageGeometry own = facts.geometry;
            length(facts_.geometry) += length(own);
            ends_.push_back(length(facts_.geometry));
            collectNotes(*open);
            findLayout(*open);
        }
        facts_.members = paths_;
    }

    void fetch(const Box& box, const PixelTarget& target) override
    {
        std::size_t Position::*const place = axis_ == 'z' ? &Position::z : axis_ == 'c' ? &Position::c : &Position::t;
        const std::ptrdiff_t stride = axis_ == 'z'   ? target.strides.z
                                      : axis_ == 'c' ? target.strides.c
                                                     : target.strides.t;
        Box rest = box;
        const std::size_t begin = box.begin.*place;
        const std::size_t end = begin + length(rest.size);
        for (std::size_t at = begin; at < end;) {
            const auto file =
                static_cast<std::size_t>(std::upper_bound(ends_.begin(), ends_.end(), at) - ends_.begin());
            const std::shared_ptr<ImageReader> open = get(file);
            Box part = box;
            part.begin.*place = at - (file == 0 ? 0 : ends_[file - 1]);
            length(part.size) = std::min(ends_[file], end) - at;
            open->fetch(part, {target.first + static_cast<std::ptrdiff_t>(at - begin) * stride, target.strides});
            collectNotes(*open);
            at = ends_[file];
        }
    }
    std::vector<std::string> getNotes() const override
    {
        const std::lock_guard lock{mutex_};
        return collected_;
    }

private:
    /// That of the files, as far as it holds for all of them.
    void findLayout(const ImageReader& member)
    {
        const image::SourceLayout layout = member.getLayout();
        const image::ImageGeometry& size = member.getFacts().geometry;
        if (ends_.size() == 1) {
            layout_ = layout;
            if (layout.isSequential && size.z * size.t == 1) { // several can be decoded at once
                layout_.isSequential = false;
                layout_.block.y = size.y;
            }
        }
        std::size_t& block = length(layout_.block);
        const std::size_t begin = ends_.size() == 1 ? 0 : ends_[ends_.size() - 2];
        block = begin % block != 0 ? 1 : block;
        layout_.readsAhead = layout_.readsAhead && layout.readsAhead;
    }

    std::shared_ptr<ImageReader> get(std::size_t file)
    {
        constexpr std::size_t mostOpen = 16;
        {
            const std::lock_guard lock{mutex_};
            for (const auto& [number, reader] : open_) {
                if (number == file) {
                    return reader;
                }
            }
        }
        std::shared_ptr<ImageReader> reader = openImage(paths_[file], options_);
        const std::lock_guard lock{mutex_};
        open_.emplace_back(file, reader);
        if (open_.size() > mostOpen) {
            open_.erase(open_.begin());
        }
        return reader;
    }

    static std::string identify(const std::string& path)
    {
        std::error_code none;
        return fs::weakly_canonical(path, none).string();
    }

    std::size_t& length(image::ImageGeometry& size) const
    {
        return axis_ == 'z' ? size.z : axis_ == 'c' ? size.c : size.t;
    }
    image::ImageGeometry openSize() const
    {
        image::ImageGeometry size = facts_.geometry;
        length(size) = ends_[0];
        return size;
    }
    void collectNotes(const ImageReader& member)
    {
        const std::lock_guard lock{mutex_};
        for (const std::string& note : member.getNotes()) {
            if (std::find(collected_.begin(), collected_.end(), note) == collected_.end()) {
                collected_.push_back(note);
            }
        }
    }

    std::vector<std::string> paths_;
    OpenOptions options_;
    char axis_;
    std::vector<std::size_t> ends_; // of the files along the axis
    mutable std::mutex mutex_;
    std::vector<std::pair<std::size_t, std::shared_ptr<ImageReader>>> open_; // by number
    std::vector<std::string> collected_;
};

/// Adds what every image needs: its plans in the order that the options tell, and pixels of a type that images have.
ReaderPtr finish(const Source& source, ReaderPtr reader)
{
    const OpenOptions& options = source.options;
    const ImageFacts& facts = reader->getFacts();
    const image::ImageGeometry& size = facts.geometry;
    std::uint64_t pixels = 1;
    for (const std::size_t side : {size.x, size.y, size.z, size.c, size.t}) {
        if (side == 0) {
            source.fail("it states a size of 0");
        }
        constexpr std::uint64_t most = std::uint64_t{1} << 58;
        if (__builtin_mul_overflow(pixels, side, &pixels) || pixels > most) {
            source.fail("it states " + toString(size) + ", which is more than can be");
        }
    }
    if (!options.axes.empty() && facts.axesBy != AxesBy::Axes) {
        throw OptionError{"--axes names the dimensions of an array, and " + source.name + " is of the format " +
                          facts.format + ": --pages tells how pages nest"};
    }
    if (options.series.value_or(0) != 0 && facts.series.empty()) {
        source.fail("there is no series " + std::to_string(*options.series) + ": it holds one image");
    }
    if (!options.pages.empty() && facts.axesBy != AxesBy::Pages) {
        reader = nestPlans(std::move(reader), options.pages);
    }
    if (options.listsSeries) {
        return reader;
    }
    const bool isScaled = options.scaled && !facts.scale.isIdentity();
    if (!options.as && !isScaled && !findImageType(facts.type)) {
        source.fail(std::string{getName(facts.type)} + " pixels are not measured as they are: convert them with --as " +
                    (facts.type == StoredType::Float64 || facts.type == StoredType::Float16 ? "float32"
                     : facts.type == StoredType::Int64                                      ? "int32 or --as float32"
                                                       : "uint32 or --as float32"));
    }
    const StoredType type = options.as ? toStored(*options.as) : isScaled ? StoredType::Float32 : facts.type;
    return isScaled || type != facts.type
               ? std::make_unique<ConvertedReader>(std::move(reader), type, isScaled, options.keepsValues)
               : std::move(reader);
}

/// Standard input as a file that has a name: itself where it is one, else what it holds in a file that nobody else
/// sees.
std::string nameStandardInput()
{
    static const std::string path = [] {
        std::error_code none;
        if (fs::is_regular_file("/proc/self/fd/0", none) && ::lseek(STDIN_FILENO, 0, SEEK_CUR) == 0) {
            return std::string{"/proc/self/fd/0"};
        }
        const fs::path folder = fs::temp_directory_path();
        const int file = ::open(folder.c_str(), O_TMPFILE | O_RDWR | O_CLOEXEC, 0600);
        if (file < 0) {
            throw FileError{"-: " + folder.string() + " takes no file for standard input (" + std::strerror(errno) +
                            ")"};
        }
        std::vector<char> buffer(std::size_t{1} << 20);
        for (;;) {
            const ::ssize_t got = ::read(STDIN_FILENO, buffer.data(), buffer.size());
            if (got < 0 && errno == EINTR) {
                continue;
            }
            if (got < 0) {
                throw FileError{std::string{"-: "} + std::strerror(errno)};
            }
            if (got == 0) {
                return "/proc/self/fd/" + std::to_string(file);
            }
            for (::ssize_t written = 0; written < got;) {
                const ::ssize_t more = ::write(file, buffer.data() + written, static_cast<std::size_t>(got - written));
                if (more < 0 && errno != EINTR) {
                    throw FileError{"-: standard input does not fit " + folder.string() + " (" + std::strerror(errno) +
                                    ")"};
                }
                written += std::max<::ssize_t>(more, 0);
            }
        }
    }();
    return path;
}

constexpr std::size_t headSize = 4096;

Source locate(const std::string& path, const OpenOptions& options)
{
    Source source{path, path, {}, {}, options};
    if (path == "-") {
        source.path = nameStandardInput();
    } else if (const std::size_t colon = path.rfind(":/"); colon != std::string::npos && !fs::exists(path)) {
        source.path = path.substr(0, colon);
        source.inner = path.substr(colon + 1);
    }
    std::error_code none;
    if (!fs::is_directory(source.path, none)) {
        source.head = readHead(source.path, source.name, headSize);
    }
    return source;
}

const Format* findFormat(const Source& source)
{
    const auto& formats = listFormats();
    const auto found =
        std::find_if(formats.begin(), formats.end(), [&](const Format& format) { return format.recognizes(source); });
    return found == formats.end() ? nullptr : &*found;
}

} // namespace

void Source::fail(const std::string& what) const
{
    throw FileError{name + ": " + what};
}

ImageFacts Source::describe(const char* format) const
{
    ImageFacts facts;
    facts.path = name;
    facts.format = format;
    return facts;
}

std::size_t Source::chooseSeries(const std::vector<std::string>& series, const std::string& otherwise) const
{
    std::string list;
    for (std::size_t i = 0; i < series.size(); ++i) {
        list.append(i == 0 ? "" : "; ").append(std::to_string(i)).append(": ").append(series[i]);
    }
    const std::size_t chosen = options.series.value_or(0);
    if (chosen >= series.size()) {
        fail("there is no series " + std::to_string(chosen) + " (" + list + ")");
    }
    if (!options.series && !options.listsSeries && series.size() > 1) {
        fail("it holds " + std::to_string(series.size()) + " images: pick one with --series" + otherwise + " (" + list +
             ")");
    }
    return chosen;
}

ReaderPtr openImage(const std::string& path, const OpenOptions& options)
{
    const Source source = locate(path, options);
    const Format* const format = findFormat(source);
    if (format == nullptr) {
        std::string known;
        for (const Format& each : listFormats()) {
            known += (known.empty() ? "" : ", ") + std::string{each.name};
        }
        source.fail(source.head.empty() && fs::is_directory(source.path) ? "it is a folder, and no OME-Zarr image"
                    : source.head.empty()                                ? "it is empty"
                                          : "its first bytes are those of no image that is read (" + known + ")");
    }
    if (format->open == nullptr) {
        source.fail(std::string{"it is of the format "} + format->name + ", which this program was built without");
    }
    if (!source.inner.empty() && std::string_view{format->name} != "HDF5") {
        source.fail(std::string{"there is no path in a file of "} + format->name);
    }
    return finish(source, format->open(source));
}

ReaderPtr openStack(const std::vector<std::string>& paths, char axis, const OpenOptions& options)
{
    return std::make_unique<StackReader>(paths, axis, options);
}

bool isImageFolder(const std::string& path)
{
    const Source source{path, path};
    return fs::is_directory(path) && findFormat(source) != nullptr;
}

bool isImageFile(const std::string& path)
{
    std::string name = fs::path{path}.filename().string();
    std::transform(name.begin(), name.end(), name.begin(),
                   [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
    for (const char* const ending : {".tif", ".tiff", ".png", ".jpg", ".jpeg", ".nii", ".nii.gz", ".nrrd", ".nhdr",
                                     ".mha", ".mhd", ".mrc", ".npy", ".h5", ".hdf5"}) {
        if (name.ends_with(ending)) {
            return true; // or a damaged one
        }
    }
    std::error_code none;
    return fs::is_regular_file(path, none) &&
           findFormat(Source{path, path, {}, readHead(path, path, headSize)}) != nullptr;
}

ReaderPtr cutPart(ReaderPtr image, const Part& part, std::uint64_t maxPixels)
{
    const ImageFacts& facts = image->getFacts();
    const image::ImageGeometry& size = facts.geometry;
    Box box;
    bool isWhole = true;
    const auto cut = [&](const Range& range, std::size_t whole, std::size_t& begin, std::size_t& count,
                         const char* axis) {
        const std::size_t end = range.end == Range{}.end ? whole : range.end;
        if (range.begin >= end || end > whole) {
            std::string wanted = std::to_string(range.begin);
            if (end != range.begin + 1) {
                wanted.append(":").append(std::to_string(end));
            }
            throw FileError{facts.path + ": it has no " + axis + " = " + wanted + ": " + axis + " goes from 0 to " +
                            std::to_string(whole - 1)};
        }
        begin = range.begin;
        count = end - range.begin;
        isWhole = isWhole && count == whole;
    };
    cut(part.x, size.x, box.begin.x, box.size.x, "x");
    cut(part.y, size.y, box.begin.y, box.size.y, "y");
    cut(part.z, size.z, box.begin.z, box.size.z, "z");
    cut(part.c, size.c, box.begin.c, box.size.c, "c");
    cut(part.t, size.t, box.begin.t, box.size.t, "t");
    if (box.size.nbPixels() > maxPixels) {
        throw FileError{facts.path + ": it states " + toString(box.size) + ", which is more than the " +
                        std::to_string(maxPixels) + " pixels that --max-pixels allows"};
    }
    return isWhole ? std::move(image) : std::make_unique<PartReader>(std::move(image), box);
}

namespace
{

class RepeatedReader final : public ImageReader
{
public:
    RepeatedReader(ReaderPtr inner, const image::ImageGeometry& size) : inner_{std::move(inner)}
    {
        facts_ = inner_->getFacts();
        facts_.geometry = size;
        layout_ = inner_->getLayout();
        layout_.block.z = repeats(&image::ImageGeometry::z) ? 1 : layout_.block.z;
        layout_.block.c = repeats(&image::ImageGeometry::c) ? 1 : layout_.block.c;
        layout_.block.t = repeats(&image::ImageGeometry::t) ? 1 : layout_.block.t;
    }

    void fetch(const Box& box, const PixelTarget& target) override
    {
        Box once = box;
        const auto fold = [&](std::uint64_t Position::*place, std::size_t image::ImageGeometry::*side) {
            if (repeats(side)) {
                once.begin.*place = 0;
                once.size.*side = 1;
            }
        };
        fold(&Position::z, &image::ImageGeometry::z);
        fold(&Position::c, &image::ImageGeometry::c);
        fold(&Position::t, &image::ImageGeometry::t);
        inner_->fetch(once, target);
        const std::size_t rowBytes = box.size.x * getPixelSize(facts_.type);
        forEachPlan(box, target, [&](const Position& at, const PixelTarget& plan) {
            const auto from = [&](std::uint64_t place, std::uint64_t begin, std::size_t count) {
                return static_cast<std::size_t>(count == 1 ? 0 : place - begin);
            };
            for (std::size_t y = 0; y < box.size.y; ++y) {
                const std::byte* const row =
                    target.row(y, from(at.z, box.begin.z, once.size.z), from(at.c, box.begin.c, once.size.c),
                               from(at.t, box.begin.t, once.size.t));
                if (row != plan.row(y)) {
                    std::memcpy(plan.row(y), row, rowBytes);
                }
            }
        });
    }
    std::vector<std::string> getNotes() const override { return inner_->getNotes(); }

private:
    bool repeats(std::size_t image::ImageGeometry::*side) const
    {
        return inner_->getFacts().geometry.*side == 1 && facts_.geometry.*side != 1;
    }

    ReaderPtr inner_;
};

} // namespace

ReaderPtr repeatImage(ReaderPtr image, const image::ImageGeometry& size)
{
    return std::make_unique<RepeatedReader>(std::move(image), size);
}

Ptr<image::BaseImage> readImage(ImageReader& reader)
{
    const ImageFacts& facts = reader.getFacts();
    const image::eImageBufferType type = findImageType(facts.type).value();
    auto image = image::BaseImage::create(type, facts.geometry);
    reader.fetch({{}, facts.geometry}, {image->getRow(0), image->getStrides()});
    return image;
}

} // namespace orlix::files
