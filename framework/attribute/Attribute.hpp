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

/// What one of the children that share a processor's work gets of its values: a plan of its images and collections, or
/// a strip of so many elements (rows, columns or planes) of its images, which are one plan.
struct Share
{
    image::PlanIndex plan{};
    std::size_t first = 0;
    std::size_t count = 0;
};

/// A named value that a processor takes or gives. Its class is its name and is looked up by its type.
class ORLIX_API BaseAttribute
{
public:
    virtual ~BaseAttribute();
    BaseAttribute(const BaseAttribute&) = delete;
    BaseAttribute& operator=(const BaseAttribute&) = delete;

    const char* getName() const { return name_; }
    eAttributeRole getRole() const { return role_; }
    virtual bool isSet() const = 0;
    virtual void clear() = 0;
    /// Whether a set value is one that the attribute accepts.
    virtual core::ProcessingResult check() const { return {}; }

    /// The image behind an image or strip attribute, else null; and what its plans are.
    virtual const image::BaseImage* getImage() const { return nullptr; }
    virtual image::ePlanKind getPlanKind() const { return image::ePlanKind::ePK_Plan2d; }
    /// The box of a strip that is set, and whether it is that of a mask, by whose type no kernel is chosen.
    virtual std::optional<image::PixelBox> getStripBox() const { return std::nullopt; }
    virtual bool isMask() const { return false; }
    /// The sizes of an output image for an input of these.
    virtual image::ImageGeometry getOutputGeometry(const image::ImageGeometry& input) const { return input; }

    /// The record or collection behind the attribute, else null.
    virtual Ptr<data::BaseDataItem> getRecord() const { return nullptr; }
    /// Takes a record of the attribute's own class.
    virtual void setRecord(Ptr<data::BaseDataItem>) {}
    /// An empty record, or collection.
    virtual Ptr<data::BaseDataItem> createRecord() const { return nullptr; }
    /// The element of a collection; null where there is none.
    virtual Ptr<data::BaseDataItem> getElement(const image::PlanIndex&) const { return nullptr; }
    /// Whether the value has a meaning for an image without pixels.
    virtual bool isDefinedWithoutPixels() const { return false; }

    /// `other` stores the same kind of value. Values are copied, images are shared.
    virtual void copy(const BaseAttribute& other) = 0;
    virtual core::ProcessingResult write(data::OutputArchive& archive) const = 0;
    virtual core::ProcessingResult read(data::InputArchive& archive) = 0;

    /// Takes its share of the attribute `of` a parent, of which takesFrom tells that it can be shared.
    virtual void take(const Share& share, const BaseAttribute& of) = 0;

    /// Makes an unset output when a run begins: an empty record, a collection of one for every plan of the input, or an
    /// image of the input's type. One that an earlier run made is made anew.
    void initialize(const BaseAttribute& input);
    /// Drops what initialize() made, never what the caller set.
    void clearInitialized();

protected:
    BaseAttribute(const char* name, eAttributeRole role) : name_{name}, role_{role} {}
    bool isInitialized() const { return initialized_; }
    void setInitialized(bool initialized) { initialized_ = initialized; }

private:
    virtual void allocate(const BaseAttribute&) {}

    const char* name_;
    eAttributeRole role_;
    bool initialized_ = false;
};

/// What every attribute has whose value is stored so.
template <class StorageType>
class StoredAttribute : public BaseAttribute
{
public:
    using Storage = StorageType;

    const Storage& get() const { return value_; }
    /// The value; that of an unset optional input may be one of the attribute's own.
    virtual Storage getOrDefault() const { return value_; }
    /// Takes a value from the caller.
    void init(Storage value)
    {
        value_ = std::move(value);
        setInitialized(false);
    }
    void clear() final { init(Storage{}); }

protected:
    using BaseAttribute::BaseAttribute;

    Storage value_{};
};

