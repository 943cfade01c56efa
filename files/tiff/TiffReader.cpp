#include <files/ArrayReader.hpp>
#include <files/Errors.hpp>
#include <files/Format.hpp>
#include <files/Nesting.hpp>
#include <files/tiff/TiffFile.hpp>

#include <pugixml.hpp>

#include <algorithm>
#include <cmath>
#include <cstring>
#include <filesystem>
#include <set>

namespace orlix::files
{

namespace
{

/// The pages of one image, on z, with their samples as channels. A page of a volume is as many as it has planes.
class TiffPages final : public ImageReader
{
public:
    TiffPages(const Source& source, std::shared_ptr<TiffSet> set, std::vector<PageRef> pages)
        : set_{std::move(set)}, pages_{std::move(pages)}
    {
        facts_ = source.describe("TIFF");
        const std::shared_ptr<TiffFile> first = set_->get(pages_[0].path);
        const std::size_t number = first->findPage(pages_[0]);
        page_ = first->getPage(number);
        const TiffFile::Cursor lent = first->lend(number);
        const TiffCursor& file = *lent;
        if (page_.x == 0 || page_.y == 0 || page_.samples == 0) {
            fail("it states a size of 0");
        }
        const auto type = findType(page_);
        if (!type) {
            const bool isComplex =
                page_.format == SAMPLEFORMAT_COMPLEXINT || page_.format == SAMPLEFORMAT_COMPLEXIEEEFP;
            fail(nameSamples(page_) + " pixels are not read: save " +
                 (isComplex ? "their magnitude, say" : "numbers of 8, 16, 32 or 64 bits"));
        }
        facts_.type = *type;
        facts_.geometry = {page_.x, page_.y, pages_.size() * page_.depth, page_.samples, 1};
        const auto compression = file.getField<std::uint16_t>(TIFFTAG_COMPRESSION, COMPRESSION_NONE);
        facts_.compression = nameCompression(compression);
        const auto photometric = file.getField<std::uint16_t>(TIFFTAG_PHOTOMETRIC, PHOTOMETRIC_MINISBLACK);
        facts_.photometric = photometric == PHOTOMETRIC_MINISWHITE ? Photometric::WhiteIsZero
                             : photometric == PHOTOMETRIC_RGB || photometric == PHOTOMETRIC_YCBCR ? Photometric::Rgb
                             : photometric == PHOTOMETRIC_PALETTE                                 ? Photometric::Palette
                                                                  : Photometric::BlackIsZero;
        if (facts_.photometric == Photometric::Palette) {
            note("its pixels are indices of a palette, and measured as such");
        }
        findPixelSize(file);
        findLayout(*first, file);
    }

    void fetch(const Box& box, const PixelTarget& target) override
    {
        for (std::size_t z = 0; z < box.size.z; ++z) {
            const std::size_t page = (box.begin.z + z) / page_.depth;
            const PageRef& ref = pages_[page];
            const std::shared_ptr<TiffFile> file = set_->get(ref.path);
            const std::size_t number = file->findPage(ref);
            checkPage(*file, number);
            const PixelTarget plane{target.row(0, z), target.strides};
            if (const auto pixels = file->getPixels(number)) {
                readPixels(*file, number, *pixels, box, plane);
                continue;
            }
            const TiffFile::Cursor cursor = file->lend(number);
            readPage(*cursor, number, (box.begin.z + z) % page_.depth, box, plane);
            if (!cursor->getWarning().empty()) {
                note("its pixels may be damaged (" + cursor->getWarning() + ")");
            }
        }
    }

