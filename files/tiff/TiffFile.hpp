#pragma once

#include <files/tiff/LibTiff.hpp>
#include <files/tiff/TiffAxes.hpp>

#include <iterator>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace orlix::files
{

/// What a page is.
struct TiffPage
{
    std::uint32_t x = 0;
    std::uint32_t y = 0;
    std::uint32_t depth = 1;
    std::uint16_t bits = 1;
    std::uint16_t samples = 1;
    std::uint16_t format = SAMPLEFORMAT_UINT;

    friend bool operator==(const TiffPage&, const TiffPage&) = default;

    std::size_t nbPixels() const { return std::size_t{x} * y * depth * samples; }
};

/// "8-bit unsigned integer"
std::string nameSamples(const TiffPage& page);
/// The sizes and samples of so many such pages.
std::string describe(const TiffPage& page, std::size_t pages);
/// None where such samples are not read.
std::optional<StoredType> findType(const TiffPage& page);

/// A file with its pages.
class TiffFile
{
public:
    /// Lists the pages; errors call the file `name`. Throws FileError.
    TiffFile(const std::string& path, const std::string& name);

    TIFF* get() const { return tiff_.get(); }
    /// Of the first page that is no reduced version of another.
    const std::string& getDescription() const { return description_; }
    const TiffPage& getPage(std::size_t i) const { return pages_[i]; }
    std::size_t nbPages() const { return pages_.size(); }
    /// The pages that are neither masks nor reduced versions of others; all, if there are none else.
    const std::vector<std::size_t>& getFullPages() const { return fullPages_; }
    /// The number among all pages of a page. Throws FileError where there is no such page.
    std::size_t findPage(const PageRef& ref) const;

    /// Makes a page the one that is read; what libtiff said of others is forgotten.
    void select(std::size_t page);
    /// A field of that page.
    template <class T>
    T getField(std::uint32_t tag, T otherwise = {}) const
    {
        T value = otherwise;
        return TIFFGetFieldDefaulted(tiff_.get(), tag, &value) != 0 ? value : otherwise;
    }

    [[noreturn]] void fail(const std::string& what) const;
    /// Fails with libtiff's own words, if it has any.
    [[noreturn]] void failReading(const std::string& what) const;
    void forgetWarnings() { messages_.warning.clear(); }
    const std::string& getWarning() const { return messages_.warning; }

private:
    TiffPage describePage() const;
    void listPages();
    void readDescription();

    std::string name_;
    TiffMessages messages_; // before tiff_, which writes to it until it is closed
    TiffHandle tiff_;
    std::vector<TiffPage> pages_;
    std::vector<std::uint64_t> offsets_; // of the directories
    std::vector<std::size_t> fullPages_;
    std::size_t selected_ = ~std::size_t{0};
    std::string description_;
};

/// The files of a set, opened when they are needed.
class TiffSet
{
public:
    explicit TiffSet(const Source& source) : name_{source.name}, path_{source.path} {}

    TiffFile& get(const std::string& path)
    {
        auto found = files_.find(path);
        if (found == files_.end()) {
            constexpr std::size_t mostOpen = 64;
            if (files_.size() == mostOpen) {
                files_.erase(files_.begin()->first == path_ ? std::next(files_.begin()) : files_.begin());
            }
            found = files_.emplace(path, std::make_unique<TiffFile>(path, path == path_ ? name_ : path)).first;
        }
        return *found->second;
    }

private:
    std::string name_;
    std::string path_; // of the first one, which stays open
    std::map<std::string, std::unique_ptr<TiffFile>> files_;
};

} // namespace orlix::files
