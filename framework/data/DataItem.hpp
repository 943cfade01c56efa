#pragma once

#include <framework/core/Message.hpp>
#include <framework/data/Archive.hpp>
#include <framework/data/DynamicObject.hpp>
#include <framework/data/Fields.hpp>

#include <string>
#include <string_view>

namespace orlix::data
{

/// The root of the records that measures take and return.
class ORLIX_API BaseDataItem : public BaseDynamicObject
{
public:
    ~BaseDataItem() override;

    /// Shows its fields, in the order of their declaration; a collection shows none.
    virtual void visitFields(FieldVisitor&) {}

    std::vector<FieldInfo> getFields() const;
    /// Throws BaseException if there is no such field.
    Value getField(std::string_view name) const;
    /// Takes a number for any number. Throws BaseException if there is no such field, or the value does not fit it.
    void setField(std::string_view name, const Value& value);
    /// The same of a field that is a parameter, where a user sets it: other fields may follow. Throws as setField().
    virtual void setParameter(std::string_view name, const Value& value) { setField(name, value); }

    core::ProcessingResult write(OutputArchive& archive) const override;
    core::ProcessingResult read(InputArchive& archive) override;
};

/// A record of plain fields. Self has `static constexpr const char* typeName`, the qualified class name, and
/// visitFields(), which says once what its fields are; access by name and archives follow from it.
template <class Self>
class DataItem : public DynamicObject<Self, BaseDataItem>
{
public:
    void copy(const BaseDynamicObject& other) final
    {
        core::guarded(ORLIX_HERE, [&] { static_cast<Self&>(*this) = dynamic_cast<const Self&>(other); });
    }
};

} // namespace orlix::data