    /// What ImageJ says of the pages: its unit is that of the resolution, whatever the tag says.
    void setFacts(const StatedAxes& stated)
    {
        if (!stated.unit.empty()) {
            facts_.pixelSize = {};
            setPixelSize(facts_, 0, length_[0], stated.unit);
            setPixelSize(facts_, 1, length_[1], stated.unit);
            setPixelSize(facts_, 2, stated.spacing, stated.unit);
        }
        facts_.scale = stated.scale;
    }
    void setPixelSizes(const ImageFacts& facts)
    {
        facts_.pixelSize = facts.pixelSize;
        facts_.unit = facts.unit;
    }
    void setSeries(const std::vector<std::string>& series, const std::vector<std::string>& members)
    {
        facts_.series = series;
        facts_.members = members;
    }
    const TiffPage& getPage() const { return page_; }

private:
    void findLayout(const TiffFile& file, const TiffCursor& page)
    {
        layout_.readsAhead = true;
        for (std::size_t i = 0; i < pages_.size() && pages_[i].path == pages_[0].path && layout_.readsAhead; ++i) {
            const bool isThere = pages_[i].page < (pages_[i].countsAll ? file.nbPages() : file.getFullPages().size());
            layout_.readsAhead = !isThere || file.getPixels(file.findPage(pages_[i])).has_value();
        }
        if (layout_.readsAhead) {
            return;
        }
        const bool isTiled = TIFFIsTiled(page.get()) != 0;
        const auto side = [&](std::uint32_t tag, std::size_t whole) {
            return std::clamp<std::size_t>(page.getField<std::uint32_t>(tag, 1), 1, std::max<std::size_t>(1, whole));
        };
        layout_.block.x = isTiled ? side(TIFFTAG_TILEWIDTH, page_.x) : page_.x;
        layout_.block.y = side(isTiled ? TIFFTAG_TILELENGTH : TIFFTAG_ROWSPERSTRIP, page_.y);
        layout_.block.z = isTiled && page_.depth > 1 ? side(TIFFTAG_TILEDEPTH, page_.depth) : 1;
        layout_.block.c = page.getField<std::uint16_t>(TIFFTAG_PLANARCONFIG, PLANARCONFIG_CONTIG) == PLANARCONFIG_CONTIG
                              ? page_.samples
                              : 1;
    }

    void checkPage(const TiffFile& file, std::size_t number) const
    {
        if (const TiffPage& other = file.getPage(number); !(other == page_)) {
            file.fail("page " + std::to_string(number) + " has " + describe(other, 1) +
                      " pixels, but the first page of the image " + describe(page_, 1) +
                      ": pages of one size and type are needed");
        }
    }

    /// Pixels that lie in the file as they are, from an offset on.
    void readPixels(const TiffFile& file, std::size_t number, std::uint64_t offset, const Box& box,
                    const PixelTarget& target) const
    {
        const std::size_t pixelSize = getPixelSize(facts_.type);
        const std::size_t rowBytes = page_.x * pixelSize;
        const bool isInPlace = box.size.x == page_.x && target.strides.y == static_cast<std::ptrdiff_t>(rowBytes);
        constexpr std::size_t mostAtOnce = std::size_t{1} << 20;
        const std::size_t rows = isInPlace ? box.size.y : std::clamp<std::size_t>(mostAtOnce / rowBytes, 1, box.size.y);
        const ByteBlock buffer{isInPlace ? 0 : rows * rowBytes};
        for (std::size_t y = 0; y < box.size.y; y += rows) {
            const std::size_t count = std::min(rows, box.size.y - y);
            std::byte* const to = isInPlace ? target.row(y) : buffer.data();
            try {
                file.getBytes().read(offset + (box.begin.y + y) * rowBytes, count * rowBytes, to);
            } catch (const FileError& error) {
                throw FileError{std::string{error.what()} + " (page " + std::to_string(number) + ")"};
            }
            if (file.isSwapped()) {
                swapBytes(to, pixelSize, count * page_.x);
            }
            for (std::size_t row = 0; !isInPlace && row < count; ++row) {
                std::memcpy(target.row(y + row), to + row * rowBytes + box.begin.x * pixelSize, box.size.x * pixelSize);
            }
        }
    }

