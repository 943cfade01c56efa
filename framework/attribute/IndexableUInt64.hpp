#pragma once

#include <framework/attribute/Attribute.hpp>
#include <framework/attribute/PlanIndexedColl.hpp>

#include <cstdint>

namespace orlix::imaproc::attr
{

/// A count, as an element of a collection.
class ORLIX_API IndexableUInt64 final : public data::DataItem<IndexableUInt64>
{
public:
    static constexpr const char* typeName = "orlix::imaproc::attr::IndexableUInt64";

    std::uint64_t Value = 0;

    void visitFields(data::FieldVisitor& field) override
    {
        field({"Value", "number of the objects", "objects"}, Value);
    }
};

class ORLIX_API PlanIndexedIndexableUInt64 final : public PlanIndexedColl<PlanIndexedIndexableUInt64, IndexableUInt64>
{
public:
    static constexpr const char* typeName = "orlix::imaproc::attr::PlanIndexedIndexableUInt64";
};

class ORLIX_API OutIndexableUInt64 final : public ObjectOutput<OutIndexableUInt64, IndexableUInt64>
{
public:
    static constexpr const char* name = "OutIndexableUInt64";
};

class ORLIX_API OutPIIndexableUInt64 final : public PlanIndexedOutput<OutPIIndexableUInt64, PlanIndexedIndexableUInt64>
{
public:
    static constexpr const char* name = "OutPIIndexableUInt64";
};

} // namespace orlix::imaproc::attr
