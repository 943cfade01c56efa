#include <files/Bytes.hpp>
#include <files/Format.hpp>
#include <files/RowReader.hpp>

#include <cstdio>
#include <spng.h>

namespace orlix::files
{

namespace
{

struct Closer
{
    void operator()(::spng_ctx* context) const { ::spng_ctx_free(context); }
    void operator()(std::FILE* file) const { std::fclose(file); }
};

class PngReader final : public RowReader
{
public:
    explicit PngReader(const Source& source) : path_{source.path}
    {
        facts_ = source.describe("PNG");
        open();
        check(::spng_get_ihdr(context_.get(), &header_), "its header cannot be read");
        samples_ = header_.color_type == SPNG_COLOR_TYPE_TRUECOLOR         ? 3
                   : header_.color_type == SPNG_COLOR_TYPE_TRUECOLOR_ALPHA ? 4
                   : header_.color_type == SPNG_COLOR_TYPE_GRAYSCALE_ALPHA ? 2
                                                                           : 1;
        const bool isPalette = header_.color_type == SPNG_COLOR_TYPE_INDEXED;
        facts_.type = header_.bit_depth == 16                ? StoredType::UInt16
                      : header_.bit_depth == 1 && !isPalette ? StoredType::Binary
                                                             : StoredType::UInt8;
        facts_.photometric = samples_ >= 3 ? Photometric::Rgb
                             : isPalette   ? Photometric::Palette
                                           : Photometric::BlackIsZero;
        if (isPalette) {
            note("its pixels are indices of a palette, and measured as such");
        }
        facts_.geometry = {header_.width, header_.height, 1, samples_, 1};
        facts_.axes = samples_ == 1 ? "YX" : "YXS";
        facts_.axesRule = "PNG";
        facts_.compression = "deflate";
        ::spng_phys density{};
        if (::spng_get_phys(context_.get(), &density) == 0 && density.unit_specifier == 1 && density.ppu_x != 0 &&
            density.ppu_y != 0) {
            facts_.pixelSize = {1e6 / density.ppu_x, 1e6 / density.ppu_y, 0};
            facts_.unit = "um";
        }
    }

private:
    void restart() override
    {
        open();
        check(::spng_get_ihdr(context_.get(), &header_), "its header cannot be read");
        std::size_t bytes = 0;
        check(::spng_decoded_image_size(context_.get(), SPNG_FMT_PNG, &bytes), "its size cannot be read");
        packedRow_.resize(bytes / header_.height);
        if (isInterlaced()) {
            whole_.resize(bytes);
            row_ = 0;
            check(::spng_decode_image(context_.get(), whole_.data(), bytes, SPNG_FMT_PNG, 0), damaged);
        } else {
            check(::spng_decode_image(context_.get(), nullptr, 0, SPNG_FMT_PNG, SPNG_DECODE_PROGRESSIVE), damaged);
        }
    }

    void decodeRow(std::byte* samples) override
    {
        const std::size_t bytes = packedRow_.size();
        const std::byte* packed = packedRow_.data();
        if (isInterlaced()) {
            packed = whole_.data() + row_++ * bytes;
        } else {
            const int error = ::spng_decode_row(context_.get(), packedRow_.data(), bytes);
            check(error == SPNG_EOI ? 0 : error, damaged);
        }
        const std::size_t count = header_.width * samples_;
        if (header_.bit_depth < 8) {
            unpackBits(packed, header_.bit_depth, 0, 1, samples, count);
        } else {
            std::copy_n(packed, bytes, samples);
        }
    }

    void finish() override
    {
        check(::spng_decode_chunks(context_.get()), "what stands behind its pixels is damaged");
        whole_.clear();
    }

    static constexpr const char* damaged = "its pixels are damaged or cut short";

    bool isInterlaced() const { return header_.interlace_method != 0; }

    void open()
    {
        file_.reset(std::fopen(path_.c_str(), "rb"));
        context_.reset(::spng_ctx_new(0));
        if (!file_ || !context_) {
            fail("it cannot be opened");
        }
        constexpr std::size_t largestChunk = std::size_t{64} << 20; // of what is said of the picture
        ::spng_set_chunk_limits(context_.get(), largestChunk, largestChunk);
        check(::spng_set_png_file(context_.get(), file_.get()), "it cannot be opened");
    }

    void check(int error, const char* what) const
    {
        if (error != 0) {
            fail(std::string{what} + " (" + ::spng_strerror(error) + ")");
        }
    }

    std::string path_;
    std::unique_ptr<std::FILE, Closer> file_;
    std::unique_ptr<::spng_ctx, Closer> context_;
    ::spng_ihdr header_{};
    std::size_t samples_ = 1;
    std::vector<std::byte> packedRow_;
    std::vector<std::byte> whole_; // of an interlaced picture
    std::size_t row_ = 0;
};

} // namespace

ReaderPtr openPng(const Source& source)
{
    return std::make_unique<PngReader>(source);
}

} // namespace orlix::files
