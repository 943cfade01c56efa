#include <orlix/LibTiff.hpp>

#include <array>
#include <cstdarg>
#include <cstdio>

namespace orlix::app
{

namespace
{

int keepError(TIFF*, void* text, const char*, const char* format, va_list arguments)
{
    std::string& kept = *static_cast<std::string*>(text);
    if (kept.empty()) {
        std::array<char, 512> line{};
        std::vsnprintf(line.data(), line.size(), format, arguments);
        kept = line.data();
    }
    return 1;
}

int ignoreWarning(TIFF*, void*, const char*, const char*, va_list)
{
    return 1;
}

} // namespace

TiffHandle openTiff(const std::string& path, const char* mode, std::string& error)
{
    TIFFOpenOptions* const options = TIFFOpenOptionsAlloc();
    TIFFOpenOptionsSetErrorHandlerExtR(options, keepError, &error);
    TIFFOpenOptionsSetWarningHandlerExtR(options, ignoreWarning, nullptr);
    TiffHandle tiff{TIFFOpenExt(path.c_str(), mode, options)};
    TIFFOpenOptionsFree(options);
    return tiff;
}

} // namespace orlix::app
