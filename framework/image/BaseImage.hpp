#pragma once

#include <framework/core/Api.hpp>
#include <framework/core/Exception.hpp>
#include <framework/core/Ptr.hpp>
#include <framework/data/DynamicObject.hpp>
#include <framework/image/Geometry.hpp>
#include <framework/image/PixelSource.hpp>
#include <framework/image/PixelType.hpp>
#include <framework/image/SourceBuffer.hpp>

#include <cstddef>
#include <functional>
#include <memory>
#include <optional>
#include <utility>

namespace orlix::image
{

/// A geometry, buffer or plan that cannot be.
class ORLIX_API ImageException final : public core::BaseException
{
public:
    using BaseException::BaseException;
};

/// An image: pixels of one type on x, y, z, c and t, in a buffer of its own, in a caller's, or wherever a source has
/// them. A plan or a volume of an image is again an image; it looks at the same pixels and keeps them alive.
class ORLIX_API BaseImage final : public data::DynamicObject<BaseImage, data::BaseDynamicObject>
{
public:
    static constexpr const char* typeName = "orlix::image::BaseImage";

    /// An empty image, to be read from an archive.
    BaseImage() = default;

    /// An image with a buffer of its own, all zeros. A side may be 0. Throws ImageException if it cannot be addressed,
    /// std::bad_alloc if there is no memory.
    static Ptr<BaseImage> create(eImageBufferType type, const ImageGeometry& geometry);

    /// An image on the caller's buffer, whose first pixel is at `pixels`; `owner` keeps the buffer alive and may be
    /// null where the caller sees to it. Throws ImageException if the pixels would not be aligned to their type.
    static Ptr<BaseImage> wrap(void* pixels, eImageBufferType type, const ImageGeometry& geometry,
                               const ImageStrides& strides, Ptr<const void> owner);
    static Ptr<BaseImage> wrap(void* pixels, eImageBufferType type, const ImageGeometry& geometry,
                               Ptr<const void> owner);
    static Ptr<const BaseImage> wrap(const void* pixels, eImageBufferType type, const ImageGeometry& geometry,
                                     const ImageStrides& strides, Ptr<const void> owner);
    static Ptr<const BaseImage> wrap(const void* pixels, eImageBufferType type, const ImageGeometry& geometry,
                                     Ptr<const void> owner);

    /// The same with an owner that a std::shared_ptr holds; pixels that are const make an image that is.
    template <class Pixels, class Owner>
    static auto wrap(Pixels* pixels, eImageBufferType type, const ImageGeometry& geometry, const ImageStrides& strides,
                     std::shared_ptr<Owner> owner)
    {
        return wrap(asBytes(pixels), type, geometry, strides, asOwner(std::move(owner)));
    }
    template <class Pixels, class Owner>
    static auto wrap(Pixels* pixels, eImageBufferType type, const ImageGeometry& geometry, std::shared_ptr<Owner> owner)
    {
        return wrap(asBytes(pixels), type, geometry, asOwner(std::move(owner)));
    }

    /// An image whose pixels are fetched when a measure needs them, and dropped after. Throws ImageException if the
    /// image cannot be addressed.
    static Ptr<const BaseImage> fromSource(Ptr<PixelSource> source, eImageBufferType type,
                                           const ImageGeometry& geometry);
    /// The same where a function writes the pixels of a box; several threads call it at once.
    using Fetch = std::function<void(const Box& box, const PixelTarget& target)>;
    static Ptr<const BaseImage> fromSource(Fetch fetch, eImageBufferType type, const ImageGeometry& geometry);

    /// An image whose pixels lie in the memory of a GPU, where `owner` keeps them alive: only measures that run there
    /// read them. framework/gpu makes such images.
    static Ptr<BaseImage> wrapGpu(void* pixels, eImageBufferType type, const ImageGeometry& geometry,
                                  const ImageStrides& strides, Ptr<const void> owner);

    eImageBufferType getType() const { return type_; }
    const ImageGeometry& getGeometry() const { return geometry_; }
    const ImageStrides& getStrides() const { return strides_; }
    std::size_t getPixelSize() const { return image::getPixelSize(type_); }
    bool isGpuImage() const { return isGpuImage_; }
    /// Whether its pixels are fetched from somewhere: it has no rows to be looked at, but boxes to be loaded.
    bool hasSource() const { return source_ != nullptr; }
    /// How the source has its pixels; of other images, that any box is there.
    SourceLayout getLayout() const;

    /// A box of pixels in memory: where they lie or, of a source, gapless where they were fetched to. Throws what the
    /// source throws. `sweep`: the box that is loaded before others are; else the whole image.
    LoadedBox load(const Box& box, const std::optional<Box>& sweep = {}) const;
    /// Copies a box of pixels.
    void read(const Box& box, const PixelTarget& target, const std::optional<Box>& sweep = {}) const;
    /// All pixels in memory: the image itself, or a copy of what its source has.
    Ptr<const BaseImage> loadAll() const;

    /// The first pixel of a row; not of a source.
    std::byte* getRow(std::size_t y, std::size_t z = 0, std::size_t c = 0, std::size_t t = 0)
    {
        return pixels_ + offset(y, z, c, t);
    }
    const std::byte* getRow(std::size_t y, std::size_t z = 0, std::size_t c = 0, std::size_t t = 0) const
    {
        return pixels_ + offset(y, z, c, t);
    }

    /// The sub image of a plan, volume or sequence. The sub image of plan (0, 0, 0) of an empty image is empty; any
    /// other plan that the image does not have throws ImageException.
    Ptr<const BaseImage> getSubImage(const PlanIndex& plan, ePlanKind kind) const;
    Ptr<BaseImage> getSubImage(const PlanIndex& plan, ePlanKind kind);
    /// The planes of a volume as the times of a 2d sequence.
    Ptr<const BaseImage> getPlanesAsSequence() const;
    /// The pixels of a binary image as the numbers 0 and 1.
    Ptr<const BaseImage> getBinaryAsNumbers() const;

    /// Shares the other image's pixels.
    void copy(const BaseDynamicObject& other) override;
    /// Type, geometry and the pixels in base64. An image on a GPU fails.
    core::ProcessingResult write(data::OutputArchive& archive) const override;
    core::ProcessingResult read(data::InputArchive& archive) override;

private:
    static void* asBytes(void* pixels) { return pixels; }
    static const void* asBytes(const void* pixels) { return pixels; }
    static Ptr<const void> asOwner(std::shared_ptr<const void> owner)
    {
        const void* const pixels = owner.get();
        return Ptr<const void>{pixels, [kept = std::move(owner)](const void*) mutable { kept.reset(); }};
    }

    Box locate(Box box) const;
    std::ptrdiff_t offset(std::size_t y, std::size_t z, std::size_t c, std::size_t t) const
    {
        return static_cast<std::ptrdiff_t>(y) * strides_.y + static_cast<std::ptrdiff_t>(z) * strides_.z +
               static_cast<std::ptrdiff_t>(c) * strides_.c + static_cast<std::ptrdiff_t>(t) * strides_.t;
    }

    eImageBufferType type_ = eImageBufferType::eIBT_UInt8;
    bool isGpuImage_ = false;
    ImageGeometry geometry_;
    ImageStrides strides_;
    std::byte* pixels_ = nullptr;
    Ptr<const void> owner_;
    Ptr<SourceBuffer> source_;
    Position origin_;          ///< in the source's image
    bool swapsPlanes_ = false; ///< z is the source's t, and t its z
};

} // namespace orlix::image