    void findPixelSize(const TiffCursor& file)
    {
        const auto x = file.getField<float>(TIFFTAG_XRESOLUTION);
        const auto y = file.getField<float>(TIFFTAG_YRESOLUTION);
        const auto unit = file.getField<std::uint16_t>(TIFFTAG_RESOLUTIONUNIT, RESUNIT_INCH);
        if (!(x > 0 && y > 0 && std::isfinite(x) && std::isfinite(y))) {
            return;
        }
        length_ = {1 / static_cast<double>(x), 1 / static_cast<double>(y)};
        if (unit == RESUNIT_CENTIMETER || unit == RESUNIT_INCH) {
            constexpr double centimetre = 1e4;
            constexpr double inch = 25400;
            const double micrometres = unit == RESUNIT_CENTIMETER ? centimetre : inch;
            setPixelSize(facts_, 0, length_[0] * micrometres, "um");
            setPixelSize(facts_, 1, length_[1] * micrometres, "um");
        }
    }

    void readPage(TiffCursor& file, std::size_t number, std::size_t plane, const Box& box, const PixelTarget& target)
    {
        const std::string page = "page " + std::to_string(number);
        const auto compression = file.getField<std::uint16_t>(TIFFTAG_COMPRESSION, COMPRESSION_NONE);
        const auto photometric = file.getField<std::uint16_t>(TIFFTAG_PHOTOMETRIC, PHOTOMETRIC_MINISBLACK);
        const auto planar = file.getField<std::uint16_t>(TIFFTAG_PLANARCONFIG, PLANARCONFIG_CONTIG);
        if (const char* const method = nameUnreadableCompression(compression)) {
            file.fail(page + " is compressed with " + method + " (TIFF compression " + std::to_string(compression) +
                      "), which is not supported: convert the image, say to Deflate");
        }
        if (photometric == PHOTOMETRIC_YCBCR) {
            if (compression != COMPRESSION_JPEG) {
                file.fail("YCbCr pixels are not supported: convert the image to RGB");
            }
            TIFFSetField(file.get(), TIFFTAG_JPEGCOLORMODE, JPEGCOLORMODE_RGB);
        }
        // Samples that lie together are decoded together.
        const bool isSeparate = planar == PLANARCONFIG_SEPARATE && page_.samples > 1;
        const std::size_t count = isSeparate ? 1 : box.size.c;
        for (std::size_t c = 0; c < box.size.c; c += count) {
            const Samples samples{isSeparate ? box.begin.c + c : 0, isSeparate ? 0 : box.begin.c, count,
                                  isSeparate ? std::size_t{1} : page_.samples};
            const PixelTarget to{target.row(0, 0, c), target.strides};
            if (TIFFIsTiled(file.get()) != 0) {
                readTiles(file, page, plane, box, samples, to);
            } else {
                readStrips(file, page, box, samples, to);
            }
        }
    }

    /// Samples that are decoded: those from `first` on, of so many that lie together, in a plane of the file.
    struct Samples
    {
        std::size_t plane;
        std::size_t first;
        std::size_t count;
        std::size_t together;
    };

