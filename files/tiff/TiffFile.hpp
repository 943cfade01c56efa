#pragma once

#include <files/Bytes.hpp>
#include <files/tiff/LibTiff.hpp>
#include <files/tiff/TiffAxes.hpp>

#include <functional>
#include <iterator>
#include <map>
#include <memory>
#include <mutex>
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

/// An open file, at one of its pages.
class TiffCursor
{
public:
    /// Opens a file, which errors call `name`. Throws FileError.
    TiffCursor(const std::string& path, const std::string& name);

    TIFF* get() const { return tiff_.get(); }
    /// Goes to the page whose directory lies at an offset; what libtiff said of others is forgotten.
    void select(std::uint64_t directory, std::size_t number);
    bool isAt(std::uint64_t directory) const { return directory_ == directory; }
    /// Goes on to the next page; false behind the last one.
    bool goOn(std::size_t number);
    std::uint64_t getDirectory() const { return directory_; }

    /// A field of the page.
    template <class T>
    T getField(std::uint32_t tag, T otherwise = {}) const
    {
        T value = otherwise;
        return TIFFGetFieldDefaulted(tiff_.get(), tag, &value) != 0 ? value : otherwise;
    }
    std::string getDescription() const;
    TiffPage describePage() const;
    /// Where its pixels lie one after the other as they are; none where they do not.
    std::optional<std::uint64_t> findPixels(const TiffPage& page) const;

    /// At least so many bytes, for anything.
    std::byte* scratch(std::size_t bytes);

    [[noreturn]] void fail(const std::string& what) const;
    /// Fails with libtiff's own words, if it has any.
    [[noreturn]] void failReading(const std::string& what) const;
    const std::string& getWarning() const { return messages_.warning; }

private:
    std::string name_;
    TiffMessages messages_; // before tiff_, which writes to it until it is closed
    TiffHandle tiff_;
    std::uint64_t directory_ = 0;
    std::unique_ptr<std::byte[]> scratch_;
    std::size_t scratchSize_ = 0;
};

/// A file with its pages, which any number of threads read.
class TiffFile
{
public:
    /// Lists the pages; errors call the file `name`. Throws FileError.
    TiffFile(const std::string& path, const std::string& name);

    /// Of the first page that is no reduced version of another.
    const std::string& getDescription() const { return description_; }
    const TiffPage& getPage(std::size_t i) const { return pages_[i]; }
    /// Where the pixels of a page lie one after the other as they are; none where they do not.
    std::optional<std::uint64_t> getPixels(std::size_t i) const;
    /// Whether these pixels have their bytes the other way round than this machine.
    bool isSwapped() const { return isSwapped_; }
    std::size_t nbPages() const { return pages_.size(); }
    /// The pages that are neither masks nor reduced versions of others; all, if there are none else.
    const std::vector<std::size_t>& getFullPages() const { return fullPages_; }
    /// The number among all pages of a page. Throws FileError where there is no such page.
    std::size_t findPage(const PageRef& ref) const;

    /// Lends a cursor at a page, which comes back when it is gone.
    using Cursor = std::unique_ptr<TiffCursor, std::function<void(TiffCursor*)>>;
    Cursor lend(std::size_t page);
    Bytes& getBytes() const { return *bytes_; }

    [[noreturn]] void fail(const std::string& what) const;

private:
    void listPages(TiffCursor& cursor);

    std::string path_;
    std::string name_;
    std::vector<TiffPage> pages_;
    std::vector<std::uint64_t> offsets_; // of the directories
    std::vector<std::uint64_t> pixels_;  // 0: they do not lie one after the other
    std::vector<std::size_t> fullPages_;
    std::string description_;
    std::unique_ptr<Bytes> bytes_;
    bool isSwapped_ = false;
    std::mutex mutex_;
    std::vector<std::unique_ptr<TiffCursor>> idle_;
};

/// The files of a set, opened when they are needed, on any thread.
class TiffSet
{
public:
    explicit TiffSet(const Source& source) : name_{source.name}, path_{source.path} {}

    std::shared_ptr<TiffFile> get(const std::string& path)
    {
        const std::lock_guard lock{mutex_};
        auto found = files_.find(path);
        if (found == files_.end()) {
            constexpr std::size_t mostOpen = 64;
            if (files_.size() == mostOpen) {
                files_.erase(files_.begin()->first == path_ ? std::next(files_.begin()) : files_.begin());
            }
            found = files_.emplace(path, std::make_shared<TiffFile>(path, path == path_ ? name_ : path)).first;
        }
        return found->second;
    }

private:
    std::string name_;
    std::string path_; // of the first one, which stays open
    std::mutex mutex_;
    std::map<std::string, std::shared_ptr<TiffFile>> files_;
};

} // namespace orlix::files
