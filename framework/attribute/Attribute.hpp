#pragma once

#include <framework/attribute/PlanIndexedColl.hpp>
#include <framework/core/Api.hpp>
#include <framework/core/ProcessingResult.hpp>
#include <framework/core/Ptr.hpp>
#include <framework/data/Archive.hpp>
#include <framework/data/BaseDynamicObject.hpp>
#include <framework/image/BaseImage.hpp>
#include <framework/image/Strip.hpp>

#include <concepts>
#include <functional>
#include <optional>
#include <utility>

namespace orlix::imaproc::attr
{

enum class eAttributeRole
{
    eAR_Input,         ///< In...: mandatory
    eAR_OptionalInput, ///< InOpt...: unset means the measure's own default
    eAR_InputOutput,   ///< InOut...: given by the caller, and written into
    eAR_Output         ///< Out..., OutPI...
};

/// A named value that a processor takes or gives. Its class is its name and is looked up by its type.
class ORLIX_API BaseAttribute
{
public:
    virtual ~BaseAttribute();

    virtual const char* getName() const = 0;
    virtual eAttributeRole getRole() const = 0;
    virtual bool isSet() const = 0;
    virtual void clear() = 0;
    /// Whether a set value is one that the attribute accepts.
    virtual core::ProcessingResult check() const { return {}; }
    /// The image behind an image or strip attribute, else null.
    virtual const image::BaseImage* getImage() const { return nullptr; }

    /// `other` is an attribute of the same class. Values are copied, images are shared.
    virtual void copy(const BaseAttribute& other) = 0;
    virtual core::ProcessingResult write(data::OutputArchive& archive) const = 0;
    virtual core::ProcessingResult read(data::InputArchive& archive) = 0;

    /// How an output that the caller left unset is made when a run begins.
    void setInitializer(std::function<void()> initializer) { initializer_ = std::move(initializer); }
    /// Makes an unset output; one that an earlier run made is made anew.
    void initialize();
    /// Drops what initialize() made, never what the caller set.
    void clearInitialized();

protected:
    BaseAttribute() = default;
    bool isInitialized() const { return initialized_; }
    void setInitialized(bool initialized) { initialized_ = initialized; }

private:
    std::function<void()> initializer_;
    bool initialized_ = false;
};

/// What every attribute has beside its value. Self has `static constexpr const char* name`.
template <class Self, class StorageType, eAttributeRole Role>
class Attribute : public BaseAttribute
{
public:
    using Storage = StorageType;
    static constexpr eAttributeRole role = Role;

    const char* getName() const final { return Self::name; }
    eAttributeRole getRole() const final { return Role; }

    const Storage& get() const { return value_; }
    /// Takes a value from the caller.
    void init(Storage value)
    {
        value_ = std::move(value);
        setInitialized(false);
    }
    /// Takes a value from an initializer.
    void assign(Storage value)
    {
        value_ = std::move(value);
        setInitialized(true);
    }
    void clear() final { init(Storage{}); }

protected:
    Storage value_{};
};

/// An attribute whose value is a shared record.
template <class Self, class ValueType, eAttributeRole Role>
class ObjectAttribute : public Attribute<Self, Ptr<ValueType>, Role>
{
public:
    using Value = std::remove_const_t<ValueType>;

    bool isSet() const final { return this->value_ != nullptr; }