    void readStrips(TiffCursor& file, const std::string& page, const Box& box, const Samples& samples,
                    const PixelTarget& target)
    {
        if (page_.depth > 1) {
            file.fail(page +
                      " holds a volume in strips, which is not supported: save it in tiles, or a page per plane");
        }
        const std::size_t stripRows =
            std::min<std::size_t>(file.getField<std::uint32_t>(TIFFTAG_ROWSPERSTRIP, page_.y), page_.y);
        const auto rowBytes = static_cast<std::size_t>(TIFFScanlineSize64(file.get()));
        if (stripRows == 0 || rowBytes < packedBytes(page_.x, samples.together)) {
            file.failReading(page + " has strips that do not fit its size");
        }
        const std::size_t end = box.begin.y + box.size.y;
        for (std::size_t y = box.begin.y / stripRows * stripRows; y < end; y += stripRows) {
            const std::size_t rows = std::min(stripRows, page_.y - y);
            const std::size_t first = std::max(y, box.begin.y);
            const std::size_t last = std::min(y + rows, end);
            const std::uint32_t strip =
                TIFFComputeStrip(file.get(), static_cast<std::uint32_t>(y), static_cast<std::uint16_t>(samples.plane));
            const bool isInPlace = samples.together == 1 && isWide() && last - first == rows && box.size.x == page_.x &&
                                   target.strides.y == static_cast<std::ptrdiff_t>(rowBytes);
            constexpr std::size_t largeStrip = std::size_t{64} << 20;
            if (!isInPlace && rows * rowBytes > largeStrip) { // row by row, from where the last read ended or the first
                const std::size_t next = TIFFCurrentRow(file.get());
                const bool goesOn = TIFFCurrentStrip(file.get()) == strip && next > y && next <= first;
                std::byte* const samplesOfRow = file.scratch(rowBytes);
                if (!goesOn) { // reading nothing begins the strip again
                    TIFFReadEncodedStrip(file.get(), strip, samplesOfRow, 0);
                }
                for (std::size_t row = goesOn ? next : y; row < last; ++row) {
                    if (TIFFReadScanline(file.get(), samplesOfRow, static_cast<std::uint32_t>(row),
                                         static_cast<std::uint16_t>(samples.plane)) != 1) {
                        failPixels(file, page);
                    }
                    if (row >= first) {
                        unpack(samplesOfRow, box.begin.x, box.size.x, samples, target, row - box.begin.y, 0);
                    }
                }
                continue;
            }
            std::byte* const buffer = isInPlace ? target.row(y - box.begin.y) : file.scratch(rows * rowBytes);
            const auto bytes = static_cast<tmsize_t>(rows * rowBytes);
            if (TIFFReadEncodedStrip(file.get(), strip, buffer, bytes) != bytes) {
                failPixels(file, page);
            }
            for (std::size_t row = first; !isInPlace && row < last; ++row) {
                unpack(buffer + (row - y) * rowBytes, box.begin.x, box.size.x, samples, target, row - box.begin.y, 0);
            }
        }
    }

    void readTiles(TiffCursor& file, const std::string& page, std::size_t plane, const Box& box, const Samples& samples,
                   const PixelTarget& target)
    {
        const std::size_t width = file.getField<std::uint32_t>(TIFFTAG_TILEWIDTH);
        const std::size_t height = file.getField<std::uint32_t>(TIFFTAG_TILELENGTH);
        const std::size_t depth = std::max<std::uint32_t>(1, file.getField<std::uint32_t>(TIFFTAG_TILEDEPTH, 1));
        const auto rowBytes = static_cast<std::size_t>(TIFFTileRowSize(file.get()));
        const tmsize_t bytes = TIFFTileSize(file.get()) * static_cast<tmsize_t>(depth);
        if (width == 0 || height == 0 || bytes <= 0 || rowBytes < packedBytes(width, samples.together)) {
            file.failReading(page + " has tiles that do not fit its size");
        }
        constexpr tmsize_t largestTile = tmsize_t{1} << 30;
        if (bytes > largestTile) {
            file.fail(page + " has tiles of " + std::to_string(bytes) + " bytes: convert it to tiles of at most 1 GiB");
        }
        const std::size_t endX = box.begin.x + box.size.x;
        const std::size_t endY = box.begin.y + box.size.y;
        for (std::size_t y = box.begin.y / height * height; y < endY; y += height) {
            for (std::size_t x = box.begin.x / width * width; x < endX; x += width) {
                std::byte* const buffer = file.scratch(static_cast<std::size_t>(bytes));
                const std::uint32_t tile =
                    TIFFComputeTile(file.get(), static_cast<std::uint32_t>(x), static_cast<std::uint32_t>(y),
                                    static_cast<std::uint32_t>(plane), static_cast<std::uint16_t>(samples.plane));
                if (depth > 1) {
                    readDeepTile(file, page, tile, buffer, static_cast<std::size_t>(bytes));
                } else if (TIFFReadEncodedTile(file.get(), tile, buffer, bytes) != bytes) {
                    failPixels(file, page);
                }
                const std::size_t firstX = std::max(x, box.begin.x);
                const std::size_t lastX = std::min(x + width, endX);
                for (std::size_t row = std::max(y, box.begin.y); row < std::min(y + height, endY); ++row) {
                    unpack(buffer + (plane % depth * height + row - y) * rowBytes, firstX - x, lastX - firstX, samples,
                           target, row - box.begin.y, firstX - box.begin.x);
                }
            }
        }
    }

