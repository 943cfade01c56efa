#include <files/Format.hpp>
#include <files/RowReader.hpp>

#include <array>
#include <csetjmp>
#include <cstdio>
#include <jpeglib.h>

namespace orlix::files
{

namespace
{

/// The library's state, and where it goes when it fails. What calls it between setjmp and the return holds nothing that
/// would have to be destroyed.
struct Decoder
{
    ::jpeg_decompress_struct info{};
    ::jpeg_error_mgr errors{};
    std::jmp_buf failure{};
    std::array<char, JMSG_LENGTH_MAX> message{};
    std::array<char, JMSG_LENGTH_MAX> warning{};

    Decoder()
    {
        info.err = ::jpeg_std_error(&errors);
        info.client_data = this;
        errors.error_exit = [](::j_common_ptr state) {
            Decoder& self = *static_cast<Decoder*>(state->client_data);
            state->err->format_message(state, self.message.data());
            std::longjmp(self.failure, 1);
        };
        errors.emit_message = [](::j_common_ptr state, int level) {
            Decoder& self = *static_cast<Decoder*>(state->client_data);
            if (level < 0 && self.warning[0] == '\0') {
                state->err->format_message(state, self.warning.data());
            }
        };
        jpeg_create_decompress(&info);
    }
    ~Decoder() { jpeg_destroy_decompress(&info); }
    Decoder(const Decoder&) = delete;
    Decoder& operator=(const Decoder&) = delete;

    bool readHeader(std::FILE* file)
    {
        if (setjmp(failure) != 0) {
            return false;
        }
        jpeg_stdio_src(&info, file);
        jpeg_read_header(&info, TRUE);
        return true;
    }
    bool start()
    {
        if (setjmp(failure) != 0) {
            return false;
        }
        jpeg_start_decompress(&info);
        return true;
    }
    bool decodeRow(std::byte* samples)
    {
        if (setjmp(failure) != 0) {
            return false;
        }
        auto* row = reinterpret_cast<JSAMPROW>(samples);
        return jpeg_read_scanlines(&info, &row, 1) == 1;
    }
    bool finish()
    {
        if (setjmp(failure) != 0) {
            return false;
        }
        jpeg_finish_decompress(&info);
        return true;
    }
};

struct Closer
{
    void operator()(std::FILE* file) const { std::fclose(file); }
};

class JpegReader final : public RowReader
{
public:
    explicit JpegReader(const Source& source) : path_{source.path}
    {
        facts_ = source.describe("JPEG");
        open();
        const ::jpeg_decompress_struct& info = decoder_->info;
        const auto samples = static_cast<std::size_t>(info.num_components);
        facts_.geometry = {info.image_width, info.image_height, 1, samples, 1};
        facts_.photometric = samples == 3 ? Photometric::Rgb : Photometric::BlackIsZero;
        facts_.axes = samples == 1 ? "YX" : "YXS";
        facts_.axesRule = "JPEG";
        facts_.compression = "JPEG";
    }

private:
    void open()
    {
        file_.reset(std::fopen(path_.c_str(), "rb"));
        decoder_ = std::make_unique<Decoder>();
        if (!file_ || !decoder_->readHeader(file_.get())) {
            fail(std::string{"its header cannot be read ("} + decoder_->message.data() + ")");
        }
    }

    void restart() override
    {
        open();
        if (!decoder_->start()) {
            failDecoding();
        }
        if (decoder_->info.output_components != decoder_->info.num_components) {
            fail("its colours cannot be told apart");
        }
    }

    void decodeRow(std::byte* samples) override
    {
        if (!decoder_->decodeRow(samples)) {
            failDecoding();
        }
        noteDamage();
    }

    void finish() override
    {
        if (!decoder_->finish()) {
            failDecoding();
        }
        noteDamage();
    }

    [[noreturn]] void failDecoding() const
    {
        fail(std::string{"its pixels are damaged ("} + decoder_->message.data() + ")");
    }

    void noteDamage()
    {
        if (decoder_->warning[0] != '\0') {
            note(std::string{"its pixels may be damaged, and some are guessed ("} + decoder_->warning.data() + ")");
        }
    }

    std::string path_;
    std::unique_ptr<std::FILE, Closer> file_;
    std::unique_ptr<Decoder> decoder_;
};

} // namespace

ReaderPtr openJpeg(const Source& source)
{
    return std::make_unique<JpegReader>(source);
}

} // namespace orlix::files