    void copy(const BaseAttribute& other) final
    {
        const auto& from = dynamic_cast<const ObjectAttribute&>(other);
        this->init(from.isSet() ? boost::static_pointer_cast<Value>(from.get()->duplicateShared()) : nullptr);
        this->setInitialized(from.isInitialized());
    }
    core::ProcessingResult write(data::OutputArchive& archive) const final
    {
        return archive.write(Self::name, this->value_.get());
    }
    core::ProcessingResult read(data::InputArchive& archive) final
    {
        Ptr<Value> value;
        core::ProcessingResult result = archive.read(Self::name, value);
        if (result) {
            // Nobody but this attribute holds an output that was read: the next run makes its own.
            this->init(std::move(value));
            this->setInitialized(Role == eAttributeRole::eAR_Output);
        }
        return result;
    }
};

template <class Self, class Record>
class ObjectOutput : public ObjectAttribute<Self, Record, eAttributeRole::eAR_Output>
{
};

template <class Self, class Record>
class ObjectInput : public ObjectAttribute<Self, const Record, eAttributeRole::eAR_Input>
{
};

/// A record that the caller may leave out.
template <class Self, class Record>
class OptionalInput : public ObjectAttribute<Self, const Record, eAttributeRole::eAR_OptionalInput>
{
};

/// A record that the caller gives and the processor fills.
template <class Self, class Record>
class ObjectInputOutput : public ObjectAttribute<Self, Record, eAttributeRole::eAR_InputOutput>
{
};

/// A collection with one element for every plan that has one of its own.
template <class Self, class Collection>
class PlanIndexedOptionalInput : public ObjectAttribute<Self, const Collection, eAttributeRole::eAR_OptionalInput>
{
public:
    using Element = typename Collection::Element;
};

/// A collection with one element per plan of the input.
template <class Self, class Collection>
class PlanIndexedOutput : public ObjectAttribute<Self, Collection, eAttributeRole::eAR_Output>
{
public:
    using Element = typename Collection::Element;
};

/// A number or an enumerator.
template <class Self, class T, eAttributeRole Role = eAttributeRole::eAR_Input>
class ValueInput : public Attribute<Self, std::optional<T>, Role>
{
public:
    bool isSet() const final { return this->value_.has_value(); }

    void copy(const BaseAttribute& other) final { this->init(dynamic_cast<const Self&>(other).get()); }
    core::ProcessingResult write(data::OutputArchive& archive) const final
    {
        if (isSet()) {
            archive.write(Self::name, *this->value_);
        }
        return {};
    }
    core::ProcessingResult read(data::InputArchive& archive) final
    {
        this->clear();
        if (!archive.has(Self::name)) {
            return {};
        }
        std::conditional_t<std::is_floating_point_v<T>, double, T> value{};
        core::ProcessingResult result = archive.read(Self::name, value);
        if (result) {
            this->init(static_cast<T>(value));
        }
        return result;
    }
};

ORLIX_API core::ProcessingResult checkPixelType(const BaseAttribute& attribute, const image::BaseImage& image,
                                                const image::PixelTypes& accepted);

/// Whether an image attribute takes all plans of an image or one of them.
enum class eExtent
{
    eE_AllPlans,
    eE_OnePlan
};

ORLIX_API core::ProcessingResult checkOnePlan(const BaseAttribute& attribute, const image::BaseImage& image,
                                              image::ePlanKind kind);

/// An attribute whose value is an image. Kind tells what its plans are.
template <class Self, class Image, image::ePlanKind Kind, eAttributeRole Role>
class BaseImageAttribute : public Attribute<Self, Ptr<Image>, Role>
{
public:
    static constexpr image::ePlanKind kind = Kind;

    bool isSet() const final { return this->value_ != nullptr; }
    const image::BaseImage* getImage() const final { return this->value_.get(); }