/// An attribute whose value is a shared record, or a collection of them. An input's Record is const.
template <class Record>
class BaseRecordAttribute : public StoredAttribute<Ptr<Record>>
{
public:
    using Value = std::remove_const_t<Record>;

    bool isSet() const final { return this->value_ != nullptr; }
    bool isDefinedWithoutPixels() const final
    {
        if constexpr (isCollection) {
            return requires
            {
                Value::Element::definedWithoutPixels;
            };
        } else {
            return requires
            {
                Value::definedWithoutPixels;
            };
        }
    }

    Ptr<data::BaseDataItem> getRecord() const final { return boost::const_pointer_cast<Value>(this->value_); }
    void setRecord(Ptr<data::BaseDataItem> record) final { this->init(boost::static_pointer_cast<Value>(record)); }
    Ptr<data::BaseDataItem> createRecord() const final { return data::makeRecord<Value>(); }
    Ptr<data::BaseDataItem> getElement([[maybe_unused]] const image::PlanIndex& plan) const final
    {
        if constexpr (isCollection) {
            return this->value_ ? this->value_->getStorage(plan) : nullptr;
        } else {
            return nullptr;
        }
    }

    void copy(const BaseAttribute& other) final
    {
        const auto& from = dynamic_cast<const BaseRecordAttribute&>(other);
        this->init(from.isSet() ? boost::static_pointer_cast<Value>(from.get()->duplicateShared()) : nullptr);
        this->setInitialized(from.isInitialized());
    }
    core::ProcessingResult write(data::OutputArchive& archive) const final
    {
        return archive.write(this->getName(), this->value_.get());
    }
    core::ProcessingResult read(data::InputArchive& archive) final
    {
        Ptr<Value> value;
        core::ProcessingResult result = archive.read(this->getName(), value);
        if (result) {
            // Nobody but this attribute holds an output that was read: the next run makes its own.
            this->init(std::move(value));
            this->setInitialized(this->getRole() == eAttributeRole::eAR_Output);
        }
        return result;
    }
    void take(const Share& share, const BaseAttribute& of) final
    {
        const auto* const same = dynamic_cast<const StoredAttribute<Ptr<Record>>*>(&of);
        this->init(same != nullptr ? same->getOrDefault()
                                   : boost::static_pointer_cast<Record>(of.getElement(share.plan)));
    }

protected:
    using StoredAttribute<Ptr<Record>>::StoredAttribute;

private:
    static constexpr bool isCollection = requires { typename Value::Element; };

    void allocate([[maybe_unused]] const BaseAttribute& input) final
    {
        auto record = data::makeRecord<Value>();
        if constexpr (isCollection) {
            const image::PlanRange plans{input.getImage()->getGeometry(), input.getPlanKind()};
            record->reserve(plans.size());
            for (std::size_t i = 0; i < plans.size(); ++i) {
                record->insert(plans[i], data::makeRecord<typename Value::Element>());
            }
        }
        this->init(std::move(record));
    }
};

template <class Self, class Record, eAttributeRole Role>
class RecordAttribute : public BaseRecordAttribute<Record>
{
public:
    static constexpr eAttributeRole role = Role;

    Ptr<Record> getOrDefault() const final
    {
        if constexpr (requires { Self::getDefault(); }) {
            return this->isSet() ? this->value_ : Self::getDefault();
        } else {
            return this->value_;
        }
    }

protected:
    RecordAttribute() : BaseRecordAttribute<Record>{Self::name, Role} {}
};

template <class Self, class Record>
class ObjectOutput : public RecordAttribute<Self, Record, eAttributeRole::eAR_Output>
{
};

template <class Self, class Record>
class ObjectInput : public RecordAttribute<Self, const Record, eAttributeRole::eAR_Input>
{
};

/// A record that the caller may leave out; it may have a default, `static Ptr<const Record> getDefault()`.
template <class Self, class Record>
class OptionalInput : public RecordAttribute<Self, const Record, eAttributeRole::eAR_OptionalInput>
{
};

