#pragma once

#include <framework/attribute/Attribute.hpp>

#include <vector>

namespace orlix::imaproc::attr
{

/// A list of numbers.
class ORLIX_API Doubles final : public data::DataItem<Doubles>
{
public:
    static constexpr const char* typeName = "orlix::imaproc::attr::Doubles";

    std::vector<double> Values;

    void visitFields(data::FieldVisitor& field) override { field({"Values", "one number after the other"}, Values); }
};

class ORLIX_API PlanIndexedDoubles final : public PlanIndexedColl<PlanIndexedDoubles, Doubles>
{
public:
    static constexpr const char* typeName = "orlix::imaproc::attr::PlanIndexedDoubles";
};

class ORLIX_API OutValues final : public ObjectOutput<OutValues, Doubles>
{
public:
    static constexpr const char* name = "OutValues";
};

class ORLIX_API OutPIValues final : public PlanIndexedOutput<OutPIValues, PlanIndexedDoubles>
{
public:
    static constexpr const char* name = "OutPIValues";
};

} // namespace orlix::imaproc::attr
