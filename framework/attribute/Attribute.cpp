#include <framework/attribute/Attribute.hpp>

#include <framework/attribute/AttributeMessages.hpp>

namespace orlix::imaproc::attr
{

using core::ProcessingResult;
using image::BaseImage;

BaseAttribute::~BaseAttribute() = default;

void BaseAttribute::initialize()
{
    clearInitialized();
    if (!isSet() && initializer_) {
        initializer_();
    }
}

void BaseAttribute::clearInitialized()
{
    if (initialized_) {
        clear();
    }
}

ProcessingResult checkPixelType(const BaseAttribute& attribute, const BaseImage& image,
                                const image::PixelTypes& accepted)
{
    if (accepted.contains(image.getType())) {
        return {};
    }
    if (accepted == image::binaryType) {
        return ProcessingResult::failure(core::formatMessage(eAttributeMessage::eAM_NotBinary, attribute.getName(),
                                                             image::getName(image.getType())));
    }
    std::string names;
    for (std::size_t i = 0; i < image::nbImageBufferTypes; ++i) {
        const auto type = static_cast<image::eImageBufferType>(i);
        if (accepted.contains(type)) {
            names += (names.empty() ? "" : ", ") + std::string{image::getName(type)};
        }
    }
    return ProcessingResult::failure(core::formatMessage(eAttributeMessage::eAM_WrongPixelType, attribute.getName(),
                                                         image::getName(image.getType()), names));
}

ProcessingResult checkOnePlan(const BaseAttribute& attribute, const BaseImage& image, image::ePlanKind kind)
{
    const auto& size = image.getGeometry();
    if (getSubGeometry(size, kind) == size) {
        return {};
    }
    const char* const needed = kind == image::ePlanKind::ePK_Plan2d     ? "one 2d plan"
                               : kind == image::ePlanKind::ePK_Volume3d ? "one volume"
                                                                        : "one 2d sequence";
    return ProcessingResult::failure(
        core::formatMessage(eAttributeMessage::eAM_NotOnePlan, attribute.getName(), toString(size), needed));
}

ProcessingResult checkStrip(const BaseAttribute& attribute, const BaseImage& image, image::ePlanKind kind,
                            const char* elementName, std::size_t nbElements, std::size_t first, std::size_t count)
{
    ProcessingResult result = checkOnePlan(attribute, image, kind);
    if (!result) {
        return result;
    }
    if (first > nbElements || count > nbElements - first) {
        return ProcessingResult::failure(core::formatMessage(eAttributeMessage::eAM_StripOutside, attribute.getName(),
                                                             first, count, nbElements, elementName));
    }
    return {};
}

ProcessingResult writeStrip(data::OutputArchive& archive, const char* name, const BaseImage* image, std::size_t first,
                            std::size_t count)
{
    const auto section = archive.openSection(name);
    archive.write("first", first);
    archive.write("count", count);
    return archive.write("image", image);
}

ProcessingResult readStrip(data::InputArchive& archive, const char* name, Ptr<BaseImage>& image, std::size_t& first,
                           std::size_t& count)
{
    const auto section = archive.openSection(name);
    if (!section) {
        return ProcessingResult::failure(core::formatMessage(eAttributeMessage::eAM_NoStrip, name));
    }
    ProcessingResult result = archive.read("first", first);
    if (result) {
        result = archive.read("count", count);
    }
    return result ? archive.read("image", image) : result;
}

} // namespace orlix::imaproc::attr
