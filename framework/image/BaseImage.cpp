#include <framework/image/BaseImage.hpp>

#include <framework/core/Message.hpp>
#include <framework/data/Archive.hpp>
#include <framework/data/DynamicClassRegistration.hpp>
#include <framework/image/BufferSize.hpp>
#include <framework/image/ImageMessages.hpp>

#include <log4cplus/logger.h>

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <limits>
#include <new>
#include <optional>

namespace orlix::image
{

using core::ProcessingResult;

namespace
{

constexpr std::size_t bufferAlignment = 64; // a cache line, and the widest vector

template <class... Arguments>
[[noreturn]] void raise(const core::SourceLocation& where, eImageMessage message, const Arguments&... arguments)
{
    core::raise<ImageException>(core::getLibraryLogger("Image"), where, message, arguments...);
}

/// The bytes of a gapless buffer, or nothing if it could not be addressed.
std::optional<std::size_t> bufferSize(eImageBufferType type, const ImageGeometry& geometry)
{
    constexpr std::size_t largestBuffer = std::size_t{1} << 62;
    // The empty sides count as 1 here, so that strides, too, stay small.
    std::size_t bytes = getPixelSize(type);
    for (const std::size_t side : {geometry.x, geometry.y, geometry.z, geometry.c, geometry.t}) {
        if (side > std::numeric_limits<std::uint32_t>::max() ||
            __builtin_mul_overflow(bytes, std::max<std::size_t>(1, side), &bytes) || bytes > largestBuffer) {
            return std::nullopt;
        }
    }
    return geometry.empty() ? 0 : bytes;
}

void checkAlignment(const void* pixels, eImageBufferType type, const ImageGeometry& geometry,
                    const ImageStrides& strides)
{
    const std::size_t pixelSize = getPixelSize(type);
    if (reinterpret_cast<std::uintptr_t>(pixels) % pixelSize != 0) {
        raise(ORLIX_HERE, eImageMessage::eIM_UnalignedPixels, pixelSize, getName(type));
    }
    struct Axis
    {
        const char* name;
        std::size_t size;
        std::ptrdiff_t stride;
    };
    for (const Axis& axis : {Axis{"y", geometry.y, strides.y}, Axis{"z", geometry.z, strides.z},
                             Axis{"c", geometry.c, strides.c}, Axis{"t", geometry.t, strides.t}}) {
        if (axis.size > 1 && axis.stride % static_cast<std::ptrdiff_t>(pixelSize) != 0) {
            raise(ORLIX_HERE, eImageMessage::eIM_UnalignedStride, axis.name, axis.stride, pixelSize, getName(type));
        }
    }
}

} // namespace

std::size_t checkedBufferSize(eImageBufferType type, const ImageGeometry& geometry)
{
    const auto bytes = bufferSize(type, geometry);
    if (!bytes) {
        raise(ORLIX_HERE, eImageMessage::eIM_TooLarge, toString(geometry));
    }
    return *bytes;
}

Ptr<BaseImage> BaseImage::create(eImageBufferType type, const ImageGeometry& geometry)
{
    const std::size_t bytes = checkedBufferSize(type, geometry);
    auto image = makePtr<BaseImage>();
    image->type_ = type;
    image->geometry_ = geometry;
    image->strides_ = ImageStrides::contiguous(geometry, image::getPixelSize(type));
    // calloc has large zeroed buffers at no cost, but does not align them.
    void* const buffer = std::calloc(bytes + bufferAlignment, 1);
    if (buffer == nullptr) {
        throw std::bad_alloc{};
    }
    image->owner_.reset(buffer, [](void* p) { std::free(p); });
    const auto address = reinterpret_cast<std::uintptr_t>(buffer);
    image->pixels_ = static_cast<std::byte*>(buffer) + (bufferAlignment - address % bufferAlignment);
    return image;
}

Ptr<BaseImage> BaseImage::wrap(void* pixels, eImageBufferType type, const ImageGeometry& geometry,
                               const ImageStrides& strides, Ptr<const void> owner)
{
    checkedBufferSize(type, geometry);
    if (pixels == nullptr && !geometry.empty()) {
        raise(ORLIX_HERE, eImageMessage::eIM_NullPixels, toString(geometry));
    }
    checkAlignment(pixels, type, geometry, strides);
    auto image = makePtr<BaseImage>();
    image->type_ = type;
    image->geometry_ = geometry;
    image->strides_ = strides;
    image->pixels_ = static_cast<std::byte*>(pixels);
    image->owner_ = std::move(owner);
    return image;
}

Ptr<BaseImage> BaseImage::wrap(void* pixels, eImageBufferType type, const ImageGeometry& geometry,
                               Ptr<const void> owner)
{
    checkedBufferSize(type, geometry); // before the strides, which could not be told otherwise
    return wrap(pixels, type, geometry, ImageStrides::contiguous(geometry, image::getPixelSize(type)),
                std::move(owner));
}

Ptr<BaseImage> BaseImage::wrapGpu(void* pixels, eImageBufferType type, const ImageGeometry& geometry,
                                  const ImageStrides& strides, Ptr<const void> owner)
{
    auto image = wrap(pixels, type, geometry, strides, std::move(owner));
    image->isGpuImage_ = true;
    return image;
}

// The image is handed out as const, so nothing writes to the caller's pixels.
Ptr<const BaseImage> BaseImage::wrap(const void* pixels, eImageBufferType type, const ImageGeometry& geometry,
                                     const ImageStrides& strides, Ptr<const void> owner)
{
    return wrap(const_cast<void*>(pixels), type, geometry, strides, std::move(owner));
}

Ptr<const BaseImage> BaseImage::wrap(const void* pixels, eImageBufferType type, const ImageGeometry& geometry,
                                     Ptr<const void> owner)
{
    return wrap(const_cast<void*>(pixels), type, geometry, std::move(owner));
}

Ptr<BaseImage> BaseImage::getSubImage(const PlanIndex& plan, ePlanKind kind)
{
    const bool inside = plan.z < (kind == ePlanKind::ePK_Volume3d ? 1 : geometry_.z) && plan.c < geometry_.c &&
                        plan.t < (kind == ePlanKind::ePK_Sequence2d ? 1 : geometry_.t);
    if (!inside && !(geometry_.empty() && plan == PlanIndex{})) {
        raise(ORLIX_HERE, eImageMessage::eIM_NoSuchPlan, toString(plan), toString(geometry_));
    }
    auto image = makePtr<BaseImage>(*this);
    image->pixels_ = inside ? pixels_ + offset(0, plan.z, plan.c, plan.t) : pixels_;
    image->geometry_ = getSubGeometry(geometry_, kind);
    return image;
}

// What is handed out is const again.
Ptr<const BaseImage> BaseImage::getSubImage(const PlanIndex& plan, ePlanKind kind) const
{
    return const_cast<BaseImage*>(this)->getSubImage(plan, kind);
}

Ptr<const BaseImage> BaseImage::getPlanesAsSequence() const
{
    auto image = makePtr<BaseImage>(*this);
    std::swap(image->geometry_.z, image->geometry_.t);
    std::swap(image->strides_.z, image->strides_.t);
    return image;
}

void BaseImage::copy(const BaseDynamicObject& other)
{
    core::guarded(ORLIX_HERE, [&] { *this = dynamic_cast<const BaseImage&>(other); });
}

ProcessingResult BaseImage::write(data::OutputArchive& archive) const
{
    if (isGpuImage_) {
        return ProcessingResult::failure(core::formatMessage(eImageMessage::eIM_GpuPixels));
    }
    archive.write("type", std::string{getName(type_)});
    archive.write("x", geometry_.x);
    archive.write("y", geometry_.y);
    archive.write("z", geometry_.z);
    archive.write("c", geometry_.c);
    archive.write("t", geometry_.t);
    std::vector<std::byte> pixels;
    if (!geometry_.empty()) {
        const std::size_t rowBytes = geometry_.x * getPixelSize();
        pixels.reserve(geometry_.nbPixels() * getPixelSize());
        const PlanRange plans{geometry_, ePlanKind::ePK_Plan2d};
        for (std::size_t i = 0; i < plans.size(); ++i) {
            for (std::size_t y = 0; y < geometry_.y; ++y) {
                const std::byte* const row = getRow(y, plans[i].z, plans[i].c, plans[i].t);
                pixels.insert(pixels.end(), row, row + rowBytes);
            }
        }
    }
    archive.write("pixels", pixels);
    return {};
}

ProcessingResult BaseImage::read(data::InputArchive& archive)
{
    std::string pixelType;
    ImageGeometry geometry;
    std::vector<std::byte> pixels;
    ProcessingResult result = archive.read("type", pixelType);
    for (auto [key, side] : {std::pair{"x", &geometry.x}, std::pair{"y", &geometry.y}, std::pair{"z", &geometry.z},
                             std::pair{"c", &geometry.c}, std::pair{"t", &geometry.t}}) {
        if (result) {
            result = archive.read(key, *side);
        }
    }
    if (result) {
        result = archive.read("pixels", pixels);
    }
    if (!result) {
        return result;
    }
    const auto type = findImageBufferType(pixelType);
    if (!type) {
        return ProcessingResult::failure(core::formatMessage(eImageMessage::eIM_UnknownType, pixelType));
    }
    const auto bytes = bufferSize(*type, geometry);
    if (!bytes) {
        return ProcessingResult::failure(core::formatMessage(eImageMessage::eIM_TooLarge, toString(geometry)));
    }
    if (pixels.size() != *bytes) {
        return ProcessingResult::failure(core::formatMessage(eImageMessage::eIM_WrongPixels, pixels.size(), *bytes));
    }
    *this = *create(*type, geometry);
    if (!pixels.empty()) {
        std::memcpy(pixels_, pixels.data(), pixels.size());
    }
    return {};
}

namespace
{
const data::DynamicClassRegistration<BaseImage> baseImageClass{BaseImage::typeName};
}

} // namespace orlix::image