/// A record that the caller gives and the processor fills.
template <class Self, class Record>
class ObjectInputOutput : public RecordAttribute<Self, Record, eAttributeRole::eAR_InputOutput>
{
};

/// A collection with one element for every plan that has one of its own.
template <class Self, class Collection>
class PlanIndexedOptionalInput : public RecordAttribute<Self, const Collection, eAttributeRole::eAR_OptionalInput>
{
public:
    using Element = typename Collection::Element;
};

/// A collection with one element per plan of the input.
template <class Self, class Collection>
class PlanIndexedOutput : public RecordAttribute<Self, Collection, eAttributeRole::eAR_Output>
{
public:
    using Element = typename Collection::Element;
};

/// An attribute whose value is a number or an enumerator.
template <class T>
class BaseValueAttribute : public StoredAttribute<std::optional<T>>
{
public:
    bool isSet() const final { return this->value_.has_value(); }

    void copy(const BaseAttribute& other) final { this->init(dynamic_cast<const BaseValueAttribute&>(other).get()); }
    core::ProcessingResult write(data::OutputArchive& archive) const final
    {
        if (isSet()) {
            archive.write(this->getName(), *this->value_);
        }
        return {};
    }
    core::ProcessingResult read(data::InputArchive& archive) final
    {
        this->clear();
        if (!archive.has(this->getName())) {
            return {};
        }
        std::conditional_t<std::is_floating_point_v<T>, double, T> value{};
        core::ProcessingResult result = archive.read(this->getName(), value);
        if (result) {
            this->init(static_cast<T>(value));
        }
        return result;
    }
    void take(const Share&, const BaseAttribute& of) final
    {
        this->init(static_cast<const BaseValueAttribute&>(of).getOrDefault());
    }

protected:
    using StoredAttribute<std::optional<T>>::StoredAttribute;
};

/// A number or an enumerator; an optional one may have a default, `static std::optional<T> getDefault()`.
template <class Self, class T, eAttributeRole Role = eAttributeRole::eAR_Input>
class ValueInput : public BaseValueAttribute<T>
{
public:
    static constexpr eAttributeRole role = Role;

    std::optional<T> getOrDefault() const final
    {
        if constexpr (requires { Self::getDefault(); }) {
            return this->isSet() ? this->value_ : Self::getDefault();
        } else {
            return this->value_;
        }
    }

protected:
    ValueInput() : BaseValueAttribute<T>{Self::name, Role} {}
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

/// An attribute whose value is an image, with the pixels that it takes. An input's Image is const.
template <class Image>
class ORLIX_API BaseImageAttribute : public StoredAttribute<Ptr<Image>>
{
public:
    bool isSet() const final { return this->value_ != nullptr; }
    const image::BaseImage* getImage() const final { return this->value_.get(); }
    image::ePlanKind getPlanKind() const final { return kind_; }
    core::ProcessingResult check() const override;

    void copy(const BaseAttribute& other) final;
    core::ProcessingResult write(data::OutputArchive& archive) const final;
    core::ProcessingResult read(data::InputArchive& archive) final;
    void take(const Share& share, const BaseAttribute& of) final;

protected:
    BaseImageAttribute(const char* name, eAttributeRole role, image::ePlanKind kind, eExtent extent,
                       const image::PixelTypes& types)
        : StoredAttribute<Ptr<Image>>{name, role}, kind_{kind}, extent_{extent}, types_{types}
    {}

private:
    void allocate(const BaseAttribute& input) final;

