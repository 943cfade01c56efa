#include <files/tiff/TiffFile.hpp>

#include <files/Bytes.hpp>

#include <algorithm>

namespace orlix::files
{

std::string nameSamples(const TiffPage& page)
{
    static constexpr const char* kinds[] = {"",        "unsigned integer", "signed integer", "float",
                                            "untyped", "complex integer",  "complex float"};
    const std::string kind = page.format < std::size(kinds) ? kinds[page.format] : "unknown";
    return std::to_string(page.bits) + "-bit " + kind;
}

std::string describe(const TiffPage& page, std::size_t pages)
{
    std::string text = std::to_string(page.x) + " x " + std::to_string(page.y);
    text += page.samples == 1 ? "" : ", " + std::to_string(page.samples) + " samples";
    text += pages == 1 ? "" : ", " + std::to_string(pages) + " pages";
    return text + ", " + nameSamples(page);
}

std::optional<StoredType> findType(const TiffPage& page)
{
    if (page.format == SAMPLEFORMAT_IEEEFP) {
        return page.bits % 8 == 0 ? findStoredType(NumberKind::Float, page.bits / 8) : std::nullopt;
    }
    if (page.format != SAMPLEFORMAT_UINT && page.format != SAMPLEFORMAT_INT) {
        return std::nullopt;
    }
    if (page.bits == 1) {
        return StoredType::Binary;
    }
    if (page.bits < 16 && page.bits != 8) { // packed
        return page.format == SAMPLEFORMAT_INT ? std::nullopt
               : page.bits < 8                 ? std::optional{StoredType::UInt8}
                                               : std::optional{StoredType::UInt16};
    }
    return page.bits % 8 == 0
               ? findStoredType(page.format == SAMPLEFORMAT_INT ? NumberKind::Signed : NumberKind::Unsigned,
                                page.bits / 8)
               : std::nullopt;
}

TiffCursor::TiffCursor(const std::string& path, const std::string& name) : name_{name}
{
    const FileDescriptor file{path, name}; // says why, where it cannot be opened
    // Not mapped: a file that shrinks while it is read is an error like others.
    tiff_ = openTiff(path, "rmO", messages_);
    if (!tiff_) {
        failReading("it is no TIFF file, or a damaged one");
    }
    directory_ = TIFFCurrentDirOffset(tiff_.get());
}

void TiffCursor::select(std::uint64_t directory, std::size_t number)
{
    if (isAt(directory)) { // what is being decoded goes on
        return;
    }
    directory_ = 0;
    messages_ = {};
    if (TIFFSetSubDirectory(tiff_.get(), directory) == 0) {
        failReading("page " + std::to_string(number) + " cannot be read");
    }
    messages_.warning.clear(); // those about directories say nothing about the pixels
    directory_ = directory;
}

bool TiffCursor::goOn(std::size_t number)
{
    if (TIFFLastDirectory(tiff_.get()) != 0) {
        return false;
    }
    if (TIFFReadDirectory(tiff_.get()) == 0) {
        failReading("page " + std::to_string(number) + " cannot be read: the file is cut short or damaged");
    }
    directory_ = TIFFCurrentDirOffset(tiff_.get());
    return true;
}

std::string TiffCursor::getDescription() const
{
    const char* text = nullptr;
    return TIFFGetField(tiff_.get(), TIFFTAG_IMAGEDESCRIPTION, &text) != 0 && text != nullptr ? text : "";
}

TiffPage TiffCursor::describePage() const
{
    TiffPage page;
    page.x = getField<std::uint32_t>(TIFFTAG_IMAGEWIDTH);
    page.y = getField<std::uint32_t>(TIFFTAG_IMAGELENGTH);
    page.depth = std::max<std::uint32_t>(1, getField<std::uint32_t>(TIFFTAG_IMAGEDEPTH, 1));
    page.bits = getField<std::uint16_t>(TIFFTAG_BITSPERSAMPLE, 1);
    page.samples = getField<std::uint16_t>(TIFFTAG_SAMPLESPERPIXEL, 1);
    page.format = getField<std::uint16_t>(TIFFTAG_SAMPLEFORMAT, SAMPLEFORMAT_UINT);
    if (page.format == SAMPLEFORMAT_VOID) {
        page.format = SAMPLEFORMAT_UINT;
    }
    return page;
}

std::optional<std::uint64_t> TiffCursor::findPixels(const TiffPage& page) const
{
    TIFF* const tiff = tiff_.get();
    const bool isPlain = getField<std::uint16_t>(TIFFTAG_COMPRESSION, COMPRESSION_NONE) == COMPRESSION_NONE &&
                         page.samples == 1 && page.depth == 1 && page.bits % 8 == 0 && TIFFIsTiled(tiff) == 0 &&
                         getField<std::uint16_t>(TIFFTAG_FILLORDER, FILLORDER_MSB2LSB) == FILLORDER_MSB2LSB;
    if (!isPlain) {
        return std::nullopt;
    }
    const std::uint64_t rowBytes = std::uint64_t{page.x} * page.bits / 8;
    const std::uint64_t stripRows = std::min<std::uint32_t>(getField(TIFFTAG_ROWSPERSTRIP, page.y), page.y);
    const std::uint64_t first = TIFFGetStrileOffset(tiff, 0);
    std::uint64_t next = first;
    for (std::uint64_t y = 0, strip = 0; stripRows != 0 && y < page.y; y += stripRows, ++strip) {
        const std::uint64_t bytes = std::min<std::uint64_t>(stripRows, page.y - y) * rowBytes;
        if (TIFFGetStrileOffset(tiff, static_cast<std::uint32_t>(strip)) != next ||
            TIFFGetStrileByteCount(tiff, static_cast<std::uint32_t>(strip)) != bytes) {
            return std::nullopt;
        }
        next += bytes;
    }
    return first != 0 && stripRows != 0 ? std::optional{first} : std::nullopt;
}

std::byte* TiffCursor::scratch(std::size_t bytes)
{
    if (scratchSize_ < bytes) {
        scratch_ = std::make_unique_for_overwrite<std::byte[]>(bytes); // touched only where pixels come
        scratchSize_ = bytes;
    }
    return scratch_.get();
}

void TiffCursor::fail(const std::string& what) const
{
    Source{{}, name_}.fail(what);
}

void TiffCursor::failReading(const std::string& what) const
{
    fail(messages_.error.empty() ? what : what + " (" + messages_.error + ")");
}

TiffFile::TiffFile(const std::string& path, const std::string& name) : path_{path}, name_{name}
{
    auto cursor = std::make_unique<TiffCursor>(path, name);
    listPages(*cursor);
    bytes_ = openBytes(path, name);
    isSwapped_ = TIFFIsByteSwapped(cursor->get()) != 0;
    idle_.push_back(std::move(cursor));
}

std::optional<std::uint64_t> TiffFile::getPixels(std::size_t i) const
{
    return pixels_[i] != 0 ? std::optional{pixels_[i]} : std::nullopt;
}

std::size_t TiffFile::findPage(const PageRef& ref) const
{
    const std::size_t count = ref.countsAll ? pages_.size() : fullPages_.size();
    if (ref.page >= count) {
        fail("page " + std::to_string(ref.page) + " is wanted, but there are " + std::to_string(count));
    }
    return ref.countsAll ? ref.page : fullPages_[ref.page];
}

TiffFile::Cursor TiffFile::lend(std::size_t page)
{
    std::unique_ptr<TiffCursor> cursor;
    {
        const std::lock_guard lock{mutex_};
        const auto at =
            std::find_if(idle_.begin(), idle_.end(), [&](const auto& each) { return each->isAt(offsets_[page]); });
        if (!idle_.empty()) {
            const auto taken = at != idle_.end() ? at : idle_.end() - 1;
            cursor = std::move(*taken);
            idle_.erase(taken);
        }
    }
    if (!cursor) {
        cursor = std::make_unique<TiffCursor>(path_, name_);
    }
    cursor->select(offsets_[page], page);
    return {cursor.release(), [this](TiffCursor* lent) {
                std::unique_ptr<TiffCursor> back{lent};
                const std::lock_guard lock{mutex_};
                idle_.push_back(std::move(back));
            }};
}

void TiffFile::fail(const std::string& what) const
{
    Source{{}, name_}.fail(what);
}

void TiffFile::listPages(TiffCursor& cursor)
{
    do {
        if (const auto kind = cursor.getField<std::uint32_t>(TIFFTAG_SUBFILETYPE);
            (kind & (FILETYPE_REDUCEDIMAGE | FILETYPE_MASK)) == 0) {
            if (fullPages_.empty()) {
                const std::string text = cursor.getDescription();
                description_ = text.empty() ? description_ : text;
            }
            fullPages_.push_back(pages_.size());
        }
        if (pages_.empty() && description_.empty()) {
            description_ = cursor.getDescription();
        }
        pages_.push_back(cursor.describePage());
        offsets_.push_back(cursor.getDirectory());
        pixels_.push_back(cursor.findPixels(pages_.back()).value_or(0));
    } while (cursor.goOn(pages_.size()));
    for (std::size_t i = 0; fullPages_.empty() && i < pages_.size(); ++i) {
        fullPages_.push_back(i);
    }
}

} // namespace orlix::files
