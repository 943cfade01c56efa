#pragma once

#include <framework/core/Message.hpp>
#include <framework/data/Archive.hpp>
#include <framework/data/DynamicObject.hpp>

#include <string>
#include <tuple>

namespace orlix::data
{

/// The root of the records that measures take and return.
class ORLIX_API BaseDataItem : public BaseDynamicObject
{
public:
    ~BaseDataItem() override;
};

/// A named field of a record.
template <class Record, class Value>
struct Field
{
    const char* name;
    Value Record::*member;
};
template <class Record, class Value>
Field(const char*, Value Record::*) -> Field<Record, Value>;

/// A record of plain fields. Self has `static constexpr const char* typeName`, the qualified class name, and `static
/// auto fields()`, a tuple of Field in the order of declaration; copying and archives follow from them.
template <class Self>
class DataItem : public DynamicObject<Self, BaseDataItem>
{
public:
    void copy(const BaseDynamicObject& other) final
    {
        core::guarded(ORLIX_HERE, [&] { self() = dynamic_cast<const Self&>(other); });
    }

    core::ProcessingResult write(OutputArchive& archive) const final
    {
        forEachField([&](const auto& field) { archive.write(field.name, self().*field.member); });
        return {};
    }

    core::ProcessingResult read(InputArchive& archive) final
    {
        core::ProcessingResult result;
        forEachField([&](const auto& field) {
            if (result) {
                result = archive.read(field.name, self().*field.member);
            }
        });
        return result;
    }

    template <class Visitor>
    static void forEachField(Visitor visit)
    {
        std::apply([&](const auto&... field) { (visit(field), ...); }, Self::fields());
    }

private:
    Self& self() { return static_cast<Self&>(*this); }
    const Self& self() const { return static_cast<const Self&>(*this); }
};

} // namespace orlix::data
