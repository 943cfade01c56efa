#pragma once

#include <framework/core/Ptr.hpp>
#include <framework/image/PixelSource.hpp>

#include <memory>

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

/// The bytes that what is loaded may take, of those that settings::setPixelMemory() allows; `otherwise` where it was
/// not called.
ORLIX_API std::size_t getLoadMemory(std::size_t otherwise);

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

/// At least so many bytes, in pages of their own, not set to anything. Their memory is used again, so that what comes
/// piece by piece needs no fresh pages for each.
ORLIX_API Ptr<std::byte> takeBlock(std::size_t bytes);

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
