#pragma once

#include <framework/image/SourceBuffer.hpp>

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

namespace orlix::files
{

/// A closed file descriptor when it is gone.
class FileDescriptor
{
public:
    /// Throws FileError, in which the file is called `name`.
    FileDescriptor(const std::string& path, const std::string& name);
    ~FileDescriptor();
    FileDescriptor(const FileDescriptor&) = delete;
    FileDescriptor& operator=(const FileDescriptor&) = delete;

    int get() const { return descriptor_; }

private:
    int descriptor_;
};

/// Bytes that are not set to anything, in memory that is used again.
class ByteBlock
{
public:
    explicit ByteBlock(std::size_t size = 0);

    std::byte* data() const { return bytes_.get(); }
    std::size_t size() const { return size_; }
    void shorten(std::size_t size) { size_ = size; }

private:
    Ptr<std::byte> bytes_;
    std::size_t size_;
};

/// Bytes that are read from anywhere, on any thread: a file, or what a compressed file holds.
class Bytes
{
public:
    virtual ~Bytes() = default;
    /// Throws FileError where they end before.
    virtual void read(std::uint64_t offset, std::size_t count, std::byte* to) = 0;
    /// Whether reading backwards starts again.
    virtual bool isSequential() const { return false; }
};

/// The bytes of a file; errors call it `name`.
std::unique_ptr<Bytes> openBytes(const std::string& path, const std::string& name);

/// What is compressed in a file from `offset` on, by "gzip", "zlib" or "bzip2".
std::unique_ptr<Bytes> openCompressedBytes(const std::string& path, const std::string& name, std::uint64_t offset,
                                           const std::string& method);

/// The bytes of several files, one behind the other; each gives `count` bytes from its offset on.
std::unique_ptr<Bytes> joinBytes(const std::vector<std::string>& paths, const std::vector<std::uint64_t>& offsets,
                                 std::uint64_t count);

/// Bytes in memory.
std::unique_ptr<Bytes> wrapBytes(std::vector<std::byte> bytes, const std::string& name);

std::uint64_t getFileSize(const std::string& path);
/// The first bytes of a file, as many as there are up to `count`.
std::string readHead(const std::string& path, const std::string& name, std::size_t count);
/// A text file of at most `most` bytes, whole.
std::string readText(const std::string& path, const std::string& name, std::size_t most = std::size_t{64} << 20);

/// Decompresses bytes by "gzip", "zlib" or "bzip2" into exactly `size`; false if they are damaged or of another size.
bool decompress(const std::string& method, const std::byte* from, std::size_t count, std::byte* to, std::size_t size);

} // namespace orlix::files
