#include <files/ArrayReader.hpp>

#include <files/Errors.hpp>

#include <algorithm>
#include <cctype>

namespace orlix::files
{

namespace
{

constexpr std::string_view axisLetters = "XYZCT";

/// The axis of a letter: 0 to 4 for x, y, z, c, t.
std::size_t findAxis(char letter)
{
    return letter == 'S' ? 3 : axisLetters.find(letter);
}

std::string listSizes(const std::vector<std::uint64_t>& sizes)
{
    std::string text;
    for (const std::uint64_t size : sizes) {
        text += (text.empty() ? "" : " x ") + std::to_string(size);
    }
    return text.empty() ? "a single number" : text;
}

/// What is wrong with these letters for an array; empty if nothing.
std::string findFault(const std::string& letters, const std::vector<std::uint64_t>& sizes)
{
    if (letters.size() != sizes.size()) {
        return "are " + std::to_string(letters.size()) + ", but the array has " + std::to_string(sizes.size()) +
               " dimensions (" + listSizes(sizes) + ")";
    }
    std::array<bool, 5> seen{};
    for (std::size_t i = 0; i < letters.size(); ++i) {
        const std::size_t axis = findAxis(letters[i]);
        if (axis == std::string_view::npos) {
            if (sizes[i] != 1) {
                return std::string{"hold "} + letters[i] + ", which is none of T, C, Z, Y, X and S (samples)";
            }
        } else if (seen[axis]) {
            return std::string{"hold "} + axisLetters[axis] + " twice (S counts as C)";
        } else {
            seen[axis] = true;
        }
    }
    return seen[0] ? "" : "lack X";
}

class ArrayReader final : public ImageReader
{
public:
    ArrayReader(const Source& source, PixelArray array)
        : bytes_{std::move(array.bytes)}, offset_{array.offset}, isSwapped_{array.isSwapped}
    {
        facts_ = std::move(array.facts);
        if (array.fastestFirst) {
            std::reverse(array.sizes.begin(), array.sizes.end());
            std::reverse(array.axes.begin(), array.axes.end());
        }
        const ArrayAxes axes = findArrayAxes(source, array.sizes, array.axes, array.axesBy);
        axes.describe(array.sizes, facts_);
        if (const std::string doubt = describeColourDoubt(facts_); !doubt.empty()) {
            note(doubt);
        }
        std::uint64_t stride = getPixelSize(facts_.type);
        for (std::size_t i = array.sizes.size(); i-- > 0;) {
            const std::size_t dimension = array.isFortran ? array.sizes.size() - 1 - i : i;
            const auto axis = std::find(axes.dimensions.begin(), axes.dimensions.end(), dimension);
            if (axis != axes.dimensions.end()) {
                strides_[static_cast<std::size_t>(axis - axes.dimensions.begin())] = static_cast<std::int64_t>(stride);
            }
            if (__builtin_mul_overflow(stride, array.sizes[dimension], &stride)) {
                fail("it states more pixels than can be: " + listSizes(array.sizes));
            }
        }
        findLayout();
        if (stride > array.available) {
            fail("it states " + std::to_string(stride) + " bytes of pixels (" + listSizes(array.sizes) + " of " +
                 getName(facts_.type) + "), but holds " + std::to_string(array.available) +
                 ": the file is cut short or damaged");
        }
    }

