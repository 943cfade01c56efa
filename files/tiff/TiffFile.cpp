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

TiffFile::TiffFile(const std::string& path, const std::string& name) : name_{name}
{
    const FileDescriptor file{path, name}; // says why, where it cannot be opened
    tiff_ = openTiff(path, "r", messages_);
    if (!tiff_) {
        failReading("it is no TIFF file, or a damaged one");
    }
    listPages();
}

std::size_t TiffFile::findPage(const PageRef& ref) const
{
    const std::size_t count = ref.countsAll ? pages_.size() : fullPages_.size();
    if (ref.page >= count) {
        fail("page " + std::to_string(ref.page) + " is wanted, but there are " + std::to_string(count));
    }
    return ref.countsAll ? ref.page : fullPages_[ref.page];
}

void TiffFile::select(std::size_t page)
{
    if (page == selected_) { // what is being decoded goes on
        return;
    }
    selected_ = page;
    const std::string damage = messages_.warning;
    if (TIFFSetSubDirectory(tiff_.get(), offsets_[page]) == 0) {
        failReading("page " + std::to_string(page) + " cannot be read");
    }
    messages_.warning = damage;
}

void TiffFile::fail(const std::string& what) const
{
    Source{{}, name_}.fail(what);
}

void TiffFile::failReading(const std::string& what) const
{
    fail(messages_.error.empty() ? what : what + " (" + messages_.error + ")");
}

TiffPage TiffFile::describePage() const
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

void TiffFile::listPages()
{
    for (;;) {
        if (const auto kind = getField<std::uint32_t>(TIFFTAG_SUBFILETYPE);
            (kind & (FILETYPE_REDUCEDIMAGE | FILETYPE_MASK)) == 0) {
            if (fullPages_.empty()) {
                readDescription();
            }
            fullPages_.push_back(pages_.size());
        }
        pages_.push_back(describePage());
        offsets_.push_back(TIFFCurrentDirOffset(tiff_.get()));
        if (pages_.size() == 1) {
            readDescription();
        }
        if (TIFFLastDirectory(tiff_.get()) != 0) {
            break;
        }
        if (TIFFReadDirectory(tiff_.get()) == 0) {
            failReading("page " + std::to_string(pages_.size()) + " cannot be read: the file is cut short or damaged");
        }
    }
    for (std::size_t i = 0; fullPages_.empty() && i < pages_.size(); ++i) {
        fullPages_.push_back(i);
    }
}

void TiffFile::readDescription()
{
    const char* text = nullptr;
    if (TIFFGetField(tiff_.get(), TIFFTAG_IMAGEDESCRIPTION, &text) != 0 && text != nullptr) {
        description_ = text;
    }
}

} // namespace orlix::files
