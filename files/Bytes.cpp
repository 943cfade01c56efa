#include <files/Bytes.hpp>

#include <files/Errors.hpp>

#include <boost/iostreams/device/array.hpp>
#include <boost/iostreams/device/file_descriptor.hpp>
#include <boost/iostreams/filter/bzip2.hpp>
#include <boost/iostreams/filter/gzip.hpp>
#include <boost/iostreams/filter/zlib.hpp>
#include <boost/iostreams/filtering_stream.hpp>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <filesystem>
#include <fstream>
#include <libdeflate.h>
#include <mutex>
#include <sys/stat.h>
#include <unistd.h>

namespace orlix::files
{

namespace io = boost::iostreams;

namespace
{

constexpr std::streamsize bufferSize = 1 << 18;

void pushDecoder(io::filtering_istream& stream, const std::string& method)
{
    if (method == "gzip") {
        stream.push(io::gzip_decompressor{io::zlib::default_window_bits, bufferSize}, bufferSize);
    } else if (method == "zlib") {
        stream.push(io::zlib_decompressor{io::zlib::default_window_bits, bufferSize}, bufferSize);
    } else {
        stream.push(io::bzip2_decompressor{false, bufferSize}, bufferSize);
    }
    stream.exceptions(std::ios::badbit);
}

class FileBytes final : public Bytes
{
public:
    FileBytes(const std::string& path, const std::string& name) : file_{path, name}, name_{name} {}

    void read(std::uint64_t offset, std::size_t count, std::byte* to) override
    {
        readAhead(offset, count);
        while (count != 0) {
            const ::ssize_t got = ::pread(file_.get(), to, count, static_cast<::off_t>(offset));
            if (got < 0 && errno == EINTR) {
                continue;
            }
            if (got <= 0) {
                throw FileError{
                    name_ + ": " +
                    (got < 0 ? std::strerror(errno) : "it ends before its pixels do: the file is cut short")};
            }
            offset += static_cast<std::uint64_t>(got);
            count -= static_cast<std::size_t>(got);
            to += got;
        }
    }

private:
    /// Whoever reads much is likely to go on: the system fetches what comes next.
    void readAhead(std::uint64_t offset, std::size_t count)
    {
        constexpr std::size_t much = std::size_t{128} << 10;
        constexpr std::uint64_t ahead = std::uint64_t{8} << 20;
        if (count >= much) {
            ::posix_fadvise(file_.get(), static_cast<::off_t>(offset + ahead), static_cast<::off_t>(count),
                            POSIX_FADV_WILLNEED);
        }
    }

    FileDescriptor file_;
    std::string name_;
};

class CompressedBytes final : public Bytes
{
public:
    CompressedBytes(const std::string& path, const std::string& name, std::uint64_t offset, const std::string& method)
        : file_{path, name}, name_{name}, offset_{offset}, method_{method}
    {}

    bool isSequential() const override { return true; }

    void read(std::uint64_t offset, std::size_t count, std::byte* to) override
    {
        const std::lock_guard lock{mutex_};
        try {
            if (!stream_ || offset < position_) {
                restart();
            }
            skip(offset - position_);
            position_ += take(to, count);
            if (position_ != offset + count) {
                throw FileError{name_ + ": its compressed pixels end too early: the file is cut short or damaged"};
            }
            stream_->peek(); // at the end this compares the checksum
        } catch (const io::gzip_error& error) {
            // What stands behind the end is no matter.
            if (position_ != offset + count || error.error() != io::gzip::bad_header) {
                failDamaged();
            }
        } catch (const std::ios::failure&) {
            failDamaged();
        }
    }

private:
    [[noreturn]] void failDamaged()
    {
        stream_.reset();
        throw FileError{name_ + ": its compressed pixels are damaged"};
    }

    void restart()
    {
        stream_ = std::make_unique<io::filtering_istream>();
        pushDecoder(*stream_, method_);
        ::lseek(file_.get(), static_cast<::off_t>(offset_), SEEK_SET);
        stream_->push(io::file_descriptor_source{file_.get(), io::never_close_handle}, bufferSize);
        position_ = 0;
    }

    std::uint64_t take(std::byte* to, std::size_t count)
    {
        stream_->read(reinterpret_cast<char*>(to), static_cast<std::streamsize>(count));
        return static_cast<std::uint64_t>(stream_->gcount());
    }

    void skip(std::uint64_t count)
    {
        std::vector<std::byte> passed(std::min<std::uint64_t>(count, bufferSize));
        while (count != 0 && stream_->good()) {
            const std::uint64_t got = take(passed.data(), std::min<std::uint64_t>(count, passed.size()));
            position_ += got;
            count -= got;
        }
    }

    FileDescriptor file_;
    std::string name_;
    std::uint64_t offset_;
    std::string method_;
    std::mutex mutex_;
    std::unique_ptr<io::filtering_istream> stream_;
    std::uint64_t position_ = 0;
};

class MemoryBytes final : public Bytes
{
public:
    MemoryBytes(std::vector<std::byte> bytes, const std::string& name) : bytes_{std::move(bytes)}, name_{name} {}