    image::ePlanKind kind_;
    eExtent extent_;
    image::PixelTypes types_;
};

extern template class BaseImageAttribute<const image::BaseImage>;
extern template class BaseImageAttribute<image::BaseImage>;

/// An input image, whose plans are of a kind. Types tells which pixels it takes.
template <class Self, image::ePlanKind Kind, eExtent Extent, const image::PixelTypes& Types = image::numericTypes,
          eAttributeRole Role = eAttributeRole::eAR_Input>
class ImageInput : public BaseImageAttribute<const image::BaseImage>
{
public:
    static constexpr eAttributeRole role = Role;
    static constexpr image::ePlanKind kind = Kind;

protected:
    ImageInput() : BaseImageAttribute{Self::name, Role, Kind, Extent, Types} {}
};

/// An output image, whose 2d plans are written. Self has `static ImageGeometry geometryFor(const ImageGeometry&
/// input)`, the sizes that it must have.
template <class Self>
class ImageOutput : public BaseImageAttribute<image::BaseImage>
{
public:
    static constexpr eAttributeRole role = eAttributeRole::eAR_Output;
    static constexpr image::ePlanKind kind = image::ePlanKind::ePK_Plan2d;

    image::ImageGeometry getOutputGeometry(const image::ImageGeometry& input) const final
    {
        return Self::geometryFor(input);
    }

protected:
    ImageOutput() : BaseImageAttribute{Self::name, role, kind, eExtent::eE_AllPlans, image::numericTypes} {}
};

/// An attribute whose value is the strip that a level 2 processor hands down; it has no heap of its own.
template <class StripType>
class ORLIX_API BaseStripAttribute : public StoredAttribute<StripType>
{
public:
    using Strip = StripType;

    bool isSet() const final { return this->value_.image != nullptr; }
    const image::BaseImage* getImage() const final { return this->value_.image.get(); }
    image::ePlanKind getPlanKind() const final { return Strip::kind; }
    std::optional<image::PixelBox> getStripBox() const final;
    bool isMask() const final { return types_ == image::maskTypes; }
    core::ProcessingResult check() const final;

    void copy(const BaseAttribute& other) final;
    core::ProcessingResult write(data::OutputArchive& archive) const final;
    core::ProcessingResult read(data::InputArchive& archive) final;
    void take(const Share& share, const BaseAttribute& of) final;

protected:
    BaseStripAttribute(const char* name, eAttributeRole role, const image::PixelTypes& types)
        : StoredAttribute<StripType>{name, role}, types_{types}
    {}

private:
    image::PixelTypes types_;
};

extern template class BaseStripAttribute<image::XStrip2d>;
extern template class BaseStripAttribute<image::YStrip2d>;
extern template class BaseStripAttribute<image::ZStrip3d>;
extern template class BaseStripAttribute<image::SeqYStrip2d>;
extern template class BaseStripAttribute<image::OutputYStrip2d>;

template <class Self, class StripType, const image::PixelTypes& Types = image::numericTypes,
          eAttributeRole Role = eAttributeRole::eAR_Input>
class StripInput : public BaseStripAttribute<StripType>
{
public:
    static constexpr eAttributeRole role = Role;

protected:
    StripInput() : BaseStripAttribute<StripType>{Self::name, Role, Types} {}
};

/// The strip that a level 3 processor writes into; it must be set.
template <class Self, class StripType>
class StripOutput : public StripInput<Self, StripType, image::numericTypes, eAttributeRole::eAR_InputOutput>
{
};

/// The strip of a mask. Kernels read it as bytes, whatever its type.
template <class Self, class StripType, eAttributeRole Role = eAttributeRole::eAR_Input>
class MaskStripInput : public StripInput<Self, StripType, image::maskTypes, Role>
{
};

/// Whether a processor's attribute From can be shared out to its children's attribute To: an image as its plans or
/// strips, a collection as its elements, and any value as it is.
template <class To, class From>
inline constexpr bool takesFrom = [] {
    if constexpr (
        requires { typename To::Strip; } && requires { From::kind; }) {
        return std::same_as<decltype(typename To::Strip{}.image), typename From::Storage>;
    } else if constexpr (requires {
                             typename To::Value;
                             typename From::Element;
                         }) {
        return std::same_as<typename To::Value, typename From::Element>;
    } else {
        return std::same_as<typename To::Storage, typename From::Storage>;
    }
}();

} // namespace orlix::imaproc::attr