    /// A tile of several planes, of which libtiff decodes the first one only.
    void readDeepTile(const TiffCursor& file, const std::string& page, std::uint32_t tile, std::byte* to,
                      std::size_t bytes) const
    {
        const auto compression = file.getField<std::uint16_t>(TIFFTAG_COMPRESSION, COMPRESSION_NONE);
        const bool isDeflated = compression == COMPRESSION_ADOBE_DEFLATE || compression == COMPRESSION_DEFLATE;
        if ((!isDeflated && compression != COMPRESSION_NONE) || !isWide() ||
            file.getField<std::uint16_t>(TIFFTAG_PREDICTOR, PREDICTOR_NONE) != PREDICTOR_NONE) {
            file.fail(page + " holds a volume in compressed tiles of several planes, which is not supported: save it "
                             "with a page per plane");
        }
        ByteBlock raw{TIFFGetStrileByteCount(file.get(), tile)};
        if (TIFFReadRawTile(file.get(), tile, raw.data(), static_cast<tmsize_t>(raw.size())) !=
            static_cast<tmsize_t>(raw.size())) {
            failPixels(file, page);
        }
        if (isDeflated) {
            const ByteBlock inflated{bytes};
            if (!decompress("zlib", raw.data(), raw.size(), inflated.data(), bytes)) {
                failPixels(file, page);
            }
            raw = inflated;
        }
        if (raw.size() != bytes) {
            failPixels(file, page);
        }
        if (TIFFIsByteSwapped(file.get()) != 0) {
            swapBytes(raw.data(), getPixelSize(facts_.type), bytes / getPixelSize(facts_.type));
        }
        std::copy_n(raw.data(), bytes, to);
    }

    [[noreturn]] static void failPixels(const TiffCursor& file, const std::string& page)
    {
        file.failReading("the pixels of " + page + " cannot be decoded: the file is cut short or damaged");
    }

    bool isWide() const { return page_.bits == 8 || page_.bits >= 16; }

    std::size_t packedBytes(std::size_t columns, std::size_t samples) const
    {
        return (columns * samples * page_.bits + 7) / 8;
    }

    /// Spreads the packed samples of one row over the image's channels.
    void unpack(const std::byte* packed, std::size_t firstColumn, std::size_t columns, const Samples& samples,
                const PixelTarget& target, std::size_t y, std::size_t x) const
    {
        const std::size_t size = getPixelSize(facts_.type);
        for (std::size_t s = 0; s < samples.count; ++s) {
            std::byte* const row = target.row(y, 0, s) + x * size;
            const std::size_t first = firstColumn * samples.together + samples.first + s;
            if (isWide() && samples.together == 1) {
                std::memcpy(row, packed + first * size, columns * size);
            } else if (isWide()) {
                copyPixels(packed + first * size, row, size,
                           {Stretch{columns, static_cast<std::int64_t>(samples.together * size),
                                    static_cast<std::int64_t>(size)}});
            } else {
                unpackBits(packed, page_.bits, first, samples.together, row, columns);
            }
        }
    }

