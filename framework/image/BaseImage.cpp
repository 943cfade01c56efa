#include <framework/image/BaseImage.hpp>

#include <framework/core/Message.hpp>
#include <framework/core/Settings.hpp>
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

namespace
{

class FunctionSource final : public PixelSource
{
public:
    explicit FunctionSource(BaseImage::Fetch fetch) : fetch_{std::move(fetch)} {}
    void fetch(const Box& box, const PixelTarget& target) override { fetch_(box, target); }

private:
    BaseImage::Fetch fetch_;
};

} // namespace

Ptr<const BaseImage> BaseImage::fromSource(Ptr<PixelSource> source, eImageBufferType type,
                                           const ImageGeometry& geometry)
{
    checkedBufferSize(type, geometry);
    if (source == nullptr) {
        raise(ORLIX_HERE, eImageMessage::eIM_NullSource, toString(geometry));
    }
    auto image = makePtr<BaseImage>();
    image->type_ = type;
    image->geometry_ = geometry;
    image->strides_ = ImageStrides::contiguous(geometry, image::getPixelSize(type));
    image->source_ = makePtr<SourceBuffer>(std::move(source), image::getPixelSize(type), geometry);
    return image;
}

Ptr<const BaseImage> BaseImage::fromSource(Fetch fetch, eImageBufferType type, const ImageGeometry& geometry)
{
    return fromSource(fetch ? makePtr<FunctionSource>(std::move(fetch)) : Ptr<PixelSource>{}, type, geometry);
}

SourceLayout BaseImage::getLayout() const
{
    SourceLayout layout{.readsAhead = true};
    if (source_) {
        layout = source_->getLayout();
        if (swapsPlanes_) {
            std::swap(layout.block.z, layout.block.t);
            std::swap(layout.phase.z, layout.phase.t);
        }
    }
    return layout;
}

LoadedBox BaseImage::load(const Box& box, const std::optional<Box>& sweep) const
{
    if (!source_) {
        const Position& at = box.begin;
        return {getRow(at.y, at.z, at.c, at.t) + at.x * getPixelSize(), strides_, {}};
    }
    const Box around = locate(sweep.value_or(Box{{}, geometry_}));
    if (swapsPlanes_) {
        LoadedBox loaded = source_->load(locate(box), around);
        std::swap(loaded.strides.z, loaded.strides.t);
        return loaded;
    }
    return source_->load(locate(box), around);
}

void BaseImage::read(const Box& box, const PixelTarget& target, const std::optional<Box>& sweep) const
{
    if (source_) {
        PixelTarget to = target;
        if (swapsPlanes_) {
            std::swap(to.strides.z, to.strides.t);
        }
        source_->read(locate(box), to, locate(sweep.value_or(Box{{}, geometry_})));
        return;
    }
    const Position& at = box.begin;
    const std::size_t offset = at.x * getPixelSize();
    const PlanRange plans{box.size, ePlanKind::ePK_Plan2d};
    for (std::size_t i = 0; i < plans.size(); ++i) {
        const PlanIndex& plan = plans[i];
        for (std::size_t y = 0; y < box.size.y; ++y) {
            std::memcpy(target.row(y, plan.z, plan.c, plan.t),
                        getRow(at.y + y, at.z + plan.z, at.c + plan.c, at.t + plan.t) + offset,
                        box.size.x * getPixelSize());
        }
    }
}

Ptr<const BaseImage> BaseImage::loadAll() const
{
    if (!source_) {
        return makePtr<BaseImage>(*this);
    }
    const std::size_t memory = core::settings::getMachineMemory();
    if (const std::size_t bytes = checkedBufferSize(type_, geometry_); bytes > memory) {
        raise(ORLIX_HERE, eImageMessage::eIM_NoMemory, toString(geometry_), bytes >> 20, memory >> 20);
    }
    auto image = create(type_, geometry_);
    read({{}, geometry_}, {image->getRow(0), image->getStrides()});
    return image;
}

Box BaseImage::locate(Box box) const
{
    if (swapsPlanes_) {
        std::swap(box.begin.z, box.begin.t);
        std::swap(box.size.z, box.size.t);
    }
    box.begin = {origin_.x + box.begin.x, origin_.y + box.begin.y, origin_.z + box.begin.z, origin_.c + box.begin.c,
                 origin_.t + box.begin.t};
    return box;
}

Ptr<BaseImage> BaseImage::getSubImage(const PlanIndex& plan, ePlanKind kind)
{
    const bool inside = plan.z < (kind == ePlanKind::ePK_Volume3d ? 1 : geometry_.z) && plan.c < geometry_.c &&
                        plan.t < (kind == ePlanKind::ePK_Sequence2d ? 1 : geometry_.t);
    if (!inside && !(geometry_.empty() && plan == PlanIndex{})) {
        raise(ORLIX_HERE, eImageMessage::eIM_NoSuchPlan, toString(plan), toString(geometry_));
    }
    auto image = makePtr<BaseImage>(*this);
    if (source_) {
        image->origin_ = locate({{0, 0, plan.z, plan.c, plan.t}, {}}).begin;
    } else {
        image->pixels_ = inside ? pixels_ + offset(0, plan.z, plan.c, plan.t) : pixels_;
    }
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
    image->swapsPlanes_ = !swapsPlanes_;
    return image;
}

Ptr<const BaseImage> BaseImage::getBinaryAsNumbers() const
{
    auto image = makePtr<BaseImage>(*this);
    image->type_ = type_ == eImageBufferType::eIBT_Binary ? eImageBufferType::eIBT_UInt8 : type_;
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
            const PlanIndex& plan = plans[i];
            const LoadedBox loaded =
                load({{0, 0, plan.z, plan.c, plan.t}, getSubGeometry(geometry_, ePlanKind::ePK_Plan2d)});
            for (std::size_t y = 0; y < geometry_.y; ++y) {
                const std::byte* const row = loaded.first + static_cast<std::ptrdiff_t>(y) * loaded.strides.y;
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
