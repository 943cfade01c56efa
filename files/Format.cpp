#include <files/Format.hpp>

#include <files/Bytes.hpp>
#include <files/Errors.hpp>

#include <filesystem>
#include <string_view>

namespace orlix::files
{

namespace
{

bool begins(const Source& source, std::string_view magic, std::size_t at = 0)
{
    return source.head.size() >= at + magic.size() && source.head.compare(at, magic.size(), magic) == 0;
}

bool isTiff(const Source& source)
{
    return begins(source, {"II*\0", 4}) || begins(source, {"MM\0*", 4}) || begins(source, {"II+\0", 4}) ||
           begins(source, {"MM\0+", 4});
}

bool isPng(const Source& source)
{
    return begins(source, "\x89PNG\r\n\x1a\n");
}

bool isJpeg(const Source& source)
{
    return begins(source, "\xff\xd8\xff");
}

bool isNpy(const Source& source)
{
    return begins(source, "\x93NUMPY");
}

bool isHdf5(const Source& source)
{
    // Behind a user block of 512, 1024, ... bytes as well.
    constexpr std::size_t firstBlock = 512;
    bool found = begins(source, "\x89HDF\r\n\x1a\n");
    for (std::size_t block = firstBlock; block < source.head.size(); block *= 2) {
        found = found || begins(source, "\x89HDF\r\n\x1a\n", block);
    }
    return found;
}

bool isNrrd(const Source& source)
{
    return begins(source, "NRRD000");
}

bool isMetaImage(const Source& source)
{
    return begins(source, "ObjectType") || begins(source, "NDims") || begins(source, "Comment =");
}

bool isMrc(const Source& source)
{
    return begins(source, "MAP ", 208) || begins(source, {"MAP\0", 4}, 208);
}

/// The header's first number is its size, in either order of bytes; it may be compressed.
bool isNifti(const Source& source)
{
    constexpr std::size_t magicAt = 344;
    constexpr std::size_t magicEnd = 348;
    std::string head = source.head;
    if (begins(source, "\x1f\x8b")) {
        head.resize(magicEnd);
        try {
            openCompressedBytes(source.path, source.name, 0, "gzip")
                ->read(0, head.size(), reinterpret_cast<std::byte*>(head.data()));
        } catch (const FileError&) {
            return source.name.ends_with(".nii.gz"); // a damaged one
        }
    }
    const std::string_view size = std::string_view{head}.substr(0, 4);
    if (size == std::string_view{"\x1c\x02\0\0", 4} || size == std::string_view{"\0\0\x02\x1c", 4}) {
        return true; // version 2
    }
    const bool isFirst = size == std::string_view{"\x5c\x01\0\0", 4} || size == std::string_view{"\0\0\x01\x5c", 4};
    const std::string_view magic =
        head.size() < magicEnd ? std::string_view{} : std::string_view{head}.substr(magicAt, 2);
    return isFirst && (magic == "n+" || magic == "ni" || source.name.ends_with(".hdr"));
}

bool isZarr(const Source& source)
{
    namespace fs = std::filesystem;
    std::error_code none;
    for (const char* const name : {"zarr.json", ".zgroup", ".zarray", ".zattrs"}) {
        if (source.head.empty() && fs::is_regular_file(fs::path{source.path} / name, none)) {
            return true;
        }
    }
    return false;
}

} // namespace

const std::vector<Format>& listFormats()
{
    // A line for each format, made by the build, which may leave some out.
    static const std::vector<Format> formats{
#include <files/Formats.inc>
    };
    return formats;
}

} // namespace orlix::files
