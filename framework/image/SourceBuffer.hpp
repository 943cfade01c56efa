#pragma once

#include <framework/core/Ptr.hpp>
#include <framework/image/PixelSource.hpp>

#include <array>
#include <condition_variable>
#include <exception>
#include <map>
#include <memory>
#include <mutex>
#include <optional>
#include <vector>

/// What images that are no buffers do with memory; for the framework itself.
namespace orlix::image
{

/// Pixels in memory, as long as `owner` lives or, where it is null, the image.
struct LoadedBox
{
    const std::byte* first = nullptr;
    ImageStrides strides{};
    Ptr<const void> owner{};
};

/// Room in memory for what a worker loads, of all its images together: waits until there is some. A worker asks for
/// room once, before it loads; one of them always gets it, however much it is.
class ORLIX_API LoadRoom
{
public:
    /// `planeBytes`: of the images that are loaded, the largest plane. No bytes never wait.
    LoadRoom(std::size_t bytes, std::size_t planeBytes);
    ~LoadRoom();
    LoadRoom(const LoadRoom&) = delete;
    LoadRoom& operator=(const LoadRoom&) = delete;

private:
    std::size_t bytes_;
};

/// Blocks of memory that are used again, so that what comes piece by piece needs no fresh pages for each.
class ORLIX_API BlockPool
{
public:
    /// At least so many bytes, in pages of their own, not set to anything.
    static Ptr<std::byte> take(const std::shared_ptr<BlockPool>& pool, std::size_t bytes);

private:
    struct Free
    {
        std::size_t size;
        void operator()(std::byte* bytes) const;
    };
    struct Block
    {
        std::unique_ptr<std::byte, Free> bytes;
        std::size_t size() const { return bytes.get_deleter().size; }
    };

    void give(Block block);

    std::mutex mutex_;
    std::vector<Block> blocks_;
    std::size_t size_ = 0; // of all of them
};

/// The pixels of a source on their way to those who measure them. What is decoded together is kept in a cell for those
/// who come next; who needs a cell helps to decode it. The next ones are read ahead, and the oldest ones go where
/// others need room.
class SourceBuffer
{
public:
    SourceBuffer(Ptr<PixelSource> source, std::size_t pixelSize, const ImageGeometry& size);
    ~SourceBuffer();
    SourceBuffer(const SourceBuffer&) = delete;
    SourceBuffer& operator=(const SourceBuffer&) = delete;

    const SourceLayout& getLayout() const;
    /// A box, gapless. All of the box `sweep` is loaded before others are, in the order of pixels: that tells what is
    /// read ahead, and how much of what is decoded together fits memory.
    LoadedBox load(const Box& box, const Box& sweep);
    /// The same to where the caller wants it.
    void read(const Box& box, const PixelTarget& target, const Box& sweep);

private:
    class Cells;
    std::shared_ptr<Cells> cells_;
};

} // namespace orlix::image
