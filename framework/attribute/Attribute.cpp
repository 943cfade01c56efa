#include <framework/attribute/Attribute.hpp>

#include <framework/attribute/AttributeMessages.hpp>
#include <framework/core/Message.hpp>

#include <log4cplus/logger.h>

namespace orlix::imaproc::attr
{

using core::ProcessingResult;
using image::BaseImage;

BaseAttribute::~BaseAttribute() = default;

void BaseAttribute::initialize(const BaseAttribute& input)
{
    clearInitialized();
    if (role_ == eAttributeRole::eAR_Output && !isSet()) {
        allocate(input);
        setInitialized(true);
    }
}

void BaseAttribute::clearInitialized()
{
    if (initialized_) {
        clear();
    }
}

namespace
{

[[noreturn]] void failToTake(const BaseAttribute& attribute, std::string_view what)
{
    core::raise<core::BaseException>(core::getLibraryLogger("Attribute"), ORLIX_HERE, eAttributeMessage::eAM_NotTaken,
                                     attribute.getName(), what);
}

} // namespace

void BaseAttribute::setParameter(std::string_view name, const data::Value&, const BaseAttribute&)
{
    failToTake(*this, name);
}

void BaseAttribute::setImage(const Ptr<const BaseImage>&)
{
    failToTake(*this, "an image to read");
}

void BaseAttribute::setOutputImage(const Ptr<BaseImage>&)
{
    failToTake(*this, "an image to write");
}

void addParametersOf(const data::BaseDataItem& record, const data::BaseDataItem* defaults,
                     std::vector<Parameter>& parameters)
{
    for (const data::FieldInfo& field : record.getFields()) {
        if (*field.option != 0) {
            parameters.push_back({field, std::holds_alternative<std::uint64_t>(record.getField(field.name)), {}});
            if (defaults != nullptr) {
                parameters.back().defaultValue = defaults->getField(field.name);
            }
        }
    }
}

void addParameter(const data::FieldInfo& info, std::optional<std::uint64_t> defaultValue,
                  std::vector<Parameter>& parameters)
{
    parameters.push_back({info, info.enumerators.empty(), {}});
    if (defaultValue) {
        parameters.back().defaultValue = *defaultValue < info.enumerators.size()
                                             ? data::Value{std::string{info.enumerators[*defaultValue]}}
                                             : data::Value{*defaultValue};
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

template <class Image>
ProcessingResult BaseImageAttribute<Image>::check() const
{
    ProcessingResult result = checkPixelType(*this, *this->value_, types_);
    return result && extent_ == eExtent::eE_OnePlan ? checkOnePlan(*this, *this->value_, kind_) : result;
}

template <class Image>
void BaseImageAttribute<Image>::copy(const BaseAttribute& other)
{
    const auto& from = dynamic_cast<const BaseImageAttribute&>(other);
    this->init(from.get());
    this->setInitialized(from.isInitialized());
}

template <class Image>
ProcessingResult BaseImageAttribute<Image>::write(data::OutputArchive& archive) const
{
    return archive.write(this->getName(), this->value_.get());
}

template <class Image>
ProcessingResult BaseImageAttribute<Image>::read(data::InputArchive& archive)
{
    Ptr<BaseImage> image;
    ProcessingResult result = archive.read(this->getName(), image);
    if (result) {
        this->init(std::move(image));
        this->setInitialized(this->getRole() == eAttributeRole::eAR_Output);
    }
    return result;
}

template <class Image>
void BaseImageAttribute<Image>::take(const Share& share, const BaseAttribute& of)
{
    const Ptr<Image>& image = static_cast<const StoredAttribute<Ptr<Image>>&>(of).get();
    // An image of one plan is its own sub image; an optional one may not be there.
    const bool isWhole = image == nullptr || (share.plan == image::PlanIndex{} &&
                                              getSubGeometry(image->getGeometry(), kind_) == image->getGeometry());
    this->init(isWhole ? image : image->getSubImage(share.plan, kind_));
}

template <class Image>
void BaseImageAttribute<Image>::setImage(const Ptr<const BaseImage>& image)
{
    if constexpr (std::is_const_v<Image>) {
        this->init(image);
    } else {
        BaseAttribute::setImage(image);
    }
}

template <class Image>
void BaseImageAttribute<Image>::setOutputImage(const Ptr<BaseImage>& image)
{
    if constexpr (std::is_const_v<Image>) {
        BaseAttribute::setOutputImage(image);
    } else {
        this->init(image);
    }
}

template <class Image>
void BaseImageAttribute<Image>::allocate(const BaseAttribute& input)
{
    const BaseImage& image = *input.getImage();
    this->init(BaseImage::create(image.getType(), this->getOutputGeometry(image.getGeometry())));
}

template class BaseImageAttribute<const BaseImage>;
template class BaseImageAttribute<BaseImage>;

template <class StripType>
ProcessingResult BaseStripAttribute<StripType>::check() const
{
    const StripType& strip = this->value_;
    ProcessingResult result = checkPixelType(*this, *strip.image, types_);
    if (result) {
        result = checkOnePlan(*this, *strip.image, StripType::kind);
    }
    const std::size_t nbElements = StripType::getNbElements(*strip.image);
    if (result && (strip.first > nbElements || strip.count > nbElements - strip.first)) {
        return ProcessingResult::failure(core::formatMessage(eAttributeMessage::eAM_StripOutside, this->getName(),
                                                             strip.first, strip.count, nbElements,
                                                             StripType::elementName));
    }
    return result;
}

template <class StripType>
void BaseStripAttribute<StripType>::copy(const BaseAttribute& other)
{
    this->init(dynamic_cast<const BaseStripAttribute&>(other).get());
}

template <class StripType>
ProcessingResult BaseStripAttribute<StripType>::write(data::OutputArchive& archive) const
{
    const auto section = archive.openSection(this->getName());
    archive.write("first", this->value_.first);
    archive.write("count", this->value_.count);
    return archive.write("image", this->value_.image.get());
}

template <class StripType>
ProcessingResult BaseStripAttribute<StripType>::read(data::InputArchive& archive)
{
    const auto section = archive.openSection(this->getName());
    if (!section) {
        return ProcessingResult::failure(core::formatMessage(eAttributeMessage::eAM_NoStrip, this->getName()));
    }
    StripType strip;
    Ptr<BaseImage> image;
    ProcessingResult result = archive.read("first", strip.first);
    if (result) {
        result = archive.read("count", strip.count);
    }
    if (result) {
        result = archive.read("image", image);
    }
    if (result) {
        strip.image = std::move(image);
        this->init(std::move(strip));
    }
    return result;
}

template <class StripType>
void BaseStripAttribute<StripType>::take(const Share& share, const BaseAttribute& of)
{
    using Image = decltype(StripType{}.image);
    this->init({static_cast<const StoredAttribute<Image>&>(of).get(), share.first, share.count});
}

template class BaseStripAttribute<image::XStrip2d>;
template class BaseStripAttribute<image::YStrip2d>;
template class BaseStripAttribute<image::ZStrip3d>;
template class BaseStripAttribute<image::SeqYStrip2d>;
template class BaseStripAttribute<image::OutputYStrip2d>;

} // namespace orlix::imaproc::attr