    std::shared_ptr<TiffSet> set_;
    std::vector<PageRef> pages_;
    TiffPage page_;
    std::array<double, 2> length_{}; // of a pixel, along x and y, in the unit of the resolution
};

/// One of the images of a file.
struct Series
{
    std::string text;
    std::vector<PageRef> pages;
    std::optional<OmeImage> ome{};
};

/// Pages that are alike, in the order in which they come.
std::vector<Series> groupPages(const Source& source, const TiffFile& file)
{
    std::vector<Series> series;
    std::vector<TiffPage> kinds;
    for (std::size_t i = 0; i < file.getFullPages().size(); ++i) {
        const TiffPage& page = file.getPage(file.getFullPages()[i]);
        const auto kind = std::find(kinds.begin(), kinds.end(), page);
        const auto which = static_cast<std::size_t>(kind - kinds.begin());
        if (kind == kinds.end()) {
            kinds.push_back(page);
            series.emplace_back();
        }
        series[which].pages.push_back({source.path, i});
    }
    for (std::size_t i = 0; i < series.size(); ++i) {
        series[i].text = describe(kinds[i], series[i].pages.size());
    }
    return series;
}

/// The XML that describes the file: its own, or that of the file which it says holds it.
std::string findOmeXml(Source& source, const std::string& description)
{
    pugi::xml_document document;
    document.load_string(description.c_str());
    const auto reference = document.select_node("//*[local-name()='BinaryOnly']").node();
    if (!reference) {
        return description;
    }
    const std::string name = reference.attribute("MetadataFile").as_string();
    const auto path = std::filesystem::path{source.path}.parent_path() / std::filesystem::path{name}.filename();
    if (name.empty() || !std::filesystem::exists(path)) {
        source.fail("its axes are told in " + name +
                    ", which is not there: tell how its pages nest, such as --pages z=2");
    }
    // Planes without a file of their own are in that file.
    source.path = path.string();
    const std::string head = readHead(source.path, source.name, 4);
    return head.starts_with("II") || head.starts_with("MM") ? TiffFile{source.path, source.path}.getDescription()
                                                            : readText(source.path, source.name);
}

std::vector<Series> listOmeImages(const Source& source, TiffSet& set, const std::string& description)
{
    Source described = source;
    const std::string xml = findOmeXml(described, description);
    const auto samplesOf = [&](const PageRef& ref) {
        const std::shared_ptr<TiffFile> file = set.get(ref.path);
        return std::size_t{file->getPage(file->findPage(ref)).samples};
    };
    std::vector<Series> series;
    for (OmeImage& image : parseOme(described, xml, set.get(source.path)->nbPages(), samplesOf)) {
        Series each;
        each.text = std::to_string(image.x) + " x " + std::to_string(image.y);
        each.text += image.pages.size() > 1 ? ", " + std::to_string(image.pages.size()) + " pages" : "";
        each.text += image.name.empty() ? "" : ", \"" + image.name + "\"";
        const std::shared_ptr<TiffFile> file = set.get(source.path);
        for (const PageRef& ref : image.pages) {
            const std::size_t count = ref.countsAll ? file->nbPages() : file->getFullPages().size();
            if (ref.path == source.path && image.fault.empty() && ref.page >= count) {
                image.fault = "want page " + std::to_string(ref.page) + ", where there are " + std::to_string(count);
            }
        }
        each.pages = std::move(image.pages);
        each.ome = std::move(image);
        series.push_back(std::move(each));
    }
    return series;
}

/// Pixels that all lie behind the first page, as ImageJ writes a stack of more than 4 GiB; null if they do not.
ReaderPtr findHiddenPages(const Source& source, TiffFile& set, const StatedAxes& stated, const ImageFacts& facts)
{
    const TiffPage& page = set.getPage(0);
    const TiffFile::Cursor cursor = set.lend(0);
    const TiffCursor& file = *cursor;
    const bool isPlain = file.getField<std::uint16_t>(TIFFTAG_COMPRESSION, COMPRESSION_NONE) == COMPRESSION_NONE &&
                         (page.samples == 1 || file.getField<std::uint16_t>(
                                                   TIFFTAG_PLANARCONFIG, PLANARCONFIG_CONTIG) == PLANARCONFIG_CONTIG) &&
                         page.bits % 8 == 0 && TIFFIsTiled(file.get()) == 0;
    if (stated.images < 2 || !isPlain) {
        return nullptr;
    }
    PixelArray array{facts};
    const std::uint64_t size = page.nbPixels() * page.bits / 8;
    array.offset = TIFFGetStrileOffset(file.get(), 0);
    const std::uint64_t fileSize = getFileSize(source.path);
    array.available = fileSize - std::min(fileSize, array.offset);
    if (array.available / size < stated.images) {
        source.fail("it states " + std::to_string(stated.images) + " images (" + stated.rule +
                    "), but holds pixels for " + std::to_string(array.available / size) + ": the file is cut short");
    }
    array.fastestFirst = true;
    array.sizes = {page.samples, page.x, page.y, stated.images};
    array.axes = "CXYZ";
    array.isSwapped = TIFFIsByteSwapped(file.get()) != 0;
    array.bytes = openBytes(source.path, source.name);
    Source plain = source;
    plain.options.axes.clear();
    return readArray(plain, std::move(array));
}

} // namespace

ReaderPtr openTiff(const Source& source)
{
    auto set = std::make_shared<TiffSet>(source);
    const std::shared_ptr<TiffFile> opened = set->get(source.path);
    TiffFile& file = *opened;
    const std::string& description = file.getDescription();
    std::vector<Series> all = isOme(description) && source.options.pages.empty()
                                  ? listOmeImages(source, *set, description)
                                  : groupPages(source, file);
    if (all.empty()) {
        source.fail("its OME-XML describes no image");
    }
    std::vector<std::string> names;
    names.reserve(all.size());
    for (const Series& each : all) {
        names.push_back(each.text);
    }
    std::size_t chosen = source.chooseSeries(names);
    if (source.options.listsSeries && !source.options.series) { // the first one that can be read
        const auto isReadable = [&](const Series& each) {
            return !each.pages.empty() && (each.ome ? each.ome->fault.empty()
                                                    : findType(file.getPage(file.findPage(each.pages[0]))).has_value());
        };
        const auto readable = std::find_if(all.begin(), all.end(), isReadable);
        chosen = readable == all.end() ? chosen : static_cast<std::size_t>(readable - all.begin());
    }
    Series& series = all[chosen];
    if (series.ome && !series.ome->fault.empty()) {
        source.fail("its OME axes " + series.ome->fault +
                    ": tell how its pages nest, such as --pages z=" + std::to_string(file.getFullPages().size()));
    }
    const std::size_t count = series.pages.size();
    std::set<std::string> members;
    for (const PageRef& ref : series.pages) {
        members.insert(ref.path);
    }
    members.erase(source.path);
    auto pages = std::make_unique<TiffPages>(source, set, series.pages);
    pages->setSeries(all.size() > 1 ? names : std::vector<std::string>{}, {members.begin(), members.end()});
    if (series.ome) {
        const OmeImage& ome = *series.ome;
        const image::ImageGeometry& size = pages->getFacts().geometry;
        if (ome.x != 0 && ome.y != 0 && (size.x != ome.x || size.y != ome.y)) {
            source.fail("its OME axes state " + std::to_string(ome.x) + " x " + std::to_string(ome.y) +
                        " pixels, but its pages have " + std::to_string(size.x) + " x " + std::to_string(size.y));
        }
        pages->setPixelSizes(ome.facts);
        return nestPages(std::move(pages), ome.nesting);
    }
    const TiffPage& page = pages->getPage();
    const StatedAxes stated = all.size() == 1 ? parseDescription(source, description, page.nbPixels()) : StatedAxes{};
    pages->setFacts(stated);
    if (count == 1 && page.depth == 1) {
        if (auto hidden = findHiddenPages(source, file, stated, pages->getFacts())) {
            return nestPages(std::move(hidden), findNesting(source, stated, stated.images));
        }
    }
    const std::size_t planes = count * page.depth;
    if (page.depth > 1 && source.options.pages.empty()) {
        std::vector<Level> levels = stated.levels.empty() ? std::vector<Level>{{'t', count}} : stated.levels;
        std::erase_if(levels, [](const Level& level) { return level.axis == 'z' && level.size == 1; });
        if (countPages(levels) == count &&
            std::none_of(levels.begin(), levels.end(), [](const Level& level) { return level.axis == 'z'; })) {
            levels.insert(levels.begin(), {'z', page.depth});
            return nestPages(std::move(pages), nest(levels, "TIFF image depth"));
        }
    }
    return nestPages(std::move(pages), findNesting(source, stated, planes));
}

} // namespace orlix::files