    void fetch(const Box& box, const PixelTarget& target) override
    {
        const Position& begin = box.begin;
        const image::ImageGeometry& size = box.size;
        const std::size_t pixelSize = getPixelSize(facts_.type);
        const std::array<std::size_t, 5> first{begin.x, begin.y, begin.z, begin.c, begin.t};
        std::uint64_t offset = offset_;
        for (std::size_t axis = 0; axis < first.size(); ++axis) {
            offset += first[axis] * static_cast<std::uint64_t>(strides_[axis]);
        }
        std::array<Stretch, 5> axes{Stretch{size.x, strides_[0], static_cast<std::int64_t>(pixelSize)},
                                    {size.y, strides_[1], target.strides.y},
                                    {size.z, strides_[2], target.strides.z},
                                    {size.c, strides_[3], target.strides.c},
                                    {size.t, strides_[4], target.strides.t}};
        // An axis of one pixel lies outermost; others as in the file.
        std::stable_sort(axes.begin(), axes.end(), [](const Stretch& a, const Stretch& b) {
            return (a.count > 1 ? a.from : INT64_MAX) < (b.count > 1 ? b.from : INT64_MAX);
        });
        try {
            readAxes(axes, axes.size(), offset, target.first, pixelSize);
        } catch (const FileError& error) {
            const image::ImageGeometry& all = facts_.geometry;
            throw FileError{error.what() + (all.z * all.c * all.t == 1 ? ""
                                                                       : " (plane z=" + std::to_string(begin.z) +
                                                                             ", c=" + std::to_string(begin.c) +
                                                                             ", t=" + std::to_string(begin.t) + ")")};
        }
        const bool isBinary = facts_.type == StoredType::Binary;
        if (isSwapped_ || isBinary) {
            forEachPlan(box, target, [&](const Position&, const PixelTarget& plan) {
                for (std::size_t y = 0; y < size.y; ++y) {
                    std::byte* const row = plan.row(y);
                    if (isBinary) {
                        std::replace_if(
                            row, row + size.x, [](std::byte b) { return b > std::byte{1}; }, std::byte{1});
                    } else {
                        swapBytes(row, pixelSize, size.x);
                    }
                }
            });
        }
    }

private:
    /// Pixels that lie between those of a row are read with it.
    void findLayout()
    {
        const image::ImageGeometry& size = facts_.geometry;
        const auto isBetween = [&](std::size_t axis) { return size.x > 1 && strides_[axis] < strides_[0]; };
        image::ImageGeometry& block = layout_.block;
        block.y = size.y > 1 && isBetween(1) ? size.y : 1;
        block.z = size.z > 1 && isBetween(2) ? size.z : 1;
        block.c = size.c > 1 && isBetween(3) ? size.c : 1;
        block.t = size.t > 1 && isBetween(4) ? size.t : 1;
        layout_.isSequential = bytes_->isSequential();
        layout_.readsAhead = !layout_.isSequential && block == image::ImageGeometry{1, 1, 1, 1, 1};
    }

    static constexpr std::int64_t mostAtOnce = std::int64_t{4} << 20; // bytes

    /// Reads what the innermost `count` axes cover: at once where it touches on both sides, by way of a buffer where it
    /// is small, else along the outermost of these axes.
    void readAxes(std::array<Stretch, 5>& axes, std::size_t count, std::uint64_t offset, std::byte* to,
                  std::size_t pixelSize) const
    {
        auto run = static_cast<std::int64_t>(pixelSize);
        auto span = run; // with the gaps
        bool touches = true;
        for (std::size_t i = 0; i < count; ++i) {
            const Stretch& axis = axes[i];
            if (axis.count > 1) {
                touches = touches && axis.from == run && axis.to == run;
                run *= static_cast<std::int64_t>(axis.count);
                span += axis.from * static_cast<std::int64_t>(axis.count - 1);
            }
        }
        if (touches) {
            bytes_->read(offset, static_cast<std::size_t>(run), to);
            return;
        }
        if (span <= mostAtOnce) {
            const ByteBlock buffer{static_cast<std::size_t>(span)};
            bytes_->read(offset, buffer.size(), buffer.data());
            std::array<Stretch, 5> inner{};
            std::copy_n(axes.begin(), count, inner.begin());
            copyPixels(buffer.data(), to, pixelSize, inner);
            return;
        }
        // As many steps of the outermost axis as the buffer holds.
        const Stretch outer = axes[count - 1];
        const std::int64_t innerSpan = span - outer.from * static_cast<std::int64_t>(outer.count - 1);
        const auto steps = static_cast<std::size_t>(
            outer.count > 1
                ? std::max<std::int64_t>(1, (mostAtOnce - innerSpan) / std::max<std::int64_t>(1, outer.from))
                : 1);
        if (steps == 1) {
            for (std::size_t i = 0; i < outer.count; ++i) {
                readAxes(axes, count - 1, offset + i * static_cast<std::uint64_t>(outer.from),
                         to + static_cast<std::ptrdiff_t>(i) * outer.to, pixelSize);
            }
            return;
        }
        for (std::size_t i = 0; i < outer.count; i += steps) {
            axes[count - 1].count = std::min(steps, outer.count - i);
            readAxes(axes, count, offset + i * static_cast<std::uint64_t>(outer.from),
                     to + static_cast<std::ptrdiff_t>(i) * outer.to, pixelSize);
        }
        axes[count - 1] = outer;
    }

