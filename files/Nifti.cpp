#include <files/ArrayReader.hpp>

#include <nifti2_io.h>

#include <algorithm>
#include <cmath>
#include <cstring>
#include <filesystem>
#include <memory>

namespace orlix::files
{

namespace
{

struct Closer
{
    void operator()(::nifti_image* image) const { ::nifti_image_free(image); }
};

/// The version, by the size that the header states of itself in either order of bytes; 0 if it is none.
int findVersion(const std::string& header)
{
    std::int32_t size = 0;
    std::memcpy(&size, header.data(), 4);
    for (const std::int32_t each : {size, static_cast<std::int32_t>(__builtin_bswap32(static_cast<unsigned>(size)))}) {
        if (each == static_cast<std::int32_t>(sizeof(::nifti_1_header))) {
            return 1;
        }
        if (each == static_cast<std::int32_t>(sizeof(::nifti_2_header))) {
            return 2;
        }
    }
    return 0;
}

bool isCompressed(const std::string& path, const std::string& name)
{
    return readHead(path, name, 2) == "\x1f\x8b";
}

/// The first bytes of the header, decompressed.
std::string readHeader(const Source& source)
{
    const auto bytes = isCompressed(source.path, source.name) ? openCompressedBytes(source.path, source.name, 0, "gzip")
                                                              : openBytes(source.path, source.name);
    std::string header(sizeof(::nifti_1_header), '\0');
    bytes->read(0, header.size(), reinterpret_cast<std::byte*>(header.data()));
    if (findVersion(header) == 2) {
        header.resize(sizeof(::nifti_2_header));
        bytes->read(0, header.size(), reinterpret_cast<std::byte*>(header.data()));
    }
    return header;
}

/// The header's own sizes, which the library changes where they make no sense: their number, and each.
std::vector<std::int64_t> readSizes(const Source& source, const std::string& header)
{
    const bool isFirst = findVersion(header) == 1;
    constexpr std::size_t firstAt = 40;  // in version 1, 8 numbers of 2 bytes
    constexpr std::size_t secondAt = 16; // in version 2, of 8 bytes
    std::array<std::int64_t, 8> dim{};
    const auto read = [&](bool isSwapped) {
        for (std::size_t i = 0; i < dim.size(); ++i) {
            std::array<std::byte, 8> number{};
            const std::size_t size = isFirst ? 2 : 8;
            std::memcpy(number.data(), header.data() + (isFirst ? firstAt : secondAt) + i * size, size);
            if (isSwapped) {
                swapBytes(number.data(), size, 1);
            }
            std::int16_t narrow = 0;
            std::memcpy(&narrow, number.data(), sizeof narrow);
            std::memcpy(&dim[i], number.data(), sizeof dim[i]);
            dim[i] = isFirst ? narrow : dim[i];
        }
        return dim[0] >= 1 && dim[0] <= 7;
    };
    if (!read(false) && !read(true)) {
        source.fail("its header states no number of dimensions from 1 to 7");
    }
    for (std::int64_t i = 1; i <= dim[0]; ++i) {
        if (dim[static_cast<std::size_t>(i)] < 1) {
            source.fail("its header states a size of " + std::to_string(dim[static_cast<std::size_t>(i)]));
        }
    }
    return {dim.begin() + 1, dim.begin() + 1 + dim[0]};
}

/// What the library makes of the header.
std::unique_ptr<::nifti_image, Closer> parse(const Source& source, const std::string& header)
{
    ::nifti_set_debug_level(0); // it prints otherwise
    ::nifti_image* image = nullptr;
    if (findVersion(header) == 1) {
        ::nifti_1_header parsed;
        std::memcpy(&parsed, header.data(), sizeof parsed);
        image = ::nifti_convert_n1hdr2nim(parsed, nullptr);
    } else {
        ::nifti_2_header parsed;
        std::memcpy(&parsed, header.data(), sizeof parsed);
        image = ::nifti_convert_n2hdr2nim(parsed, nullptr);
    }
    if (image == nullptr) {
        source.fail("its NIfTI header is damaged");
    }
    return std::unique_ptr<::nifti_image, Closer>{image};
}

/// The file of the pixels of a header that has none itself.
std::string findPixels(const Source& source)
{
    std::filesystem::path path{source.path};
    if (path.extension() == ".gz") {
        path.replace_extension();
    }
    for (const char* const extension : {".img", ".img.gz", ".IMG"}) {
        if (const auto pixels = std::filesystem::path{path}.replace_extension(extension);
            std::filesystem::exists(pixels)) {
            return pixels.string();
        }
    }
    source.fail("its pixels are in " + path.replace_extension(".img").filename().string() + ", which is not there");
}

void findType(const Source& source, int datatype, PixelArray& array)
{
    using enum StoredType;
    const auto set = [&](StoredType type, std::uint64_t samples) {
        array.facts.type = type;
        if (samples > 1) {
            array.sizes.insert(array.sizes.begin(), samples);
            array.axes.insert(array.axes.begin(), 'S');
            array.facts.photometric = Photometric::Rgb;
        }
    };
    switch (datatype) {
    case DT_UINT8:
        return set(UInt8, 1);
    case DT_INT8:
        return set(Int8, 1);
    case DT_UINT16:
        return set(UInt16, 1);
    case DT_INT16:
        return set(Int16, 1);
    case DT_UINT32:
        return set(UInt32, 1);
    case DT_INT32:
        return set(Int32, 1);
    case DT_UINT64:
        return set(UInt64, 1);
    case DT_INT64:
        return set(Int64, 1);
    case DT_FLOAT32:
        return set(Float32, 1);
    case DT_FLOAT64:
        return set(Float64, 1);
    case DT_RGB24:
        return set(UInt8, 3);
    case DT_RGBA32:
        return set(UInt8, 4);
    default:
        source.fail(std::string{"its pixels are "} + ::nifti_datatype_string(datatype) +
                    ", which is not read: save numbers, such as float32");
    }
}

} // namespace

ReaderPtr openNifti(const Source& source)
{
    const std::string header = readHeader(source);
    const std::vector<std::int64_t> sizes = readSizes(source, header);
    const auto image = parse(source, header);
    PixelArray array{source.describe("NIfTI")};
    array.fastestFirst = true;
    array.sizes.assign(sizes.begin(), sizes.end());
    array.axes = std::string{"XYZTCVW"}.substr(0, sizes.size());
    array.axesBy = "NIfTI";
    findType(source, image->datatype, array);
    const std::string unit = image->xyz_units == NIFTI_UNITS_UNKNOWN ? "" : ::nifti_units_string(image->xyz_units);
    setPixelSize(array.facts, 0, std::abs(image->dx), unit);
    setPixelSize(array.facts, 1, std::abs(image->dy), unit);
    setPixelSize(array.facts, 2, std::abs(image->dz), unit);
    if (image->scl_slope != 0 && std::isfinite(image->scl_slope) && std::isfinite(image->scl_inter)) {
        array.facts.scale = {image->scl_slope, image->scl_inter};
    }
    array.isSwapped = image->byteorder != ::nifti_short_order();
    const bool isPair = image->nifti_type == NIFTI_FTYPE_NIFTI1_2 || image->nifti_type == NIFTI_FTYPE_NIFTI2_2 ||
                        image->nifti_type == NIFTI_FTYPE_ANALYZE;
    const std::string path = isPair ? findPixels(source) : source.path;
    const auto offset = static_cast<std::uint64_t>(std::max<std::int64_t>(0, image->iname_offset));
    if (isCompressed(path, source.name)) {
        array.bytes = openCompressedBytes(path, source.name, 0, "gzip");
        array.facts.compression = "gzip";
        array.facts.members = isPair ? std::vector{path} : std::vector<std::string>{};
        array.offset = offset;
    } else {
        openPixels(source, array, {path}, static_cast<std::int64_t>(offset), "raw");
    }
    return readArray(source, std::move(array));
}

} // namespace orlix::files
