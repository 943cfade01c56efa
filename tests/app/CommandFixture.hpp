#pragma once

#include <framework/core/Settings.hpp>
#include <orlix/Commands.hpp>

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>
#include <tiffio.h>

#include <cstring>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <sstream>
#include <string>
#include <unistd.h>
#include <vector>

/// Runs commands of the program on files that tests write.
namespace orlix::test
{

using Json = nlohmann::json;

struct Outcome
{
    int status = 0;
    std::string output;
    std::string error;

    Json json() const { return Json::parse(output); }
    Json result(std::size_t i = 0) const { return json()["results"][i]; }
};

inline Outcome run(const std::vector<std::string>& arguments)
{
    std::vector<const char*> argv{"orlix"};
    for (const std::string& argument : arguments) {
        argv.push_back(argument.c_str());
    }
    Outcome outcome;
    std::ostringstream output;
    std::ostringstream error;
    outcome.status = app::runCommand(static_cast<int>(argv.size()), argv.data(), output, error);
    outcome.output = output.str();
    outcome.error = error.str();
    core::settings::setNbThreads(0);
    core::settings::forceInstructionSets({});
    return outcome;
}

/// How a test file is written.
struct Layout
{
    const char* mode = "w";
    std::uint16_t bits = 8;
    std::uint16_t format = SAMPLEFORMAT_UINT;
    std::uint16_t samples = 1;
    std::uint16_t planar = PLANARCONFIG_CONTIG;
    std::uint16_t compression = COMPRESSION_NONE;
    std::uint32_t tile = 0;
    std::uint32_t rowsPerStrip = 3;
    std::string description{};
    std::size_t thumbnailAfter = 0; ///< a reduced page behind this many pages
};

inline constexpr std::uint32_t width = 21;
inline constexpr std::uint32_t height = 10;

/// Pixel (x, y) of sample s of page p, as the bytes of a test file count it.
inline unsigned pixelAt(std::size_t p, std::size_t s, std::size_t y, std::size_t x)
{
    return static_cast<unsigned>((p * 7 + s * 31 + y * 3 + x) % 120);
}

class CommandTest : public testing::Test
{
protected:
    CommandTest()
    {
        std::filesystem::create_directories(folder_);
        TIFFSetWarningHandler(nullptr);
    }
    ~CommandTest() override { std::filesystem::remove_all(folder_); }

    std::string path(const std::string& name) const { return (folder_ / name).string(); }

    std::string write(const std::string& name, std::size_t pages, const Layout& layout) const
    {
        TIFF* const tiff = TIFFOpen(path(name).c_str(), layout.mode);
        for (std::size_t page = 0; page < pages; ++page) {
            writePage(tiff, page, layout, false);
            if (layout.thumbnailAfter == page + 1) {
                writePage(tiff, page, layout, true);
            }
        }
        TIFFClose(tiff);
        return path(name);
    }

    std::string writeBytes(const std::string& name, const std::string& bytes) const
    {
        std::ofstream{path(name), std::ios::binary} << bytes;
        return path(name);
    }

    /// An array as NumPy writes it.
    template <class T>
    std::string writeArray(const std::string& name, const std::string& type, const std::string& shape,
                           const std::vector<T>& pixels) const
    {
        std::string header = "{'descr': '" + type + "', 'fortran_order': False, 'shape': " + shape + ", }";
        header.append(118 - header.size() - 1, ' ').append("\n");
        const std::string_view bytes{reinterpret_cast<const char*>(pixels.data()), pixels.size() * sizeof(T)};
        return writeBytes(name, std::string{"\x93NUMPY\x01\x00\x76\x00", 10}.append(header).append(bytes));
    }