    void copy(const BaseAttribute& other) final
    {
        const auto& from = dynamic_cast<const BaseImageAttribute&>(other);
        this->init(from.get());
        this->setInitialized(from.isInitialized());
    }
    core::ProcessingResult write(data::OutputArchive& archive) const final
    {
        return archive.write(Self::name, this->value_.get());
    }
    core::ProcessingResult read(data::InputArchive& archive) final
    {
        Ptr<image::BaseImage> image;
        core::ProcessingResult result = archive.read(Self::name, image);
        if (result) {
            this->init(std::move(image));
            this->setInitialized(Role == eAttributeRole::eAR_Output);
        }
        return result;
    }
};

/// An input image. Types tells which pixels it takes.
template <class Self, image::ePlanKind Kind, eExtent Extent, const image::PixelTypes& Types = image::numericTypes,
          eAttributeRole Role = eAttributeRole::eAR_Input>
class ImageInput : public BaseImageAttribute<Self, const image::BaseImage, Kind, Role>
{
public:
    core::ProcessingResult check() const final
    {
        core::ProcessingResult result = checkPixelType(*this, *this->value_, Types);
        return result && Extent == eExtent::eE_OnePlan ? checkOnePlan(*this, *this->value_, Kind) : result;
    }
};

/// An output image, whose 2d plans are written. Self has `static ImageGeometry geometryFor(const ImageGeometry&
/// input)`, the sizes that it must have.
template <class Self>
class ImageOutput
    : public BaseImageAttribute<Self, image::BaseImage, image::ePlanKind::ePK_Plan2d, eAttributeRole::eAR_Output>
{
public:
    using Value = image::BaseImage;

    core::ProcessingResult check() const final { return checkPixelType(*this, *this->value_, image::numericTypes); }
};

/// Whether the image is one plan and has the elements of the strip.
ORLIX_API core::ProcessingResult checkStrip(const BaseAttribute& attribute, const image::BaseImage& image,
                                            image::ePlanKind kind, const char* elementName, std::size_t nbElements,
                                            std::size_t first, std::size_t count);
ORLIX_API core::ProcessingResult writeStrip(data::OutputArchive& archive, const char* name,
                                            const image::BaseImage* image, std::size_t first, std::size_t count);
ORLIX_API core::ProcessingResult readStrip(data::InputArchive& archive, const char* name, Ptr<image::BaseImage>& image,
                                           std::size_t& first, std::size_t& count);

/// The strip that a level 2 processor hands down; it has no heap of its own.
template <class Self, class StripType, const image::PixelTypes& Types = image::numericTypes,
          eAttributeRole Role = eAttributeRole::eAR_Input>
class StripInput : public Attribute<Self, StripType, Role>
{
public:
    using Strip = StripType;

    bool isSet() const final { return this->value_.image != nullptr; }
    const image::BaseImage* getImage() const final { return this->value_.image.get(); }
    core::ProcessingResult check() const final
    {
        const StripType& strip = this->value_;
        core::ProcessingResult result = checkPixelType(*this, *strip.image, Types);
        return result ? checkStrip(*this, *strip.image, StripType::kind, StripType::elementName,
                                   StripType::getNbElements(*strip.image), strip.first, strip.count)
                      : result;
    }

    void copy(const BaseAttribute& other) final { this->init(dynamic_cast<const Self&>(other).get()); }
    core::ProcessingResult write(data::OutputArchive& archive) const final
    {
        const StripType& strip = this->value_;
        return writeStrip(archive, Self::name, strip.image.get(), strip.first, strip.count);
    }
    core::ProcessingResult read(data::InputArchive& archive) final
    {
        StripType strip;
        Ptr<image::BaseImage> image;
        core::ProcessingResult result = readStrip(archive, Self::name, image, strip.first, strip.count);
        if (result) {
            strip.image = std::move(image);
            this->init(std::move(strip));
        }
        return result;
    }
};

/// The strip that a level 3 processor writes into; it must be set.
template <class Self, class StripType>
class StripOutput : public StripInput<Self, StripType, image::numericTypes, eAttributeRole::eAR_InputOutput>
{
public:
    using Value = image::BaseImage;
};

/// The strip of a mask. Kernels read it as bytes, whatever its type, and are not chosen by it.
template <class Self, class StripType, eAttributeRole Role = eAttributeRole::eAR_Input>
class MaskStripInput : public StripInput<Self, StripType, image::maskTypes, Role>
{
public:
    static constexpr bool isMask = true;
};

/// Whether a record has a meaning for an image without pixels, and says so.
template <class Record>
inline constexpr bool isDefinedWithoutPixels = false;
template <class Record>
requires(Record::definedWithoutPixels) inline constexpr bool isDefinedWithoutPixels<Record> = true;

template <class A>
concept ImageAttribute = requires
{
    A::kind;
};

/// An output image, of the sizes that follow from those of the input.
template <class A>
concept ImageOutputAttribute = requires(const image::ImageGeometry& input)
{
    A::geometryFor(input);
};

template <class A>
concept StripAttribute = requires
{
    typename A::Strip;
};

template <class A>
concept MaskAttribute = requires
{
    A::isMask;
};

/// An optional input that has a value of its own where it is not set.
template <class A>
concept DefaultedAttribute = requires
{
    A::getDefault();
};

template <class A>
concept PlanIndexedAttribute = requires
{
    typename A::Element;
};

} // namespace orlix::imaproc::attr