    std::unique_ptr<Bytes> bytes_;
    std::uint64_t offset_;
    bool isSwapped_;
    std::array<std::int64_t, 5> strides_{}; // of x, y, z, c, t
};

} // namespace

void ArrayAxes::describe(const std::vector<std::uint64_t>& sizes, ImageFacts& facts) const
{
    const auto size = [&](std::size_t axis) { return dimensions[axis] == none ? 1 : sizes[dimensions[axis]]; };
    facts.geometry = {size(0), size(1), size(2), size(3), size(4)};
    facts.axes = letters;
    facts.axesRule = rule;
    facts.axesBy = by;
}

std::vector<ArrayRange> ArrayAxes::place(const Box& box, const PixelTarget& target, std::size_t pixelSize,
                                         std::size_t nbDimensions) const
{
    const std::array<ArrayRange, 5> ranges{ArrayRange{box.begin.x, box.size.x, static_cast<std::ptrdiff_t>(pixelSize)},
                                           {box.begin.y, box.size.y, target.strides.y},
                                           {box.begin.z, box.size.z, target.strides.z},
                                           {box.begin.c, box.size.c, target.strides.c},
                                           {box.begin.t, box.size.t, target.strides.t}};
    std::vector<ArrayRange> placed(nbDimensions);
    for (std::size_t axis = 0; axis < ranges.size(); ++axis) {
        if (dimensions[axis] != none) {
            placed[dimensions[axis]] = ranges[axis];
        }
    }
    return placed;
}

ArrayAxes findArrayAxes(const Source& source, const std::vector<std::uint64_t>& sizes, const std::string& stated,
                        const std::string& statedBy)
{
    ArrayAxes axes;
    axes.letters = source.options.axes;
    axes.rule = "--axes";
    axes.by = AxesBy::Axes;
    const auto upper = [](std::string& text) {
        std::transform(text.begin(), text.end(), text.begin(),
                       [](unsigned char c) { return static_cast<char>(std::toupper(c)); });
    };
    upper(axes.letters);
    if (!axes.letters.empty()) {
        if (const std::string fault = findFault(axes.letters, sizes); !fault.empty()) {
            throw OptionError{source.name + ": the letters of --axes " + source.options.axes + " " + fault};
        }
    } else {
        axes.letters = stated;
        // Names of no axis are as good as none.
        for (std::size_t i = 0; i < std::min(stated.size(), sizes.size()); ++i) {
            if (stated[i] == '?' && sizes[i] != 1) {
                axes.letters.clear();
            }
        }
        upper(axes.letters);
        axes.rule = statedBy;
        axes.by = AxesBy::File;
        if (!axes.letters.empty() && !findFault(axes.letters, sizes).empty()) {
            source.fail("its axes \"" + stated + "\" (" + statedBy + ") " + findFault(axes.letters, sizes) +
                        ": name them with --axes");
        }
    }
    if (axes.letters.empty()) {
        // Leading dimensions of one element say nothing.
        std::size_t skipped = 0;
        while (sizes.size() - skipped > 5 && sizes[skipped] == 1) {
            ++skipped;
        }
        const std::size_t count = sizes.size() - skipped;
        if (count == 0 || count > 5) {
            source.fail("it is an array of " + std::to_string(count) + " dimensions (" + listSizes(sizes) +
                        "), which is no image: one of 1 to 5 is needed");
        }
        axes.letters = std::string(skipped, '_') + std::string{"TCZYX"}.substr(5 - count);
        axes.rule = "the number of dimensions";
        axes.by = AxesBy::Guess;
    }
    axes.dimensions.fill(ArrayAxes::none);
    for (std::size_t i = 0; i < sizes.size(); ++i) {
        if (const std::size_t axis = findAxis(axes.letters[i]); axis != std::string_view::npos) {
            axes.dimensions[axis] = i;
        }
    }
    return axes;
}

std::optional<StoredType> findNumpyType(const std::string& code)
{
    const auto bytes = static_cast<std::size_t>(code.size() > 1 ? std::strtoul(code.c_str() + 1, nullptr, 10) : 0);
    switch (code.empty() ? '\0' : code[0]) {
    case 'b':
        return bytes == 1 ? std::optional{StoredType::Binary} : std::nullopt;
    case 'u':
        return findStoredType(NumberKind::Unsigned, bytes);
    case 'i':
        return findStoredType(NumberKind::Signed, bytes);
    case 'f':
        return findStoredType(NumberKind::Float, bytes);
    default:
        return std::nullopt;
    }
}

std::string describeColourDoubt(const ImageFacts& facts)
{
    const image::ImageGeometry& size = facts.geometry;
    if (facts.axesBy != AxesBy::Guess || size.z < 8 || size.y < 8 || size.x < 2 || size.x > 4) {
        return "";
    }
    return "its last dimension of " + std::to_string(size.x) + " was taken for x: if it holds colours, say --axes " +
           facts.axes.substr(1) + "S";
}

void openPixels(const Source& source, PixelArray& array, const std::vector<std::string>& paths, std::int64_t skip,
                const std::string& encoding)
{
    if (paths.empty()) {
        source.fail("its list of data files is empty");
    }
    std::uint64_t pixelBytes = getPixelSize(array.facts.type);
    for (const std::uint64_t size : array.sizes) {
        if (__builtin_mul_overflow(pixelBytes, size, &pixelBytes)) {
            source.fail("it states more pixels than can be: " + listSizes(array.sizes));
        }
    }
    const std::uint64_t each = pixelBytes / paths.size();
    std::vector<std::uint64_t> begins;
    bool areWhole = true;
    for (const std::string& path : paths) {
        const std::uint64_t fileSize = getFileSize(path);
        begins.push_back(skip < 0 ? fileSize - std::min(fileSize, each)
                                  : array.offset + static_cast<std::uint64_t>(skip));
        areWhole = areWhole && begins.back() <= fileSize && fileSize - begins.back() >= each;
    }
    const std::uint64_t begin = begins[0];
    const std::uint64_t fileSize = getFileSize(paths[0]);
    if (paths[0] != source.path) {
        array.facts.members = paths;
    }
    array.facts.compression = encoding == "raw" ? "none" : encoding;
    array.offset = 0;
    if (encoding != "raw") {
        if (paths.size() > 1) {
            source.fail("its pixels are compressed in several files, which is not supported");
        }
        array.bytes = openCompressedBytes(paths[0], source.name, begin, encoding);
        return;
    }
    array.available = fileSize - std::min(fileSize, begin);
    if (paths.size() > 1) {
        if (!areWhole) {
            source.fail("one of its data files is cut short: each holds " + std::to_string(each) + " bytes of pixels");
        }
        array.available = pixelBytes;
        array.bytes = joinBytes(paths, begins, std::max<std::uint64_t>(each, 1));
    } else {
        array.bytes = openBytes(paths[0], source.name);
        array.offset = begin;
    }
}

ReaderPtr readArray(const Source& source, PixelArray array)
{
    return std::make_unique<ArrayReader>(source, std::move(array));
}

} // namespace orlix::files