    void read(std::uint64_t offset, std::size_t count, std::byte* to) override
    {
        if (offset > bytes_.size() || count > bytes_.size() - offset) {
            throw FileError{name_ + ": it ends before its pixels do: the file is cut short"};
        }
        std::memcpy(to, bytes_.data() + offset, count);
    }

private:
    std::vector<std::byte> bytes_;
    std::string name_;
};

class JoinedBytes final : public Bytes
{
public:
    JoinedBytes(std::vector<std::string> paths, std::vector<std::uint64_t> offsets, std::uint64_t count)
        : paths_{std::move(paths)}, offsets_{std::move(offsets)}, count_{count}
    {}

    void read(std::uint64_t offset, std::size_t count, std::byte* to) override
    {
        while (count != 0) {
            const auto file = static_cast<std::size_t>(offset / count_);
            const std::uint64_t inFile = offset % count_;
            const auto part = static_cast<std::size_t>(std::min<std::uint64_t>(count, count_ - inFile));
            open(file)->read(offsets_.at(file) + inFile, part, to);
            offset += part;
            count -= part;
            to += part;
        }
    }

private:
    /// The last one that was asked for stays open.
    std::shared_ptr<Bytes> open(std::size_t file)
    {
        const std::lock_guard lock{mutex_};
        if (file != open_ || !bytes_) {
            bytes_ = openBytes(paths_.at(file), paths_.at(file));
            open_ = file;
        }
        return bytes_;
    }

    std::vector<std::string> paths_;
    std::vector<std::uint64_t> offsets_;
    std::uint64_t count_; // of each
    std::mutex mutex_;
    std::size_t open_ = 0;
    std::shared_ptr<Bytes> bytes_;
};

} // namespace

FileDescriptor::FileDescriptor(const std::string& path, const std::string& name)
    : descriptor_{::open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK)}
{
    struct ::stat status = {};
    if (descriptor_ < 0 || ::fstat(descriptor_, &status) != 0) {
        throw FileError{name + ": " + std::strerror(errno)};
    }
    if (!S_ISREG(status.st_mode)) {
        ::close(descriptor_);
        throw FileError{name + ": " + (S_ISDIR(status.st_mode) ? std::strerror(EISDIR) : "it is no regular file")};
    }
}

FileDescriptor::~FileDescriptor()
{
    ::close(descriptor_);
}

std::unique_ptr<Bytes> openBytes(const std::string& path, const std::string& name)
{
    return std::make_unique<FileBytes>(path, name);
}

ByteBlock::ByteBlock(std::size_t size) : size_{size}
{
    bytes_ = size == 0 ? nullptr : image::takeBlock(size);
}

std::unique_ptr<Bytes> openCompressedBytes(const std::string& path, const std::string& name, std::uint64_t offset,
                                           const std::string& method)
{
    return std::make_unique<CompressedBytes>(path, name, offset, method);
}

std::unique_ptr<Bytes> wrapBytes(std::vector<std::byte> bytes, const std::string& name)
{
    return std::make_unique<MemoryBytes>(std::move(bytes), name);
}

std::unique_ptr<Bytes> joinBytes(const std::vector<std::string>& paths, const std::vector<std::uint64_t>& offsets,
                                 std::uint64_t count)
{
    return std::make_unique<JoinedBytes>(paths, offsets, count);
}

std::uint64_t getFileSize(const std::string& path)
{
    std::error_code none;
    const auto size = std::filesystem::file_size(path, none);
    return none ? 0 : size;
}

std::string readHead(const std::string& path, const std::string& name, std::size_t count)
{
    const FileDescriptor file{path, name};
    std::string head(count, '\0');
    std::size_t got = 0;
    while (got < count) {
        const ::ssize_t more = ::pread(file.get(), head.data() + got, count - got, static_cast<::off_t>(got));
        if (more < 0) {
            throw FileError{name + ": " + std::strerror(errno)};
        }
        if (more == 0) {
            break;
        }
        got += static_cast<std::size_t>(more);
    }
    head.resize(got);
    return head;
}

std::string readText(const std::string& path, const std::string& name, std::size_t most)
{
    const std::uint64_t size = getFileSize(path);
    if (size > most) {
        throw FileError{name + ": its text has " + std::to_string(size) + " bytes, and at most " +
                        std::to_string(most) + " are read"};
    }
    return readHead(path, name, size);
}

bool decompress(const std::string& method, const std::byte* from, std::size_t count, std::byte* to, std::size_t size)
{
    if (method != "bzip2") {
        struct Free
        {
            void operator()(::libdeflate_decompressor* decoder) const { ::libdeflate_free_decompressor(decoder); }
        };
        static thread_local const std::unique_ptr<::libdeflate_decompressor, Free> decoder{
            ::libdeflate_alloc_decompressor()};
        const auto inflate = method == "gzip" ? &::libdeflate_gzip_decompress_ex : &::libdeflate_zlib_decompress_ex;
        std::size_t read = 0;
        std::size_t written = 0;
        const auto result = inflate(decoder.get(), from, count, to, size, &read, &written);
        if (result == LIBDEFLATE_SUCCESS && written == size && read == count) {
            return true;
        } // there may be several streams
    }
    try {
        io::filtering_istream stream;
        pushDecoder(stream, method);
        stream.push(io::array_source{reinterpret_cast<const char*>(from), count}, bufferSize);
        stream.read(reinterpret_cast<char*>(to), static_cast<std::streamsize>(size));
        return static_cast<std::size_t>(stream.gcount()) == size && stream.peek() == std::char_traits<char>::eof();
    } catch (const std::ios::failure&) {
        return false;
    }
}

} // namespace orlix::files
