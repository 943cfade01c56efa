#pragma once

#include <files/Format.hpp>

#include <nlohmann/json.hpp>

#include <filesystem>
#include <functional>
#include <numeric>

/// What the metadata of Zarr, versions 2 and 3, and of OME-Zarr say. A key that is missing throws nlohmann's
/// exceptions.
namespace orlix::files
{

/// How an array, or a shard of one, is cut into chunks, and what became of each.
struct ZarrChunks
{
    std::vector<std::uint64_t> shape; ///< of a chunk, in elements
    std::vector<std::size_t> order{}; ///< of its dimensions as they are stored, slowest first
    bool isSwapped = false;
    std::vector<std::string> codecs{}; ///< that compressed or sealed its bytes, as they were applied
    // A chunk that is a shard holds chunks itself, and an index of them.
    std::shared_ptr<ZarrChunks> inner{};
    std::vector<std::string> indexCodecs{};
    bool isIndexAtEnd = true;

    std::uint64_t nbElements() const
    {
        return std::accumulate(shape.begin(), shape.end(), std::uint64_t{1}, std::multiplies<>{});
    }
};

/// An array as its metadata describe it.
struct ZarrArray
{
    std::vector<std::uint64_t> sizes;
    StoredType type = StoredType::UInt8;
    std::vector<std::byte> fill{}; ///< one element, in this machine's order of bytes
    ZarrChunks chunks;
    std::string prefix{};    ///< of the names of chunks
    std::string separator{}; ///< in them
    std::string letters{};   ///< of the dimensions; empty: not stated
    std::string rule{};
    std::string compression = "none";
};

/// What a multiscale image of OME-Zarr says of its arrays.
struct ZarrMultiscale
{
    std::string path; ///< of the array of full resolution
    std::string letters{};
    std::vector<double> scales{};
    std::vector<std::string> units{};
};

/// An array, and what the group that it is in says of it.
struct ZarrImage
{
    std::filesystem::path path;
    ZarrMultiscale scale{};
};

/// A folder of a Zarr hierarchy: an array, or a group.
class ZarrNode
{
public:
    ZarrNode(const Source& source, const std::filesystem::path& path);

    const std::filesystem::path& getPath() const { return path_; }
    bool isArray() const { return isArray_; }
    ZarrArray parseArray(const Source& source) const;
    /// The multiscale images that the attributes describe.
    std::vector<ZarrMultiscale> parseMultiscales() const;
    /// The images below a group: its multiscales, else those of its groups and its arrays.
    std::vector<ZarrImage> listImages(const Source& source, int depth = 0) const;

private:
    std::vector<std::filesystem::path> listChildren() const;

    std::filesystem::path path_;
    nlohmann::json json_ = nlohmann::json::object();
    nlohmann::json attributes_ = nlohmann::json::object();
    bool isArray_ = false;
    int version_ = 2;
};

} // namespace orlix::files