    static std::string readBytes(const std::string& file)
    {
        std::ifstream in{file, std::ios::binary};
        return {std::istreambuf_iterator<char>{in}, {}};
    }

private:
    static void writePage(TIFF* tiff, std::size_t page, const Layout& layout, bool reduced)
    {
        const std::uint32_t x = reduced ? width / 2 : width;
        TIFFSetField(tiff, TIFFTAG_SUBFILETYPE, reduced ? FILETYPE_REDUCEDIMAGE : 0);
        TIFFSetField(tiff, TIFFTAG_IMAGEWIDTH, x);
        TIFFSetField(tiff, TIFFTAG_IMAGELENGTH, height);
        TIFFSetField(tiff, TIFFTAG_BITSPERSAMPLE, layout.bits);
        TIFFSetField(tiff, TIFFTAG_SAMPLEFORMAT, layout.format);
        TIFFSetField(tiff, TIFFTAG_SAMPLESPERPIXEL, layout.samples);
        TIFFSetField(tiff, TIFFTAG_PLANARCONFIG, layout.planar);
        TIFFSetField(tiff, TIFFTAG_COMPRESSION, layout.compression);
        TIFFSetField(tiff, TIFFTAG_PHOTOMETRIC, layout.samples >= 3 ? PHOTOMETRIC_RGB : PHOTOMETRIC_MINISBLACK);
        if (!layout.description.empty() && page == 0) {
            TIFFSetField(tiff, TIFFTAG_IMAGEDESCRIPTION, layout.description.c_str());
        }
        const bool separate = layout.planar == PLANARCONFIG_SEPARATE;
        const std::size_t together = separate ? 1 : layout.samples;
        if (layout.tile != 0) {
            TIFFSetField(tiff, TIFFTAG_TILEWIDTH, layout.tile);
            TIFFSetField(tiff, TIFFTAG_TILELENGTH, layout.tile);
            for (std::size_t s = 0; s < layout.samples; s += together) {
                for (std::uint32_t y0 = 0; y0 < height; y0 += layout.tile) {
                    for (std::uint32_t x0 = 0; x0 < x; x0 += layout.tile) {
                        std::vector<std::uint8_t> tile(static_cast<std::size_t>(TIFFTileSize(tiff)), 119);
                        for (std::uint32_t y = 0; y < layout.tile; ++y) {
                            pack(tile.data() + y * TIFFTileRowSize(tiff), page, s, together, y0 + y, x0, layout.tile,
                                 layout);
                        }
                        TIFFWriteTile(tiff, tile.data(), x0, y0, 0, static_cast<std::uint16_t>(s));
                    }
                }
            }
        } else {
            TIFFSetField(tiff, TIFFTAG_ROWSPERSTRIP, layout.rowsPerStrip);
            for (std::size_t s = 0; s < layout.samples; s += together) {
                for (std::uint32_t y = 0; y < height; ++y) {
                    std::vector<std::uint8_t> row(static_cast<std::size_t>(TIFFScanlineSize(tiff)));
                    pack(row.data(), page, s, together, y, 0, x, layout);
                    TIFFWriteScanline(tiff, row.data(), y, static_cast<std::uint16_t>(s));
                }
            }
        }
        TIFFWriteDirectory(tiff);
    }

    static void pack(std::uint8_t* out, std::size_t page, std::size_t sample, std::size_t together, std::size_t y,
                     std::size_t x0, std::size_t columns, const Layout& layout)
    {
        for (std::size_t i = 0; i < columns * together; ++i) {
            const unsigned value = pixelAt(page, sample + i % together, y, x0 + i / together);
            if (layout.bits == 1) {
                out[i / 8] = static_cast<std::uint8_t>((out[i / 8] & ~(128 >> i % 8)) | (value % 2 * 128 >> i % 8));
            } else if (layout.format == SAMPLEFORMAT_IEEEFP) {
                const auto number = static_cast<float>(value) / 2;
                std::memcpy(out + i * 4, &number, 4);
            } else {
                const unsigned number = layout.format == SAMPLEFORMAT_INT ? 0u - value : value;
                std::memcpy(out + i * layout.bits / 8, &number, layout.bits / 8);
            }
        }
    }

    std::filesystem::path folder_ = std::filesystem::temp_directory_path() / ("orlix-test-" + std::to_string(getpid()));
};

} // namespace orlix::test
