#include <files/tiff/LibTiff.hpp>

#include <array>
#include <cstdarg>
#include <cstdio>

namespace orlix::files
{

namespace
{

int keep(std::string& kept, const char* format, va_list arguments)
{
    if (kept.empty()) {
        std::array<char, 512> line{};
        std::vsnprintf(line.data(), line.size(), format, arguments);
        kept = line.data();
    }
    return 1;
}

int keepError(TIFF*, void* messages, const char*, const char* format, va_list arguments)
{
    return keep(static_cast<TiffMessages*>(messages)->error, format, arguments);
}

int keepWarning(TIFF*, void* messages, const char*, const char* format, va_list arguments)
{
    return keep(static_cast<TiffMessages*>(messages)->warning, format, arguments);
}

} // namespace

TiffHandle openTiff(const std::string& path, const char* mode, TiffMessages& messages)
{
    TIFFOpenOptions* const options = TIFFOpenOptionsAlloc();
    TIFFOpenOptionsSetErrorHandlerExtR(options, keepError, &messages);
    TIFFOpenOptionsSetWarningHandlerExtR(options, keepWarning, &messages);
    TiffHandle tiff{TIFFOpenExt(path.c_str(), mode, options)};
    TIFFOpenOptionsFree(options);
    return tiff;
}

const char* nameUnreadableCompression(std::uint16_t compression)
{
    if (TIFFIsCODECConfigured(compression) != 0) {
        return nullptr;
    }
    switch (compression) {
    case 33003:
    case 33004:
    case 33005:
    case 34712:
        return "JPEG 2000";
    case 34892:
        return "lossy JPEG (DNG)";
    case 50001:
        return "WebP";
    case 50002:
    case 52546:
        return "JPEG XL";
    case 34887:
        return "LERC";
    case 50000:
        return "Zstandard";
    case 34925:
        return "LZMA2";
    default:
        return "a method of its own";
    }
}

std::string nameCompression(std::uint16_t compression)
{
    if (const char* const name = nameUnreadableCompression(compression)) {
        return name;
    }
    if (compression == COMPRESSION_NONE) {
        return "none";
    }
    if (compression == COMPRESSION_ADOBE_DEFLATE || compression == COMPRESSION_DEFLATE) {
        return "Deflate";
    }
    const TIFFCodec* const codec = TIFFFindCODEC(compression);
    return codec != nullptr ? codec->name : std::to_string(compression);
}

} // namespace orlix::files
