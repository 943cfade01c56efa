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
#include <optional>
#include <string_view>
#include <utility>
#include <vector>

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

/// What users may set of an attribute, and what holds where they do not.
struct Parameter
{
    data::FieldInfo info;
    bool isWhole;                            ///< a number from 0 on, without a fraction
    std::optional<data::Value> defaultValue; ///< none: the measure has a rule of its own, or the value must be given
};

/// Adds the fields of a record that have an option, with the values that `defaults`, which may be null, has.
ORLIX_API void addParametersOf(const data::BaseDataItem& record, const data::BaseDataItem* defaults,
                               std::vector<Parameter>& parameters);
/// Adds a number or enumerator.
ORLIX_API void addParameter(const data::FieldInfo& info, std::optional<std::uint64_t> defaultValue,
                            std::vector<Parameter>& parameters);

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

    /// Whether it takes an image.
    virtual bool isImage() const { return false; }
    /// The image behind an image or strip attribute, else null; and what its plans are.
    virtual const image::BaseImage* getImage() const { return nullptr; }
    virtual image::ePlanKind getPlanKind() const { return image::ePlanKind::ePK_Plan2d; }
    /// Whether it takes a strip; the box of one that is set; and whether an image or strip is a mask, by whose type no
    /// kernel is chosen.
    virtual bool isStrip() const { return false; }
    virtual image::PixelBox getStripBox() const { return {}; }
    /// The bytes that getStripBox() fetches from a source.
    virtual std::size_t getStripLoad() const { return 0; }
    virtual bool isMask() const { return false; }
    /// The types of the pixels that an image may have.
    virtual image::PixelTypes getPixelTypes() const { return {}; }
    /// Whether an image has to be one plan.
    virtual bool isOnePlan() const { return false; }
    /// The sizes of an output image for an input of these.
    virtual image::ImageGeometry getOutputGeometry(const image::ImageGeometry& input) const { return input; }

    /// The record or collection behind the attribute, else null.
    virtual data::BaseDataItem* getRecord() const { return nullptr; }
    virtual Ptr<data::BaseDataItem> shareRecord() const { return nullptr; }
    /// Takes a record of the attribute's own class.
    virtual void setRecord(const Ptr<data::BaseDataItem>& /*record*/) {}
    /// An empty record; of a collection, one for a plan.
    virtual Ptr<data::BaseDataItem> createRecord() const { return nullptr; }
    /// Whether the value is a collection of records, one per plan; and that one, or null.
    virtual bool isCollection() const { return false; }
    virtual const BasePlanIndexedColl* getCollection() const { return nullptr; }
    /// Whether the value has a meaning for an image without pixels.
    virtual bool isDefinedWithoutPixels() const { return false; }

    /// What users may set in it, by the names of the fields: itself, or the fields of its record that have an option.
    virtual void addParameters(std::vector<Parameter>&) const {}
    /// Sets one of them; a collection's for every plan of the input. Throws BaseException if the value does not fit.
    virtual void setParameter(std::string_view name, const data::Value& value, const BaseAttribute& input);
    /// Takes an image by name. Throws BaseException if the attribute is none for an image.
    virtual void setImage(const Ptr<const image::BaseImage>& image);
    virtual void setOutputImage(const Ptr<image::BaseImage>& image);

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
        if constexpr (ofPlans) {
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

    data::BaseDataItem* getRecord() const final { return const_cast<Value*>(this->value_.get()); }
    Ptr<data::BaseDataItem> shareRecord() const final { return boost::const_pointer_cast<Value>(this->value_); }
    void setRecord(const Ptr<data::BaseDataItem>& record) final
    {
        this->init(boost::static_pointer_cast<Value>(record));
    }
    Ptr<data::BaseDataItem> createRecord() const final
    {
        if constexpr (ofPlans) {
            return data::makeRecord<typename Value::Element>();
        } else {
            return data::makeRecord<Value>();
        }
    }
    void addParameters(std::vector<Parameter>& parameters) const final
    {
        if (this->getRole() != eAttributeRole::eAR_Output) {
            addParametersOf(*createRecord(), ofPlans ? nullptr : this->getOrDefault().get(), parameters);
        }
    }
    void setParameter(std::string_view name, const data::Value& value, const BaseAttribute& input) final
    {
        if (!isSet()) {
            allocate(input);
        }
        if constexpr (ofPlans) {
            for (std::size_t i = 0; i < this->value_->size(); ++i) {
                this->value_->getElement(i)->setParameter(name, value);
            }
        } else {
            const_cast<Value&>(*this->value_).setParameter(name, value);
        }
    }
    bool isCollection() const final { return ofPlans; }
    const BasePlanIndexedColl* getCollection() const final
    {
        if constexpr (ofPlans) {
            return this->value_.get();
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
        if (of.isCollection() == ofPlans) {
            this->init(static_cast<const StoredAttribute<Ptr<Record>>&>(of).getOrDefault());
        } else {
            const BasePlanIndexedColl* const collection = of.getCollection();
            this->init(boost::static_pointer_cast<Record>(collection != nullptr ? collection->getStorage(share.plan)
                                                                                : nullptr));
        }
    }

protected:
    using StoredAttribute<Ptr<Record>>::StoredAttribute;

private:
    static constexpr bool ofPlans = requires { typename Value::Element; };

    void allocate([[maybe_unused]] const BaseAttribute& input) final
    {
        auto record = data::makeRecord<Value>();
        if constexpr (ofPlans) {
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

    void assignNumber(const data::FieldInfo& info, std::string_view name, const data::Value& value)
    {
        T number{};
        data::FieldSetter setter{name, value, this->getName()};
        setter(info, number);
        this->init(number);
    }
};

/// A number or an enumerator; an optional one may have a default, `static std::optional<T> getDefault()`, and a
/// parameter has a `static constexpr data::FieldInfo info`.
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

    void addParameters([[maybe_unused]] std::vector<Parameter>& parameters) const final
    {
        if constexpr (requires { Self::info; }) {
            data::FieldInfo info = Self::info;
            if constexpr (std::is_enum_v<T>) {
                info.enumerators = namesOf(T{});
            }
            const std::optional<T> value = getOrDefault();
            addParameter(info, value ? std::optional{static_cast<std::uint64_t>(*value)} : std::nullopt, parameters);
        }
    }
    void setParameter(std::string_view name, const data::Value& value, const BaseAttribute& input) final
    {
        if constexpr (requires { Self::info; }) {
            this->assignNumber(Self::info, name, value);
        } else {
            BaseAttribute::setParameter(name, value, input);
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
    void setImage(const Ptr<const image::BaseImage>& image) final;
    void setOutputImage(const Ptr<image::BaseImage>& image) final;
    bool isMask() const final { return types_ == image::maskTypes; }
    image::PixelTypes getPixelTypes() const final { return types_; }
    bool isImage() const final { return true; }
    bool isOnePlan() const final { return extent_ == eExtent::eE_OnePlan; }

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
    bool isStrip() const final { return true; }
    image::PixelBox getStripBox() const final { return this->value_.getBox(nbRowsAround_); }
    std::size_t getStripLoad() const final { return this->value_.getLoad(); }
    bool isMask() const final { return types_ == image::maskTypes; }
    core::ProcessingResult check() const final;

    void copy(const BaseAttribute& other) final;
    core::ProcessingResult write(data::OutputArchive& archive) const final;
    core::ProcessingResult read(data::InputArchive& archive) final;
    void take(const Share& share, const BaseAttribute& of) final;

protected:
    BaseStripAttribute(const char* name, eAttributeRole role, const image::PixelTypes& types, std::size_t nbRowsAround)
        : StoredAttribute<StripType>{name, role}, types_{types}, nbRowsAround_{nbRowsAround}
    {}

private:
    image::PixelTypes types_;
    std::size_t nbRowsAround_;
};

extern template class BaseStripAttribute<image::XStrip2d>;
extern template class BaseStripAttribute<image::YStrip2d>;
extern template class BaseStripAttribute<image::ZStrip3d>;
extern template class BaseStripAttribute<image::SeqYStrip2d>;
extern template class BaseStripAttribute<image::OutputYStrip2d>;

/// Where the rows before and behind a strip are read as well, Self has `static constexpr std::size_t nbRowsAround`.
template <class Self, class StripType, const image::PixelTypes& Types = image::numericTypes,
          eAttributeRole Role = eAttributeRole::eAR_Input>
class StripInput : public BaseStripAttribute<StripType>
{
public:
    static constexpr eAttributeRole role = Role;

protected:
    StripInput() : BaseStripAttribute<StripType>{Self::name, Role, Types, getNbRowsAround()} {}

private:
    static constexpr std::size_t getNbRowsAround()
    {
        if constexpr (requires { Self::nbRowsAround; }) {
            return Self::nbRowsAround;
        }
        return 0;
    }
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
